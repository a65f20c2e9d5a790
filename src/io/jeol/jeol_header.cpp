#include "io/jeol/jeol_header.h"

#include <bit>
#include <cctype>
#include <cmath>
#include <cstring>

namespace zolt {

namespace {

// Byte offsets inside the fixed header.
constexpr size_t kEndianAt = 8;
constexpr size_t kDimensionsAt = 12;
constexpr size_t kTypeAndFormatAt = 14;
constexpr size_t kAxisTypeAt = 24;
constexpr size_t kUnitsAt = 32;
constexpr size_t kTitleAt = 48;
constexpr size_t kTitleBytes = 124;
constexpr size_t kPointsAt = 176;
constexpr size_t kOffsetStartAt = 208;
constexpr size_t kOffsetStopAt = 240;
constexpr size_t kAxisStartAt = 272;
constexpr size_t kAxisStopAt = 336;
constexpr size_t kAxisTitlesAt = 808;
constexpr size_t kAxisTitleBytes = 32;
constexpr size_t kBaseFrequencyAt = 1064;
constexpr size_t kParamStartAt = 1212;
constexpr size_t kParamLengthAt = 1216;
constexpr size_t kDataStartAt = 1284;
constexpr size_t kDataLengthAt = 1288;

// The parameter section: four counts, then records of kRecordBytes.
constexpr size_t kSectionHeadBytes = 16;
constexpr size_t kRecordBytes = 64;
constexpr size_t kRecordUnitAt = 6;
constexpr size_t kRecordValueAt = 16;
constexpr size_t kRecordTypeAt = 32;
constexpr size_t kRecordNameAt = 36;
constexpr size_t kRecordNameBytes = 28;
enum ValueType : int32_t { kString = 0, kInteger = 1, kFloat = 2 };

uint64_t wordAt(const unsigned char* p, size_t bytes, bool little) {
    uint64_t v = 0;
    for (size_t k = 0; k < bytes; ++k) v |= uint64_t{p[little ? k : bytes - 1 - k]} << (8 * k);
    return v;
}

uint32_t u32(const unsigned char* p, bool little = false) {
    return static_cast<uint32_t>(wordAt(p, 4, little));
}

double f64(const unsigned char* p, bool little = false) {
    const double v = std::bit_cast<double>(wordAt(p, 8, little));
    return std::isfinite(v) ? v : 0.0;
}

// Text padded with zeros (header) or blanks (parameters): the padding goes.
std::string textAt(const unsigned char* p, size_t bytes, char pad) {
    std::string s;
    for (size_t k = 0; k < bytes && p[k] != 0; ++k)
        if (p[k] != static_cast<unsigned char>(pad)) s += static_cast<char>(p[k]);
    return s;
}

// A unit pair: the SI prefix as a signed 4-bit code (1 milli, 2 micro, -1 kilo, -2 mega ...),
// then the base unit.
JeolUnit unitAt(const unsigned char* p) {
    int prefix = p[0] >> 4;
    if (prefix >= 8) prefix -= 16;
    return {static_cast<signed char>(p[1]), -3 * prefix};
}

}  // namespace

std::optional<JeolHeader> parseJeolHeader(std::span<const unsigned char> bytes) {
    if (bytes.size() < kJeolHeaderBytes || std::memcmp(bytes.data(), "JEOL.NMR", 8) != 0)
        return std::nullopt;
    const unsigned char* b = bytes.data();
    JeolHeader h;
    h.littleEndian = b[kEndianAt] == 1;
    h.dimensions = b[kDimensionsAt];
    h.singlePrecision = (b[kTypeAndFormatAt] >> 6) == 1;
    h.format = b[kTypeAndFormatAt] & 0x3F;
    h.title = textAt(b + kTitleAt, kTitleBytes, 0);
    for (int i = 0; i < kJeolMaxAxes; ++i) {
        const auto k = static_cast<size_t>(i);
        h.axisType[k] = static_cast<JeolAxisType>(b[kAxisTypeAt + k]);
        h.unit[k] = unitAt(b + kUnitsAt + 2 * k);
        h.points[k] = u32(b + kPointsAt + 4 * k);
        h.offsetStart[k] = u32(b + kOffsetStartAt + 4 * k);
        h.offsetStop[k] = u32(b + kOffsetStopAt + 4 * k);
        h.axisStart[k] = f64(b + kAxisStartAt + 8 * k);
        h.axisStop[k] = f64(b + kAxisStopAt + 8 * k);
        h.axisTitle[k] = textAt(b + kAxisTitlesAt + kAxisTitleBytes * k, kAxisTitleBytes, 0);
        h.baseFrequency[k] = f64(b + kBaseFrequencyAt + 8 * k);
    }
    h.paramStart = u32(b + kParamStartAt);
    h.paramLength = u32(b + kParamLengthAt);
    h.dataStart = u32(b + kDataStartAt);
    h.dataLength = wordAt(b + kDataLengthAt, 8, false);
    return h;
}

std::map<std::string, JeolParameter> parseJeolParameters(std::span<const unsigned char> section,
                                                         bool little) {
    std::map<std::string, JeolParameter> out;
    for (size_t at = kSectionHeadBytes; at + kRecordBytes <= section.size(); at += kRecordBytes) {
        const unsigned char* r = section.data() + at;
        std::string name = textAt(r + kRecordNameAt, kRecordNameBytes, ' ');
        if (name.empty()) continue;
        for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        JeolParameter p;
        const unsigned char* value = r + kRecordValueAt;
        switch (static_cast<int32_t>(u32(r + kRecordTypeAt, little))) {
            case kString:
                p.isText = true;
                p.text = textAt(value, kRecordTypeAt - kRecordValueAt, ' ');
                break;
            case kInteger:
                p.number = static_cast<int32_t>(u32(value, little));
                break;
            case kFloat:
                p.number = f64(value, little);
                break;
            default:
                continue;
        }
        if (!p.isText) p.number *= std::pow(10.0, unitAt(r + kRecordUnitAt).exponent);
        out.emplace(std::move(name), std::move(p));
    }
    return out;
}

}  // namespace zolt

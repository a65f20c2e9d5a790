#include "io/text_header/text_header_reader.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/files.h"
#include "base/paths.h"
#include "io/nucleus_label.h"

namespace zolt {

namespace {

constexpr std::string_view kEndOfHeader = ">>> End of header <<<";
// Larger counts cannot be data of a file the loader accepts.
constexpr double kMaxCount = double{1u << 30};

struct Label {
    std::string_view text;
    size_t compared;  // characters that must match at the start of the line
};

// In the order they are looked for.
enum LabelIndex { kDwellTime, kFrequency, kNucleus, kVectorSize, kRows, kColumns, kParts };
constexpr Label kLabels[] = {
    {"DwellTime:", 8},    {"MRFrequency:", 8},      {"Nucleus:", 8},          {"VectorSize:", 8},
    {"NumberOfRows:", 8}, {"NumberOfColumns:", 12}, {"NumberOf3DParts:", 12},
};

// The line's value: what follows its first colon, without surrounding blanks.
std::string_view valueOf(std::string_view line) {
    const size_t colon = line.find(':');
    std::string_view v =
        colon == std::string_view::npos ? std::string_view{} : line.substr(colon + 1);
    while (!v.empty() && (v.front() == ' ' || v.front() == '\t')) v.remove_prefix(1);
    while (!v.empty() && (v.back() == ' ' || v.back() == '\t' || v.back() == '\r'))
        v.remove_suffix(1);
    return v;
}

// The value of the first line that starts with the label, looked for from the top.
std::optional<std::string_view> find(std::string_view text, const Label& label) {
    const std::string_view prefix = label.text.substr(0, label.compared);
    for (size_t start = 0; start < text.size();) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = text.substr(start, end - start);
        if (line.substr(0, prefix.size()) == prefix) return valueOf(line);
        start = end + 1;
    }
    return std::nullopt;
}

std::optional<double> number(std::string_view v) {
    const std::string s(v);
    char* end = nullptr;
    const double d = std::strtod(s.c_str(), &end);
    if (end == s.c_str() || !std::isfinite(d)) return std::nullopt;
    return d;
}

std::optional<uint32_t> count(std::string_view v) {
    const auto d = number(v);
    if (!d || *d < 1.0 || *d > kMaxCount || *d != std::floor(*d)) return std::nullopt;
    return static_cast<uint32_t>(*d);
}

// Offset of the line after the end-of-header line.
std::optional<size_t> dataOffset(std::string_view text) {
    const size_t at = text.find(kEndOfHeader);
    if (at == std::string_view::npos) return std::nullopt;
    const size_t end = text.find('\n', at);
    if (end == std::string_view::npos) return std::nullopt;
    return end + 1;
}

}  // namespace

std::optional<SpectrumSource> parseTextHeader(std::string_view text) {
    std::string_view values[std::size(kLabels)];
    for (size_t i = 0; i < std::size(kLabels); ++i) {
        const auto v = find(text, kLabels[i]);
        if (!v) return std::nullopt;
        values[i] = *v;
    }
    const auto offset = dataOffset(text);
    const auto dwell = number(values[kDwellTime]);
    const auto frequency = number(values[kFrequency]);
    const auto points = count(values[kVectorSize]);
    const auto rows = count(values[kRows]);
    const auto columns = count(values[kColumns]);
    const auto parts = count(values[kParts]);
    if (!offset || !dwell || *dwell <= 0.0 || !frequency || *frequency <= 0.0 || !points || !rows ||
        !columns || !parts)
        return std::nullopt;
    const uint64_t rowCount = uint64_t{*rows} * *columns;
    if (rowCount > kMaxCount) return std::nullopt;

    SpectrumSource s;
    s.numberType = NumberType::Double;
    s.flags = source_flags::kLittleEndian | source_flags::kLooseNativeFile;
    s.headerSize = static_cast<uint32_t>(*offset);
    s.blockSize = *points * 16;
    const int direct = *parts > 1 ? 3 : rowCount > 1 ? 2 : 1;
    DimensionRecord& d = s.dims[direct];
    d.points = *points;
    d.carrier = static_cast<float>(*frequency);
    d.spectralWidth = spectralWidthFromHz(spectralWidthHzFromDwell(*dwell), *frequency);
    // The header keeps no offset: the axis is centred on the carrier.
    d.lowestPpm = -d.spectralWidth / 2.0f;
    setNucleusFromLabel(d, values[kNucleus]);
    s.ftPreferences[direct] = ' ';
    s.phaseable[direct] = 1;
    auto pseudo = [&](int f, uint32_t n) {
        s.dims[f].points = n;
        makePseudoDimension(s.dims[f], n);
    };
    if (direct >= 2) pseudo(direct - 1, static_cast<uint32_t>(rowCount));
    if (direct == 3) pseudo(1, *parts);
    s.highestTIndex = 1;
    return s;
}

std::optional<DataSetRead> readTextHeader(const std::string& path, const ReadOptions& /*options*/) {
    const std::string head = readFileHead(path, kTextHeaderReadBytes);
    auto source = parseTextHeader(head);
    if (!source) return std::nullopt;
    DataSetRead r;
    r.source = std::move(*source);
    r.source.rawPath = path;
    r.source.fileName = fromPath(toPath(path).filename());
    return r;
}

}  // namespace zolt

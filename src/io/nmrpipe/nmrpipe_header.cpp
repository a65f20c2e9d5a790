#include "io/nmrpipe/nmrpipe_header.h"

#include <bit>
#include <cmath>

namespace zolt {

namespace {

uint32_t wordAt(const unsigned char* p, bool bigEndian) {
    uint32_t v = 0;
    for (int k = 0; k < 4; ++k) v |= uint32_t{p[bigEndian ? 3 - k : k]} << (8 * k);
    return v;
}

constexpr float kByteOrderValue = 2.345f;

}  // namespace

double NmrPipeHeader::value(int i) const {
    if (i < 0 || i >= static_cast<int>(words.size())) return 0.0;
    const float v = words[static_cast<size_t>(i)];
    return std::isfinite(v) ? v : 0.0;
}

std::string NmrPipeHeader::label(int i) const {
    // The characters were written as the bytes of two little-endian words, and are swapped with
    // the numbers in a big-endian file.
    std::string text;
    for (int w = i; w < i + 2 && w < static_cast<int>(words.size()); ++w) {
        const auto bits = std::bit_cast<uint32_t>(words[static_cast<size_t>(w)]);
        for (int k = 0; k < 4; ++k) {
            const char c = static_cast<char>((bits >> (8 * k)) & 0xFF);
            if (c == 0) return text;
            text += c;
        }
    }
    return text;
}

std::optional<NmrPipeHeader> parseNmrPipeHeader(std::span<const unsigned char> bytes) {
    if (bytes.size() < kNmrPipeHeaderBytes) return std::nullopt;
    NmrPipeHeader h;
    const unsigned char* check = bytes.data() + 4 * nmrpipe_word::kByteOrderCheck;
    if (std::bit_cast<float>(wordAt(check, true)) == kByteOrderValue)
        h.bigEndian = true;
    else if (std::bit_cast<float>(wordAt(check, false)) != kByteOrderValue)
        return std::nullopt;
    for (size_t i = 0; i < h.words.size(); ++i)
        h.words[i] = std::bit_cast<float>(wordAt(bytes.data() + 4 * i, h.bigEndian));
    return h;
}

}  // namespace zolt

#include "cli/json_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace zolt {
namespace {

// Length of the UTF-8 sequence starting at i, or 0 when the bytes are not one.
size_t utf8Length(std::string_view s, size_t i) {
    const auto b = static_cast<unsigned char>(s[i]);
    size_t n = 0;
    if (b >= 0xC2 && b <= 0xDF)
        n = 2;
    else if (b >= 0xE0 && b <= 0xEF)
        n = 3;
    else if (b >= 0xF0 && b <= 0xF4)
        n = 4;
    else
        return 0;
    if (i + n > s.size()) return 0;
    for (size_t k = 1; k < n; ++k)
        if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return 0;
    return n;
}

void appendEscape(std::string& out, unsigned code) {
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, "\\u%04x", code);
    out += buffer;
}

template <typename T>
std::string shortest(T value) {
    if (!std::isfinite(value)) return "null";
    char buffer[40];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, r.ptr);
}

}  // namespace

std::string jsonString(std::string_view text) {
    std::string out = "\"";
    for (size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x80) {
            if (const size_t n = utf8Length(text, i)) {
                out.append(text.substr(i, n));
                i += n;
            } else {
                // Latin-1 byte: U+0080 ... U+00FF in two bytes.
                out += static_cast<char>(0xC0 | (c >> 6));
                out += static_cast<char>(0x80 | (c & 0x3F));
                ++i;
            }
            continue;
        }
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            default:
                if (c < 0x20 || c == 0x7F)
                    appendEscape(out, c);
                else
                    out += static_cast<char>(c);
        }
        ++i;
    }
    out += '"';
    return out;
}

std::string jsonNumber(float value) {
    return shortest(value);
}
std::string jsonNumber(double value) {
    return shortest(value);
}

}  // namespace zolt

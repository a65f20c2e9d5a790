#include "io/jcamp/jcamp_labels.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

#include "base/files.h"

namespace zolt {

namespace {

// Headers hold parameters, not data: anything longer is not a header this program reads.
constexpr size_t kMaxHeaderBytes = size_t{64} << 20;
constexpr size_t kMaxRecords = 100000;
// Longer values (embedded files, arrays) are kept only this far.
constexpr size_t kMaxValueChars = 512;

std::string_view trimmed(std::string_view s) {
    const size_t a = s.find_first_not_of(" \t\r");
    if (a == std::string_view::npos) return {};
    const size_t b = s.find_last_not_of(" \t\r");
    return s.substr(a, b - a + 1);
}

std::string_view withoutComment(std::string_view s) {
    const size_t c = s.find("$$");
    return trimmed(c == std::string_view::npos ? s : s.substr(0, c));
}

void append(std::string& value, std::string_view more) {
    if (more.empty() || value.size() >= kMaxValueChars) return;
    if (!value.empty()) value += ' ';
    value.append(more.substr(0, kMaxValueChars - std::min(value.size(), kMaxValueChars)));
}

}  // namespace

std::string normalisedLabel(std::string_view text) {
    std::string label;
    for (char c : text) {
        if (c == '=') break;
        if (c == ' ' || c == '\t' || c == '-' || c == '_' || c == '/' || c == '\r') continue;
        if (label.size() < 80)
            label += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return label;
}

const std::string* JcampHeader::find(std::string_view label) const {
    for (const JcampRecord& r : records)
        if (r.label == label) return &r.value;
    return nullptr;
}

std::optional<JcampHeader> readJcampHeader(const std::string& path) {
    const std::string text = readFileHead(path, kMaxHeaderBytes);
    JcampHeader h;
    bool inRecord = false;  // continuation lines belong to the last record
    for (size_t pos = 0; pos < text.size();) {
        size_t end = text.find('\n', pos);
        if (end == std::string::npos) end = text.size();
        const std::string_view l = std::string_view(text).substr(pos, end - pos);
        pos = end + 1;
        if (!l.starts_with("##")) {
            if (inRecord && !h.records.empty()) append(h.records.back().value, withoutComment(l));
            continue;
        }
        const size_t equals = l.find('=');
        if (equals == std::string_view::npos) {
            inRecord = false;
            continue;
        }
        JcampRecord r{normalisedLabel(l.substr(2)), {}};
        append(r.value, withoutComment(l.substr(equals + 1)));
        if (r.label == "XYDATA" || r.label == "DATATABLE") {
            h.dataLabel = r.label;
            h.dataValue = r.value;
            h.dataOffset = std::min<uint64_t>(pos, text.size());
            return h;
        }
        // A block of its own title starts: a linked file's outer block holds no data.
        if (r.label == "TITLE") h.records.clear();
        if (h.records.size() >= kMaxRecords) return std::nullopt;
        h.records.push_back(std::move(r));
        inRecord = true;
    }
    return std::nullopt;
}

std::vector<std::string> splitFields(std::string_view value) {
    std::vector<std::string> fields;
    size_t pos = 0;
    while (pos <= value.size() && fields.size() < 16) {
        size_t end = value.find(',', pos);
        if (end == std::string_view::npos) end = value.size();
        fields.emplace_back(trimmed(value.substr(pos, end - pos)));
        pos = end + 1;
    }
    return fields;
}

std::optional<double> numberOf(std::string_view value) {
    value = trimmed(value);
    if (value.starts_with('+')) value.remove_prefix(1);
    double v = 0.0;
    const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), v);
    if (ec != std::errc() || end == value.data() || !std::isfinite(v)) return std::nullopt;
    return v;
}

}  // namespace zolt

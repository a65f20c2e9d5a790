// The property-list writer: the XML text of a value tree.
#include "io/plist_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "base/files.h"

namespace zolt::plist {

namespace {

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

void indent(std::string& out, int depth) {
    out.append(static_cast<size_t>(depth), '\t');
}

void appendReal(std::string& out, double r) {
    char buf[512];
    const double f = std::floor(r);
    if (r - f < 1e-15) {
        // Whole numbers are written in the integer form; those beyond 32 bits keep their
        // digits instead of wrapping.
        if (f >= std::numeric_limits<int32_t>::min() && f <= std::numeric_limits<int32_t>::max())
            out += std::to_string(static_cast<int32_t>(f));
        else
            out.append(buf,
                       std::to_chars(buf, buf + sizeof buf, f, std::chars_format::fixed, 0).ptr);
        return;
    }
    // Fewer decimals as the integer part grows, so the significant digits stay about 16.
    const double l = std::log10(r);
    const int e = std::isnan(l) ? -3 : static_cast<int>(std::clamp(std::trunc(l), -3.0, 6.0));
    char* end = std::to_chars(buf, buf + sizeof buf, r, std::chars_format::fixed, 16 - e).ptr;
    while (end > buf && end[-1] == '0') --end;
    out.append(buf, end);
}

void appendBase64Lines(std::string& out, std::string_view bytes, int depth) {
    std::string line;
    auto flush = [&] {
        indent(out, depth);
        out += line;
        out += '\n';
        line.clear();
    };
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t n = std::min<size_t>(3, bytes.size() - i);
        uint32_t w = 0;
        for (size_t k = 0; k < 3; ++k)
            w = (w << 8) | (k < n ? static_cast<unsigned char>(bytes[i + k]) : 0u);
        for (size_t k = 0; k < 4; ++k) line += k <= n ? kBase64[(w >> (18 - 6 * k)) & 0x3F] : '=';
        if (line.size() == 60) flush();
    }
    if (!line.empty()) flush();
}

void writeValue(std::string& out, const Value* v, int depth) {
    indent(out, depth);
    switch (v->kind) {
        case Kind::Dictionary: {
            out += "<dict>\n";
            const size_t n = std::min(v->keys.size(), v->items.size());
            std::vector<size_t> order(n);
            std::iota(order.begin(), order.end(), size_t{0});
            // std::string compares as unsigned bytes; stable so that duplicates keep their order.
            std::stable_sort(order.begin(), order.end(),
                             [v](size_t a, size_t b) { return v->keys[a] < v->keys[b]; });
            for (size_t i : order) {
                indent(out, depth + 1);
                out += "<key>";
                out += v->keys[i];
                out += "</key>\n";
                writeValue(out, v->items[i], depth + 1);
            }
            indent(out, depth);
            out += "</dict>\n";
            break;
        }
        case Kind::Array:
            out += "<array>\n";
            for (const Value* item : v->items) writeValue(out, item, depth + 1);
            indent(out, depth);
            out += "</array>\n";
            break;
        case Kind::String:
        case Kind::Date:
            out += "<string>";
            out += v->text;
            out += "</string>\n";
            break;
        case Kind::Integer:
            out += "<integer>" + std::to_string(v->integer) + "</integer>\n";
            break;
        case Kind::Real:
            out += "<real>";
            appendReal(out, v->real);
            out += "</real>\n";
            break;
        case Kind::Boolean:
            out += v->boolean ? "<true/>\n" : "<false/>\n";
            break;
        case Kind::Data:
            out += "<data>\n";
            appendBase64Lines(out, v->text, depth);
            indent(out, depth);
            out += "</data>\n";
            break;
        case Kind::TextBuffer:
            out += "<string>";
            out += v->text;
            out += "</string>\n";
            break;
    }
}

}  // namespace

std::string write(const Value* root) {
    std::string out;
    out.reserve(8192);
    out +=
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n";
    if (root) writeValue(out, root, 0);
    out += "</plist>\n";
    return out;
}

bool writeFile(const Value* root, const std::string& path) {
    return writeFileReplacing(path, write(root));
}

}  // namespace zolt::plist

// The property-list value tree, its XML writer and its reader.
#include "io/plist.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>

#include "base/files.h"

namespace zolt::plist {

namespace {

Value* make(Kind kind) {
    Value* v = new Value;
    v->kind = kind;
    return v;
}

uint16_t cappedLength(size_t n) {
    return static_cast<uint16_t>(std::min<size_t>(n, 0xFFFF));
}

// Decodes one code unit of the one-, two- or three-byte form at i; a form cut short by the
// end of the text is taken as the single byte.
char16_t decodeUnit(std::string_view s, size_t& i) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
        i += 1;
        return c;
    }
    if (c < 0xE0 && i + 1 < s.size()) {
        const auto b1 = static_cast<unsigned char>(s[i + 1]);
        i += 2;
        return static_cast<char16_t>(((c & 0x1F) << 6) | (b1 & 0x3F));
    }
    if (c >= 0xE0 && i + 2 < s.size()) {
        const auto b1 = static_cast<unsigned char>(s[i + 1]);
        const auto b2 = static_cast<unsigned char>(s[i + 2]);
        i += 3;
        return static_cast<char16_t>(((c & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (b2 & 0x3F));
    }
    i += 1;
    return c;
}

size_t wideUnits(std::string_view s) {
    size_t n = 0;
    for (size_t i = 0; i < s.size(); ++n) decodeUnit(s, i);
    return n;
}

Value* makeText(Kind kind, std::string_view utf8) {
    Value* v = make(kind);
    v->text.assign(utf8);
    v->wideLength = cappedLength(wideUnits(utf8));
    return v;
}

}  // namespace

Value* createDictionary() {
    return make(Kind::Dictionary);
}
Value* createArray() {
    return make(Kind::Array);
}
Value* createString(std::string_view utf8) {
    return makeText(Kind::String, utf8);
}
Value* createDate(std::string_view text) {
    return makeText(Kind::Date, text);
}

Value* createStringFromWide(std::u16string_view wide) {
    Value* v = make(Kind::String);
    v->text = utf8FromWide(wide);
    v->wideLength = cappedLength(wide.size());
    return v;
}

Value* createBoolean(bool b) {
    Value* v = make(Kind::Boolean);
    v->boolean = b;
    return v;
}

Value* createInteger(int32_t i) {
    Value* v = make(Kind::Integer);
    v->integer = i;
    return v;
}

Value* createReal(double r) {
    Value* v = make(Kind::Real);
    v->real = r;
    return v;
}

Value* createData(std::string_view bytes) {
    Value* v = make(Kind::Data);
    v->text.assign(bytes);
    return v;
}

void addToDictionary(Value* dictionary, std::string_view key, Value* value) {
    if (!dictionary || !value) return;
    dictionary->keys.emplace_back(key);
    dictionary->items.push_back(value);
}

Value* lookUp(const Value* dictionary, std::string_view key) {
    if (!dictionary || dictionary->kind != Kind::Dictionary) return nullptr;
    const size_t n = std::min(dictionary->keys.size(), dictionary->items.size());
    for (size_t i = 0; i < n; ++i)
        if (dictionary->keys[i] == key) return dictionary->items[i];
    return nullptr;
}

void appendToArray(Value* array, Value* value) {
    if (array && value) array->items.push_back(value);
}

Value* retain(Value* value) {
    if (value && value->refCount < kNeverFreed) ++value->refCount;
    return value;
}

void release(Value* value) {
    if (!value || value->refCount == kNeverFreed) return;
    if (value->refCount > 0) {
        --value->refCount;
        return;
    }
    for (Value* item : value->items) release(item);
    delete value;
}

std::string utf8FromWide(std::u16string_view wide) {
    std::string out;
    out.reserve(wide.size());
    for (char16_t u : wide) {
        if (u < 0x80) {
            out += static_cast<char>(u);
        } else if (u < 0x800) {
            out += static_cast<char>(0xC0 | (u >> 6));
            out += static_cast<char>(0x80 | (u & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | (u >> 12));
            out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (u & 0x3F));
        }
    }
    return out;
}

std::u16string wideFromUtf8(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    for (size_t i = 0; i < utf8.size();) out += decodeUnit(utf8, i);
    return out;
}

std::u16string toWide(const Value* string) {
    const std::string* text = textOf(string);
    return text ? wideFromUtf8(*text) : std::u16string();
}

std::optional<int32_t> integerOf(const Value* value) {
    if (value && value->kind == Kind::Integer) return value->integer;
    return std::nullopt;
}

std::optional<double> numberOf(const Value* value) {
    if (value && value->kind == Kind::Real) return value->real;
    if (value && value->kind == Kind::Integer) return value->integer;
    return std::nullopt;
}

std::optional<bool> booleanOf(const Value* value) {
    if (value && value->kind == Kind::Boolean) return value->boolean;
    return std::nullopt;
}

const std::string* textOf(const Value* value) {
    if (value && (value->kind == Kind::String || value->kind == Kind::Date)) return &value->text;
    return nullptr;
}

// ---- writer ----

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

// ---- reader ----

namespace {

constexpr size_t kNone = std::string_view::npos;

// Every tag the reader searches for is located once up front, so that each search is a
// binary search and damaged text (thousands of unclosed strings, deep nesting) stays
// linear instead of rescanning the rest of the text per element.
class Reader {
public:
    explicit Reader(std::string_view text) : t_(text) { index(); }

    bool tooDeep() const { return tooDeep_; }
    std::string_view text() const { return t_; }

    // Reads the element whose "<" is at `at`, wholly before `limit`. `next` receives where
    // to continue: after the element, or just past its "<" when it yields nothing.
    Value* element(size_t at, size_t limit, int depth, size_t& next) {
        next = at + 1;
        if (depth > kMaxReadDepth) {
            tooDeep_ = true;
            return nullptr;
        }
        if (at + 1 >= limit) return nullptr;
        switch (t_[at + 1]) {
            case 'a':
                return array(at, limit, depth, next);
            case 'd':
                if (at + 4 >= limit) return nullptr;
                if (t_[at + 4] == 'a') return data(at, limit, next);
                if (t_[at + 4] == 'e') return textElement(Kind::Date, "</date>", at, limit, next);
                if (t_[at + 4] == 't') return dictionary(at, limit, depth, next);
                return nullptr;
            case 't':
            case 'f':
                return createBoolean(t_[at + 1] == 't');
            case 'i': {
                size_t start = 0, close = 0;
                if (!simpleContent(at, limit, "</integer>", start, close)) return nullptr;
                next = close + 10;
                return createInteger(parseInteger(t_.substr(start, close - start)));
            }
            case 'r': {
                size_t start = 0, close = 0;
                if (!simpleContent(at, limit, "</real>", start, close)) return nullptr;
                next = close + 7;
                return createReal(parseReal(t_.substr(start, close - start)));
            }
            case 's':
                if (t_.substr(at, limit - at).starts_with("<string/>")) {
                    next = at + 9;
                    return createString("");
                }
                return textElement(Kind::String, "</string>", at, limit, next);
            default:
                return nullptr;
        }
    }

    size_t nextOpening(size_t from, size_t limit) const {
        const size_t p = t_.find('<', from);
        return p < limit ? p : kNone;
    }

private:
    void index() {
        struct Tag {
            std::string_view text;
            std::vector<size_t>* positions;
        };
        const Tag tags[] = {
            {"</key>", &closeKey_},
            {"<key>", &openKey_},
        };
        std::vector<size_t> arrayStack, dictStack;
        for (size_t p = t_.find('<'); p != kNone; p = t_.find('<', p + 1)) {
            const std::string_view rest = t_.substr(p);
            for (const Tag& tag : tags)
                if (rest.starts_with(tag.text)) tag.positions->push_back(p);
            match(rest, "<array>", "</array>", p, arrayStack, arrays_);
            match(rest, "<dict>", "</dict>", p, dictStack, dicts_);
        }
        std::sort(arrays_.begin(), arrays_.end());
        std::sort(dicts_.begin(), dicts_.end());
    }

    // Pairs each opening with the closing tag at which the count of same-named openings
    // after it falls back to zero; openings never closed stay unpaired.
    static void match(std::string_view rest, std::string_view open, std::string_view close,
                      size_t p, std::vector<size_t>& stack,
                      std::vector<std::pair<size_t, size_t>>& pairs) {
        if (rest.starts_with(open)) {
            stack.push_back(p);
        } else if (rest.starts_with(close) && !stack.empty()) {
            pairs.emplace_back(stack.back(), p);
            stack.pop_back();
        }
    }

    static size_t partner(const std::vector<std::pair<size_t, size_t>>& pairs, size_t open) {
        const auto it =
            std::lower_bound(pairs.begin(), pairs.end(), std::make_pair(open, size_t{0}));
        return it != pairs.end() && it->first == open ? it->second : kNone;
    }

    // First closing tag at or after `from` that ends by `limit`.
    static size_t closeAfter(const std::vector<size_t>& positions, size_t from, size_t length,
                             size_t limit) {
        const auto it = std::lower_bound(positions.begin(), positions.end(), from);
        if (it == positions.end() || *it + length > limit) return kNone;
        return *it;
    }

    // The content of a simple element runs from its opening tag to the next "<", which has
    // to be its closing tag: text holding "<" therefore never reads back.
    bool simpleContent(size_t at, size_t limit, std::string_view closeTag, size_t& start,
                       size_t& close) const {
        size_t i = at + 1;
        while (i < limit && t_[i] != '<' && t_[i] != '>') ++i;
        if (i >= limit || t_[i] != '>') return false;
        start = i + 1;
        close = nextOpening(start, limit);
        return close != kNone && t_.substr(close, limit - close).starts_with(closeTag);
    }

    Value* textElement(Kind kind, std::string_view closeTag, size_t at, size_t limit,
                       size_t& next) {
        size_t start = 0, close = 0;
        if (!simpleContent(at, limit, closeTag, start, close)) return nullptr;
        next = close + closeTag.size();
        return makeText(kind, t_.substr(start, close - start));
    }

    Value* array(size_t at, size_t limit, int depth, size_t& next) {
        const std::string_view rest = t_.substr(at, limit - at);
        if (rest.starts_with("<array/>")) {
            next = at + 8;
            return createArray();
        }
        if (!rest.starts_with("<array>")) return nullptr;
        const size_t close = partner(arrays_, at);
        if (close == kNone || close + 8 > limit) return nullptr;
        Ref result(createArray());
        for (size_t p = nextOpening(at + 7, close); p != kNone;) {
            size_t after = p + 1;
            appendToArray(result.get(), element(p, close, depth + 1, after));
            if (tooDeep_) return nullptr;
            p = nextOpening(after, close);
        }
        next = close + 8;
        return result.take();
    }

    Value* dictionary(size_t at, size_t limit, int depth, size_t& next) {
        const std::string_view rest = t_.substr(at, limit - at);
        if (rest.starts_with("<dict/>")) {
            next = at + 7;
            return createDictionary();
        }
        if (!rest.starts_with("<dict>")) return nullptr;
        const size_t close = partner(dicts_, at);
        if (close == kNone || close + 7 > limit) return nullptr;
        Ref result(createDictionary());
        for (size_t p = at + 6;;) {
            const size_t key = closeAfter(openKey_, p, 5, close);
            if (key == kNone) break;
            const size_t keyEnd = closeAfter(closeKey_, key + 5, 6, close);
            if (keyEnd == kNone) break;
            const size_t valueAt = nextOpening(keyEnd + 6, close);
            if (valueAt == kNone) break;
            size_t after = valueAt + 1;
            Value* value = element(valueAt, close, depth + 1, after);
            if (tooDeep_) return nullptr;
            if (value) addToDictionary(result.get(), t_.substr(key + 5, keyEnd - key - 5), value);
            // A key without a value is dropped; the next key may then stand right there.
            p = value ? after : valueAt;
        }
        next = close + 7;
        return result.take();
    }

    Value* data(size_t at, size_t limit, size_t& next) {
        size_t start = 0, close = 0;
        if (!simpleContent(at, limit, "</data>", start, close)) return nullptr;
        next = close + 7;
        return createData(decodeBase64(t_.substr(start, close - start)));
    }

    static std::string decodeBase64(std::string_view s) {
        // Line breaks and indentation (everything below "+") are not part of the text.
        std::string digits;
        for (char c : s)
            if (static_cast<unsigned char>(c) >= '+') digits += c;
        size_t padding = 0;
        while (padding < 2 && padding < digits.size() && digits[digits.size() - 1 - padding] == '=')
            ++padding;
        std::string out;
        uint32_t w = 0;
        int bits = 0;
        for (size_t i = 0; i + padding < digits.size(); ++i) {
            const char c = digits[i];
            uint32_t d = 0;  // "=" and anything outside the alphabet count as 0
            if (c >= 'A' && c <= 'Z')
                d = c - 'A';
            else if (c >= 'a' && c <= 'z')
                d = c - 'a' + 26;
            else if (c >= '0' && c <= '9')
                d = c - '0' + 52;
            else if (c == '+')
                d = 62;
            else if (c == '/')
                d = 63;
            w = (w << 6) | d;
            bits += 6;
            if (bits >= 8) {
                bits -= 8;
                out += static_cast<char>((w >> bits) & 0xFF);
            }
        }
        return out;
    }

    static int32_t parseInteger(std::string_view s) {
        size_t i = 0;
        while (i < s.size() && static_cast<unsigned char>(s[i]) <= ' ') ++i;
        bool negative = false;
        if (i < s.size() && (s[i] == '-' || s[i] == '+')) negative = s[i++] == '-';
        int64_t v = 0;
        for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i)
            v = std::min<int64_t>(v * 10 + (s[i] - '0'), int64_t{1} << 32);
        if (negative) v = -v;
        return static_cast<int32_t>(std::clamp<int64_t>(v, std::numeric_limits<int32_t>::min(),
                                                        std::numeric_limits<int32_t>::max()));
    }

    static double parseReal(std::string_view s) {
        size_t i = 0;
        while (i < s.size() && static_cast<unsigned char>(s[i]) <= ' ') ++i;
        if (i < s.size() && s[i] == '+') ++i;
        double v = 0.0;
        const auto [ptr, ec] = std::from_chars(s.data() + i, s.data() + s.size(), v);
        (void)ptr;
        return ec == std::errc() ? v : 0.0;
    }

    std::string_view t_;
    bool tooDeep_ = false;
    std::vector<size_t> closeString_, closeInteger_, closeReal_, closeData_, closeDate_, closeKey_,
        openKey_;
    std::vector<std::pair<size_t, size_t>> arrays_, dicts_;
};

}  // namespace

Value* read(std::string_view text) {
    Reader reader(text);
    // Skip the prolog: the XML declaration, the DOCTYPE and the plist element's own tags.
    for (size_t p = text.find('<'); p != kNone; p = text.find('<', p + 1)) {
        const std::string_view rest = text.substr(p);
        if (rest.starts_with("<?") || rest.starts_with("<!") || rest.starts_with("<plist") ||
            rest.starts_with("</plist"))
            continue;
        size_t next = p + 1;
        Value* root = reader.element(p, text.size(), 0, next);
        if (reader.tooDeep()) {
            release(root);
            return nullptr;
        }
        return root;
    }
    return nullptr;
}

}  // namespace zolt::plist

// The property-list reader: a value tree from XML text.
#include "io/plist_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>
#include <vector>

namespace zolt::plist {

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
        const std::string_view content = t_.substr(start, close - start);
        return kind == Kind::Date ? createDate(content) : createString(content);
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

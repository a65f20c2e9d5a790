// The property-list value tree.
#include "io/plist_value.h"

#include <algorithm>

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

void setInteger(Value* dictionary, std::string_view key, int32_t i) {
    if (dictionary) addToDictionary(dictionary, key, createInteger(i));
}
void setReal(Value* dictionary, std::string_view key, double r) {
    if (dictionary) addToDictionary(dictionary, key, createReal(r));
}
void setString(Value* dictionary, std::string_view key, std::string_view utf8) {
    if (dictionary) addToDictionary(dictionary, key, createString(utf8));
}
void setBoolean(Value* dictionary, std::string_view key, bool b) {
    if (dictionary) addToDictionary(dictionary, key, createBoolean(b));
}
Value* setArray(Value* dictionary, std::string_view key) {
    if (!dictionary) return nullptr;
    Value* a = createArray();
    addToDictionary(dictionary, key, a);
    return a;
}
Value* setDictionary(Value* dictionary, std::string_view key) {
    if (!dictionary) return nullptr;
    Value* d = createDictionary();
    addToDictionary(dictionary, key, d);
    return d;
}
void appendInteger(Value* array, int32_t i) {
    if (array) appendToArray(array, createInteger(i));
}
void appendReal(Value* array, double r) {
    if (array) appendToArray(array, createReal(r));
}

}  // namespace zolt::plist

// The property-list value tree: typed values, dictionaries and arrays.
//
// Values are reference counted by hand: a count of 0 means one owner, release() frees a
// value only at 0 and otherwise lowers the count, and 255 marks a value that is never freed.
// Containers own their children; release() of a container releases each child.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt::plist {

enum class Kind : uint8_t {
    Dictionary = 0,
    Array = 1,
    String = 2,
    Integer = 3,
    Real = 4,
    Boolean = 5,
    Data = 6,
    Date = 7,
    TextBuffer = 8,
};

inline constexpr uint8_t kNeverFreed = 255;

struct Value {
    Kind kind = Kind::Dictionary;
    uint8_t refCount = 0;
    // Dictionary: keys[i] is the key of items[i] (its insertion index). Array: items.
    std::vector<std::string> keys;
    std::vector<Value*> items;
    // String and date: UTF-8 text as stored; data: the bytes.
    std::string text;
    // String and date: the length in UTF-16 code units (the 16-bit field, so capped).
    uint16_t wideLength = 0;
    int32_t integer = 0;
    double real = 0.0;
    bool boolean = false;
};

Value* createDictionary();
Value* createArray();
Value* createString(std::string_view utf8);
Value* createStringFromWide(std::u16string_view wide);
Value* createBoolean(bool b);
Value* createInteger(int32_t i);
Value* createReal(double r);
Value* createData(std::string_view bytes);
Value* createDate(std::string_view text);

// Copies the key and appends key and value; duplicates are not checked. Takes ownership.
void addToDictionary(Value* dictionary, std::string_view key, Value* value);
// The first value whose key equals the text byte for byte, or nullptr.
Value* lookUp(const Value* dictionary, std::string_view key);
// Takes ownership.
void appendToArray(Value* array, Value* value);

// Raises the count by one (not past kNeverFreed).
Value* retain(Value* value);
void release(Value* value);

std::u16string toWide(const Value* string);

// Wide text to UTF-8 with one, two or three bytes per code unit (surrogates are encoded
// one by one, never paired), and back; the reverse decodes the same three forms.
std::string utf8FromWide(std::u16string_view wide);
std::u16string wideFromUtf8(std::string_view utf8);

// Typed views of a value, nothing when it is absent or of another kind. numberOf accepts
// an integer or a real; textOf a string or a date.
std::optional<int32_t> integerOf(const Value* value);
std::optional<double> numberOf(const Value* value);
std::optional<bool> booleanOf(const Value* value);
const std::string* textOf(const Value* value);

// Typed setters: each adds the key with a new value of its kind to the dictionary, as
// addToDictionary does (no check for duplicates).
void setInteger(Value* dictionary, std::string_view key, int32_t i);
void setReal(Value* dictionary, std::string_view key, double r);
void setString(Value* dictionary, std::string_view key, std::string_view utf8);
void setBoolean(Value* dictionary, std::string_view key, bool b);
// Add an empty container under the key and return it for filling (nullptr without a
// dictionary).
Value* setArray(Value* dictionary, std::string_view key);
Value* setDictionary(Value* dictionary, std::string_view key);
void appendInteger(Value* array, int32_t i);
void appendReal(Value* array, double r);

// Owns one reference: releases on destruction.
class Ref {
public:
    Ref() = default;
    explicit Ref(Value* v) : v_(v) {}
    Ref(const Ref&) = delete;
    Ref& operator=(const Ref&) = delete;
    Ref(Ref&& o) noexcept : v_(o.v_) { o.v_ = nullptr; }
    Ref& operator=(Ref&& o) noexcept {
        if (this != &o) {
            reset();
            v_ = o.v_;
            o.v_ = nullptr;
        }
        return *this;
    }
    ~Ref() { reset(); }
    void reset(Value* v = nullptr) {
        if (v_) release(v_);
        v_ = v;
    }
    Value* get() const { return v_; }
    Value* take() {
        Value* v = v_;
        v_ = nullptr;
        return v;
    }
    Value* operator->() const { return v_; }
    explicit operator bool() const { return v_ != nullptr; }

private:
    Value* v_ = nullptr;
};

// Shares one value: copying retains it, destruction releases it.
class Shared {
public:
    Shared() = default;
    // Adopts the caller's reference.
    explicit Shared(Value* v) : v_(v) {}
    Shared(const Shared& o) : v_(o.v_ ? retain(o.v_) : nullptr) {}
    Shared& operator=(const Shared& o) {
        if (this != &o) {
            Value* v = o.v_ ? retain(o.v_) : nullptr;
            if (v_) release(v_);
            v_ = v;
        }
        return *this;
    }
    ~Shared() {
        if (v_) release(v_);
    }
    Value* get() const { return v_; }
    explicit operator bool() const { return v_ != nullptr; }

private:
    Value* v_ = nullptr;
};

}  // namespace zolt::plist

// Reading the keys of a document file's dictionaries: a key that is absent or of another kind
// reads as the fallback, so that a damaged file is read as far as it goes.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "io/plist.h"

namespace zolt::tree {

inline const plist::Value* child(const plist::Value* dict, std::string_view key, plist::Kind kind) {
    const plist::Value* v = dict ? plist::lookUp(dict, key) : nullptr;
    return v && v->kind == kind ? v : nullptr;
}

// An integer or a real.
inline std::optional<double> number(const plist::Value* dict, std::string_view key) {
    return plist::numberOf(dict ? plist::lookUp(dict, key) : nullptr);
}

// An integer, or a real truncated toward zero. A real that no saved integer can be (outside the
// 32-bit range the file's integers have, infinite or not a number) reads as absent, so that no
// conversion of it is ever undefined.
inline std::optional<int32_t> integer(const plist::Value* dict, std::string_view key) {
    const auto n = number(dict, key);
    if (!n || !std::isfinite(*n)) return std::nullopt;
    const double t = std::trunc(*n);
    if (t < -2147483648.0 || t > 2147483647.0) return std::nullopt;
    return static_cast<int32_t>(t);
}

inline int64_t integerOr(const plist::Value* dict, std::string_view key, int64_t fallback) {
    return integer(dict, key).value_or(fallback);
}

inline std::string stringOr(const plist::Value* dict, std::string_view key,
                            const std::string& fallback = {}) {
    const plist::Value* v = child(dict, key, plist::Kind::String);
    return v ? v->text : fallback;
}

}  // namespace zolt::tree

// Reading the keys of a document file's dictionaries: a key that is absent or of another kind
// reads as the fallback, so that a damaged file is read as far as it goes.
#pragma once

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

inline int64_t integerOr(const plist::Value* dict, std::string_view key, int64_t fallback) {
    const auto n = number(dict, key);
    return n ? static_cast<int64_t>(*n) : fallback;
}

inline std::string stringOr(const plist::Value* dict, std::string_view key,
                            const std::string& fallback = {}) {
    const plist::Value* v = child(dict, key, plist::Kind::String);
    return v ? v->text : fallback;
}

}  // namespace zolt::tree

// Reading the XML text form of a property list back into a value tree.
#pragma once

#include <string_view>

#include "io/plist_value.h"

namespace zolt::plist {

// Deeper nesting than this reads as nothing, so hostile text cannot exhaust the stack.
inline constexpr int kMaxReadDepth = 512;
// The first element after the prolog ("<?xml", "<!DOCTYPE", "<plist>"); nullptr when it is
// unreadable or damaged.
Value* read(std::string_view text);

}  // namespace zolt::plist

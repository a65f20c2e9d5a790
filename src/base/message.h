// A message for the caller that owns the user action to show: the box's caption and its text.
#pragma once

#include <string>

namespace zolt {

struct Message {
    std::string caption;
    std::string text;
    bool operator==(const Message&) const = default;
};

}  // namespace zolt

// What a user action on a document hands back to the command that ran it.
#pragma once

#include <optional>

#include "base/message.h"

namespace zolt {

struct OperationResult {
    bool applied = false;            // the document changed: its window is redrawn
    std::optional<Message> message;  // shown by the caller, caption and text as they are
};

}  // namespace zolt

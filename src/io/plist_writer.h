// The XML text form of a property-list value tree.
#pragma once

#include <string>

#include "io/plist_value.h"

namespace zolt::plist {

std::string write(const Value* root);
// Writes to a temporary file beside the path and renames it into place, so a failure
// leaves nothing half-written. Returns false when the file cannot be created.
bool writeFile(const Value* root, const std::string& path);

}  // namespace zolt::plist

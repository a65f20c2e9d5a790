// The analysis part of a document file: "peaks" and "multiplets".
#pragma once

#include "io/plist.h"

namespace zolt {

// Both are written in every spectrum document, empty while the document keeps no peak list
// and no multiplets.
plist::Value* peaksToTree();
plist::Value* multipletsToTree();

}  // namespace zolt

// The analysis part of a document file: "peaks" and "multiplets".
#pragma once

#include "io/plist.h"
#include "model/peak_list.h"

namespace zolt {

// Both are written in every spectrum document, empty while the document keeps no peak list
// and no multiplets. The peaks: 1-D positions as reals, 2-D and 3-D peaks as arrays of two or
// three reals, in the list's order.
plist::Value* peaksToTree(const PeakLists& peaks);
plist::Value* multipletsToTree();

// Entries of another shape are skipped.
PeakLists peaksFromTree(const plist::Value* array);
bool sameLists(const PeakLists& a, const PeakLists& b);

}  // namespace zolt

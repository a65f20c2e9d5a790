// The page record and its display-parameter records in a document file.
#pragma once

#include <string_view>

#include "io/plist.h"
#include "model/display_record.h"

namespace zolt {

plist::Value* displayParametersToTree(const DisplayParameters& plot);
// Missing booleans read as false, other missing keys keep the record's values; values no
// record can hold are clamped. A plot without usable limits gets none (the opener fills them).
DisplayParameters displayParametersFromTree(const plist::Value* dict);

// Adds the page record's keys, in their order, to a dictionary (the window state).
void addPageRecordKeys(plist::Value* dict, const PageRecord& page);
// Reads them back; without "the insets" the page has no plots.
PageRecord pageRecordFromTree(const plist::Value* dict);
bool isPageRecordKey(std::string_view key);

}  // namespace zolt

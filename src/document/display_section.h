// The display part of a document file: "window state" (with the sample metadata), "xyz index"
// and "pages".
#pragma once

#include <string_view>

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

plist::Value* windowStateToTree(const SpectrumDocument& doc);
// Restores the window state, the metadata and the first page's record (no plots when the file
// has none); nothing changes without a dictionary.
void windowStateFromTree(const plist::Value* windowState, SpectrumDocument& doc);
// Whether windowStateToTree fills the key (whether or not it writes it for a given document).
bool isWindowStateKey(std::string_view key);

// The f-indices shown horizontally, vertically and as the third axis.
plist::Value* xyzIndexToTree(const SpectrumSource& source);

// One dictionary per page after the first; a document has only its first page so far.
plist::Value* pagesToTree();

}  // namespace zolt

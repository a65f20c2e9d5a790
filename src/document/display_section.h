// The display part of a document file: "window state" (with the sample metadata) and
// "xyz index".
#pragma once

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

plist::Value* windowStateToTree(const SpectrumDocument& doc);
// Restores the window state and the metadata; nothing changes without a dictionary.
void windowStateFromTree(const plist::Value* windowState, SpectrumDocument& doc);

// The f-indices shown horizontally, vertically and as the third axis.
plist::Value* xyzIndexToTree(const SpectrumSource& source);

}  // namespace zolt

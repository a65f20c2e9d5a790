// The integral part of a document file: "integral regions", an array of arrays of six reals,
// the fields of each region in order. Their divisor is the page record's "integral
// normalization".
#pragma once

#include <string_view>

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

// Adds the regions to the root dictionary when there are any.
void addIntegralSection(plist::Value* root, const SpectrumDocument& doc);
// Restores the regions; entries that are not six numbers are skipped.
void integralSectionFromTree(const plist::Value* root, SpectrumDocument& doc);
bool isIntegralSectionKey(std::string_view key);

}  // namespace zolt

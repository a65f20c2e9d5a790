// The integral part of a document file: "integral regions" (an array of arrays of six reals,
// the fields of each region in order) and "integral normalization" (the divisor, a real).
#pragma once

#include <string_view>

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

// Adds the keys to the root dictionary: the regions when there are any, the divisor when it
// is not 1.
void addIntegralSection(plist::Value* root, const SpectrumDocument& doc);
// Restores the regions and the divisor; entries that are not six numbers are skipped, and a
// divisor that is not a finite non-zero number reads as 1.
void integralSectionFromTree(const plist::Value* root, SpectrumDocument& doc);
bool isIntegralSectionKey(std::string_view key);

}  // namespace zolt

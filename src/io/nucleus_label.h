// Nuclei named in text by the formats that do not code them: "1H", "13C", "15N", or a bare
// symbol such as "H", "CA" or "HN" (a nucleus and the atom it sits on).
#pragma once

#include <string_view>

#include "model/dimension_record.h"

namespace zolt {

// Sets the axis' isotope and atom from the label: the mass number, then the element symbol,
// its first character at or above "A" and an optional lower-case second one. Without a mass
// number the usual isotope of H, C, N, F or P is taken. False, and the axis unchanged, when
// the label names no element.
bool setNucleusFromLabel(DimensionRecord& axis, std::string_view label);

}  // namespace zolt

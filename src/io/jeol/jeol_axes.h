// What a JEOL Delta file says about its axes in words: nuclei named in full ("Proton",
// "Carbon13") and the digital filter described by its stages.
#pragma once

#include <string_view>

#include "model/dimension_record.h"

namespace zolt {

// "Proton", "Deuterium", "Carbon13", "Fluorine19", "Phosphorus31" ..., or a label such as "1H"
// and "13C". False, and the axis unchanged, when the title names no nucleus.
bool setJeolNucleus(DimensionRecord& axis, std::string_view title);

// The group delay, in points, of the decimating filter whose stages the parameters "orders"
// ("25473": 2 stages of orders 54 and 73) and "factors" ("82": decimation by 8, then by 2)
// describe; 0 when they are missing or do not agree.
double jeolGroupDelay(std::string_view orders, std::string_view factors);

}  // namespace zolt

// The integral table that leaves through the clipboard: tab-separated text and the same rows as
// a property list.
#pragma once

#include <string>
#include <vector>

#include "analysis/integration.h"
#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kMidpointsQuestion = "OK to report the midpoints?";
inline constexpr const char* kMidpointsChoices =
    "yes = report the midpoints\r\nno = report the intervals";

// The axes the document shows horizontally, vertically and as the third axis.
IntegralAxes integralAxes(const SpectrumDocument& doc);
// 1, 2 or 3: the kind of region the document's reports list.
int integralKind(const SpectrumDocument& doc);
// What a raw integral is multiplied by before it is shown: 1 / the normalisation divisor.
double integralFactor(const SpectrumDocument& doc);

// The regions of the first document whose kind matches its dimensions, one line each,
// numbered from 1, with midpoints or intervals (limit B..limit A), then one integral column
// per document: integral x scale x that document's factor. Several documents name their
// columns in the header instead of "integral". With commaSeparated every tab is a comma.
std::string integralReportText(const std::vector<const SpectrumDocument*>& docs, bool midpoints,
                               double scale, bool commaSeparated);

// The same table as an array of rows, each an array: the number (integer), then reals in the
// order of the text's columns (the interval as two reals, B then A).
plist::Value* integralReportList(const std::vector<const SpectrumDocument*>& docs, bool midpoints,
                                 double scale);

}  // namespace zolt

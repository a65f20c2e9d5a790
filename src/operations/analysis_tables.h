// A document's measurements as the tab-separated tables the clipboard receives ("\r\n" line
// ends; commas instead of tabs when the comma preference is on). Batch processing writes the
// same texts to files.
#pragma once

#include <string>

#include "model/spectrum_document.h"

namespace zolt {

// The peak list: 1-D without widths, 2-D sorted, 3-D. Refines the stored 1-D positions first,
// as copying the list does.
std::string peakTableText(SpectrumDocument& doc, bool commaSeparated);

// The integral regions of the document's kind, with midpoints or with intervals.
std::string integralTableText(const SpectrumDocument& doc, bool midpoints, bool commaSeparated);

}  // namespace zolt

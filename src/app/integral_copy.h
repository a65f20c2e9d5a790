// Edit > Copy > Integrals: the integral table of the documents on the clipboard.
#pragma once

#include <vector>

#include "app/application.h"

namespace zolt {

// For 1-D documents asks whether to report midpoints or intervals (Yes/No); then places the
// table as text (commas with the comma preference) and as a property list, and beeps. The
// first document's regions are integrated on every document given.
void copyIntegrals(Application& app, const std::vector<const SpectrumDocument*>& docs);

}  // namespace zolt

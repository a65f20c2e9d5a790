// The actions of the 2-D peak picker on a document's 2-D or 3-D list.
#pragma once

#include <optional>

#include "analysis/peak_picking_2d.h"
#include "model/peak_list.h"

namespace zolt {

enum class PeakAction : uint8_t {
    ScanSpectrum = 0,  // clear, then pick the whole spectrum
    ClearAll = 1,
    SaveOptions = 2,     // the options only
    ClearSelection = 3,  // delete the peaks inside the selection
    ScanSelection = 4,   // delete inside, then pick inside
    UndoHighest = 5,     // takes back the last peak added
    PickSelection = 6,   // pick inside and append
    AddHighest = 7,      // append the highest point of the selection
};

// Runs options.action on the list of the options' number of dimensions. Actions that need a
// selection do nothing without one. True when the list changed.
struct PeakActionResult {
    bool changed = false;
    bool tooMany = false;  // the pick passed its limit and added nothing
};
PeakActionResult runPeakAction(PeakLists& lists, const SpectrumMatrix& m, const PeakAxes& axes,
                               const std::optional<PpmBox>& selection, PeakPickingOptions& options);

}  // namespace zolt

// Peak picking on a document and what the scripts read of its peak list.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "analysis/peak_actions.h"
#include "analysis/peak_options.h"
#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// The picking minimum never asks for fewer display points than this.
inline constexpr int kMinimumPickingPoints = 4;

// Picks every ppm fragment the main plot shows. A threshold of 0 or NaN takes the plot's own;
// at least pickingMinimum display points either way.
OperationResult pickPeaks1D(SpectrumDocument& doc, double threshold, bool highestOnly,
                            int pickingMinimum);

// The peak-picker tool over a ppm range of a 1-D trace: picks as pickPeaks1D would with the
// plot showing only that range (the plot's own threshold), merging into the list. Marks the
// document modified when it was picked.
OperationResult pickPeaksInRange(SpectrumDocument& doc, double ppmA, double ppmB,
                                 int pickingMinimum);

// One action of the 2-D picker with the stored options; the threshold becomes the main plot's
// lowest contour level, the upper limit keeps its ratio to it.
OperationResult runPeakPicker(SpectrumDocument& doc, const PeakPickingOptions& stored,
                              const std::optional<PpmBox>& selection);

// What ups() does: 1-D documents are picked at the plot's threshold, 2-D and 3-D ones scanned
// whole. Only transformed spectra are picked.
OperationResult pickAllPeaks(SpectrumDocument& doc, const PeakPickingOptions& stored,
                             int pickingMinimum);

// Empties the peak lists (View > Remove Frequencies); the document is marked as modified.
OperationResult removePeaks(SpectrumDocument& doc);

// The 1-D table with the width at half height of every peak (the header doubled).
std::string peakTableTextWithWidths(SpectrumDocument& doc, bool commaSeparated);

// The f-indices of the peaks' coordinates: horizontal, vertical and, in 3-D, the third axis.
PeakAxes peakAxes(const SpectrumDocument& doc);

// The document's own list (1-D, 2-D or 3-D by its frequency axes).
size_t peakCount(const SpectrumDocument& doc);
// The stored ppm values of peak `index` (0-based); none when it does not exist.
std::vector<double> peakColumns(const SpectrumDocument& doc, size_t index);

// The main plot the picker reads its scale from; a document without plots is picked as the
// default window would show it.
DisplayParameters mainPlotForPicking(const SpectrumDocument& doc);

}  // namespace zolt

// What a document shows and at which scale: the actions behind the view commands.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// The main plot; a document without display records gets its defaults first.
DisplayParameters& mainPlot(SpectrumDocument& doc);

// The automatic vertical scale of the main plot, from the shown data (adj).
OperationResult adjustScale(SpectrumDocument& doc);
// After the data changed domain: the automatic scale again, unless it was set by hand.
void rescaleAfterDataChange(SpectrumDocument& doc);
// Divides the main plot's threshold by the factor within its bounds; any factor but 1 marks
// the scale as set by hand. Returns the new threshold.
float amplifyScale(SpectrumDocument& doc, double factor);

// Ascending ppm pairs for the horizontal, vertical and third axis; an absent pair leaves that
// axis. Each pair is clamped to its axis; the third axis' pair sets the shown plane at its
// centre.
using RegionPairs = std::array<std::optional<std::array<double, 2>>, 3>;
OperationResult showRegion(SpectrumDocument& doc, const RegionPairs& pairs);
// The whole spectrum in one main plot, without zoom or insets.
OperationResult showWholeSpectrum(SpectrumDocument& doc);

struct ClientSize {
    int width = 0;
    int height = 0;
};
ClientSize clientSize(SpectrumDocument& doc);
// The plots follow the new size.
OperationResult setClientSize(SpectrumDocument& doc, ClientSize size);

// 1-D only: the tallest point within ppm +- width (the first of equal ones, only points above
// the smallest positive float) is moved to ppm. Nothing happens without such a point.
OperationResult referenceToPeak(SpectrumDocument& doc, double ppm, double width);
// Moves the scale of f-index f by delta ppm; the horizontal axis when f names none with at
// least 2 points.
OperationResult shiftScale(SpectrumDocument& doc, double delta, int f);

// The marks of the horizontal axis (index 0) or the vertical one (1).
OperationResult setMarks(SpectrumDocument& doc, int axis, std::vector<float> ppm);

// Marks the document as modified either way.
void setCustomWorkflow(SpectrumDocument& doc, bool on);

// Transformed 2-D documents only: "C" contours, "W" gradient contours, "S" stacked, "Z"
// white-washed, "A" arrayed, "B" chessboard, any other letter fast plot; either case.
OperationResult setPlotModeFromLetter(SpectrumDocument& doc, char letter);

// Switches one of the main plot's display flags (integral values or curves, peak frequencies,
// peak labels); the document is marked as modified.
OperationResult toggleDisplayFlag(SpectrumDocument& doc, uint32_t flag);

}  // namespace zolt

// Phase corrections of a document: manual, automatic, and of a single row.
#pragma once

#include <cstddef>
#include <optional>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// Adds (zero, first) radians to the stored phase of fIndex, or of the horizontal axis when no
// axis is given, and applies the change to the data where they are in the frequency domain.
OperationResult changeDocumentPhase(SpectrumDocument& doc, double zero, double first,
                                    std::optional<int> fIndex = std::nullopt);
// The same change given in degrees, as the phase command and the Phase Correction dialog take it.
OperationResult changeDocumentPhaseDegrees(SpectrumDocument& doc, double zeroDegrees,
                                           double firstDegrees,
                                           std::optional<int> fIndex = std::nullopt);

// A manual phase as the Phase Correction dialog holds it: the zero order is the change at the
// pivot point (a point index of the axis), the first order the change across the whole axis.
struct PivotedPhase {
    double zeroDegrees = 0.0;
    double firstDegrees = 0.0;
    double pivot = 0.0;
};
// The zero order at the axis' first point that the same change means (what phase() is given).
double zeroOrderAtFirstPoint(const PivotedPhase& p, size_t points);
// The pivoted change that brings the stored phase (radians) of an axis back to zero.
PivotedPhase removingPhase(const DimensionRecord& d, double pivot);

// Automatic phase of a transformed spectrum with imaginary parts that is not in magnitude
// representation: 1-D with the chosen criterion (alternative: the baseline-point one), 2-D
// with its own search; 3-D is left alone.
OperationResult automaticPhase(SpectrumDocument& doc, bool alternative);

// Rotates one row along the horizontal axis by a + k*b/N radians; the stored phase is not
// changed. A row that does not exist, or data without imaginary parts, are left alone.
OperationResult phaseRow(SpectrumDocument& doc, size_t row, double a, double b);

}  // namespace zolt

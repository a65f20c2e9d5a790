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

// Automatic phase of a transformed spectrum with imaginary parts that is not in magnitude
// representation: 1-D with the chosen criterion (alternative: the baseline-point one), 2-D
// with its own search; 3-D is left alone.
OperationResult automaticPhase(SpectrumDocument& doc, bool alternative);

// Rotates one row along the horizontal axis by a + k*b/N radians; the stored phase is not
// changed. A row that does not exist, or data without imaginary parts, are left alone.
OperationResult phaseRow(SpectrumDocument& doc, size_t row, double a, double b);

}  // namespace zolt

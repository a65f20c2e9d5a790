// Baseline corrections of a document: automatic, polynomial and straight-line.
#pragma once

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// What poly() and bline() take when omitted, and what the default start-up script asks for.
inline constexpr int kDefaultBaselineOrder = 7, kDefaultBaselineFilter = 64;

// Baseline (1-D) or baseplane (2-D and 3-D) correction of a spectrum transformed along every
// axis, with the settings of the document's last automatic step (what the Baseline dialog
// left), else a polynomial of order 3 over a narrow filter.
OperationResult automaticBaseline(SpectrumDocument& doc);

// Polynomial baseline of the given order and moving-average width along the horizontal axis,
// once the document is transformed along it. The step is recorded when it ran.
OperationResult polynomialBaseline(SpectrumDocument& doc, int order, int filter);

// Straight-line baseline of a transformed 1-D spectrum.
OperationResult straightBaseline(SpectrumDocument& doc);

}  // namespace zolt

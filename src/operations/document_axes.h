// Which axes of a document the operations act along.
#pragma once

#include "model/spectrum_document.h"

namespace zolt {

// The horizontal axis of the document's display (f1 when it names none).
int horizontalAxis(const SpectrumDocument& doc);

// Axes that are frequency axes: neither absent, single-point nor pseudo-dimensions.
int frequencyAxes(const SpectrumMatrix& m);

}  // namespace zolt

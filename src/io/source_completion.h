// What the opener completes on every source a reader hands over: the display axes, minimum
// widths and carriers, and the default block size.
#pragma once

#include "model/spectrum_source.h"

namespace zolt {

// Walks the f-indices from the current x index up to 3: each axis with more than one point
// pushes the display indices down (z takes y, y takes x, x takes the axis), so x ends on the
// direct axis; such an axis gets at least 0.01 ppm of width (else 10 ppm) and a carrier of at
// least 1 MHz, while an axis with fewer points gets exactly 1. A block size of 0 becomes
// kDefaultBlockSize. An axis already shown along x does not push itself, so completing a
// completed source changes nothing.
void completeSource(SpectrumSource& source);

}  // namespace zolt

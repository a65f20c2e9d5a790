// Zero- and first-order phase of a frequency dimension: applying and storing it.
#pragma once

#include "model/spectrum_matrix.h"

namespace zolt {

// Rotates point k of every vector along fIndex by phaseA + k*phaseB/N (N the points of the
// axis). With |phaseB| <= 0.0001 the first order is ignored.
void applyPhase(SpectrumMatrix& m, int fIndex, double phaseA, double phaseB);

// phase0 brought into -pi ... pi by whole turns.
float wrapPhase(double phase0);

// Adds (delta0, delta1) to the stored phase of fIndex and applies the increment to the data
// when the matrix has imaginary parts, the axis has 2 points or more, it is in the frequency
// domain (fIndex > highestTIndex) and the increment is not negligible.
void changePhase(SpectrumMatrix& m, int highestTIndex, int fIndex, double delta0, double delta1);

}  // namespace zolt

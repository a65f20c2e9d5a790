// Zero- and first-order phase of a frequency dimension: applying and storing it.
#pragma once

#include "model/spectrum_matrix.h"

namespace zolt {

// Rotates point k of every vector along fIndex by phaseA + k*phaseB/N (N the points of the
// axis). With |phaseB| <= 0.0001 the first order is ignored.
//
// Hypercomplex halves (dims[0].points == 2): inside each half, re and im are the complex pairs
// of the axis transformed last, the lowest f-index with 2 points or more (f1 of a 2-D set);
// that is how the shuffling of the indirect transform leaves them. Along every other axis the
// first half holds the real and the second half the imaginary parts, so phasing there rotates
// (re[p], re[p + half]) and (im[p], im[p + half]) in place, with no rearrangement.
void applyPhase(SpectrumMatrix& m, int fIndex, double phaseA, double phaseB);

// The same rotation on one complex row of n points (no hypercomplex arrangement).
void applyPhaseToRow(float* re, float* im, size_t n, double phaseA, double phaseB);

// phase0 brought into -pi ... pi by whole turns.
float wrapPhase(double phase0);

// Adds (delta0, delta1) to the stored phase of fIndex and applies the increment to the data
// when the matrix has imaginary parts, the axis has 2 points or more, it is in the frequency
// domain (fIndex > highestTIndex) and the increment is not negligible. A magnitude matrix is
// first turned back into cartesian form; in the complex-conjugate state the increment is
// applied negated.
void changePhase(SpectrumMatrix& m, int highestTIndex, int fIndex, double delta0, double delta1);

// True when the matrix holds two hypercomplex halves.
bool hasHypercomplexHalves(const SpectrumMatrix& m);
// The axis whose complex pairs are re/im inside each half (see applyPhase); 0 when none.
int halvesComplexAxis(const SpectrumMatrix& m);

// How the values of one axis lie in the buffer: `outer` blocks of n points spaced by `inner`
// floats, the inner values of one point consecutive. inner == 1 for the contiguous axis.
struct AxisWalk {
    size_t n = 1, inner = 1, outer = 1;
};
// count: the floats walked (the whole array, or one half of a hypercomplex matrix).
AxisWalk axisWalk(const SpectrumMatrix& m, int fIndex, size_t count);

}  // namespace zolt

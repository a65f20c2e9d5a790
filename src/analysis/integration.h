// The value of an integral region: a plain sum of points, in 1-D with an optional straight-line
// correction between averaged end-points; and the unit that normalises a list of integrals.
#pragma once

#include <cstddef>
#include <vector>

#include "model/integral_region.h"
#include "model/spectrum_matrix.h"

namespace zolt {

// The f-indices shown horizontally, vertically and as the third axis (0: not shown).
struct IntegralAxes {
    int x = 1, y = 0, z = 0;
};

// Index of a ppm limit along an axis of n points: trunc((1 - (ppm - lowest)/width) * n + 0.5),
// clamped to 0 ... n (n itself allowed: a limit is an edge between points).
size_t integralLimitIndex(const DimensionRecord& axis, double ppm);
// The ppm of the high-ppm edge of point i (not its centre): (1 - i/n) * width + lowest.
double edgePpm(const DimensionRecord& axis, size_t i);

// Points [i0, i1) of a trace of n, with the straight line between the averages of the m points
// ending at i0 and of the m points starting at i1 - 1 subtracted, m = min(n - i1, i0,
// endPointCount) (no correction when m <= 0).
double integrateTrace(const float* trace, size_t n, size_t i0, size_t i1, long endPointCount);

// The region's integral on the real parts of the matrix, by the region's own kind: 1-D along
// axes.x (first row of the other axes), 2-D the rectangle in the first plane, 3-D the rectangle
// in the plane nearest to the middle of the third-axis limits. 0 when an axis it needs is not
// there.
double integrateRegion(const SpectrumMatrix& m, const IntegralAxes& axes,
                       const IntegralRegion& region);

// Values at or below this take no part in the estimate of the unit.
inline constexpr double kSmallestCountedIntegral = 1e-5;
// The integral that one nucleus gives, estimated from the integrals lying within a factor of
// 10 of the smallest counted one: each is taken as a whole multiple k = round(value/smallest) of
// the unit, and the unit is their least-squares common factor, sum(k v) / sum(k k). Integrals of
// groups of two or three nuclei among them so count for what they are instead of pulling the
// unit up. 0 when no integral is counted.
double integralUnit(std::vector<double> integrals);

}  // namespace zolt

// A trace reduced to the pixel columns of a plot: the lowest and the highest of the points
// each column covers, so that no peak top falls between two columns however many points
// share one.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

struct ColumnExtremes {
    float low = 0.0f, high = 0.0f;
};

// Column c covers the fractional point positions firstPoint + c * step ... firstPoint +
// (c + 1) * step, both ends included so that neighbouring columns join; positions outside
// 0 ... n - 1 are clamped. Empty when there are no points.
std::vector<ColumnExtremes> columnExtremes(const float* trace, size_t n, double firstPoint,
                                           double step, int columns);

}  // namespace zolt

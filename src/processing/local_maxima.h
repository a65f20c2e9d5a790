// The strongest local maxima of a value over a grid of points (a 2-D plane, or one row).
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

struct LocalMaximum {
    double value;
    size_t i1, i2;  // row (along f1) and column (along the row)
};

// The `count` largest, largest first, in place.
void keepStrongest(std::vector<LocalMaximum>& maxima, size_t count);

// The points of an n1 x n2 grid whose value is positive and exceeded by none of its eight
// neighbours (neighbours outside the grid do not count), searched at least margin1 rows and
// margin2 columns from the edges; the `count` largest, largest first. value(i1, i2) gives the
// value of a point; a template so that the scan over a whole plane stays a tight loop.
template <typename Value>
std::vector<LocalMaximum> strongestLocalMaxima(const Value& value, size_t n1, size_t n2,
                                               size_t margin1, size_t margin2, size_t count) {
    std::vector<LocalMaximum> maxima;
    if (margin1 >= n1 || n1 - margin1 <= margin1 || margin2 >= n2 || n2 - margin2 <= margin2)
        return maxima;
    // Three rows of values roll down the grid, so each point's value is worked out once rather
    // than once for itself and once for each of its neighbours.
    std::vector<double> rows(3 * n2);
    double* above = rows.data();
    double* here = above + n2;
    double* below = here + n2;
    const auto fill = [&](double* row, size_t i1) {
        for (size_t i2 = 0; i2 < n2; ++i2) row[i2] = value(i1, i2);
    };
    if (margin1 > 0) fill(above, margin1 - 1);
    fill(here, margin1);
    for (size_t i1 = margin1; i1 + margin1 < n1; ++i1) {
        const bool hasAbove = i1 > 0, hasBelow = i1 + 1 < n1;
        if (hasBelow) fill(below, i1 + 1);
        for (size_t i2 = margin2; i2 + margin2 < n2; ++i2) {
            const double v = here[i2];
            if (!(v > 0.0)) continue;
            const size_t lo = i2 > 0 ? i2 - 1 : i2, hi = i2 + 1 < n2 ? i2 + 1 : i2;
            bool top = true;
            for (size_t k = lo; k <= hi && top; ++k) {
                if (hasAbove && above[k] > v) top = false;
                if (k != i2 && here[k] > v) top = false;
                if (hasBelow && below[k] > v) top = false;
            }
            if (top) maxima.push_back({v, i1, i2});
        }
        double* spare = above;
        above = here;
        here = below;
        below = spare;
    }
    keepStrongest(maxima, count);
    return maxima;
}

}  // namespace zolt

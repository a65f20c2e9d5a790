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
    for (size_t i1 = margin1; i1 + margin1 < n1; ++i1)
        for (size_t i2 = margin2; i2 + margin2 < n2; ++i2) {
            const double v = value(i1, i2);
            bool top = v > 0.0;
            for (int d1 = -1; d1 <= 1 && top; ++d1) {
                if ((i1 == 0 && d1 < 0) || i1 + d1 >= n1) continue;
                for (int d2 = -1; d2 <= 1 && top; ++d2) {
                    if ((i2 == 0 && d2 < 0) || i2 + d2 >= n2) continue;
                    if ((d1 || d2) && value(i1 + d1, i2 + d2) > v) top = false;
                }
            }
            if (top) maxima.push_back({v, i1, i2});
        }
    keepStrongest(maxima, count);
    return maxima;
}

}  // namespace zolt

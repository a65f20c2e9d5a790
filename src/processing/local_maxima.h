// The strongest local maxima of a value over a grid of points (a 2-D plane, or one row).
#pragma once

#include <algorithm>
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
    // The values are worked out once per point, a band of rows at a time (with the row above
    // and below it), walking down each column of the band: whichever axis lies contiguous in
    // memory, the few cache lines of a band's column stay in cache across the whole band.
    constexpr size_t kBand = 64;
    const size_t last = n1 - margin1;  // one past the last row searched
    std::vector<double> band(std::min(kBand + 2, n1) * n2);
    for (size_t b0 = margin1; b0 < last; b0 += kBand) {
        const size_t b1 = std::min(last, b0 + kBand);
        const size_t top = b0 > 0 ? b0 - 1 : 0, bottom = std::min(n1, b1 + 1);
        for (size_t i2 = 0; i2 < n2; ++i2)
            for (size_t i1 = top; i1 < bottom; ++i1) band[(i1 - top) * n2 + i2] = value(i1, i2);
        for (size_t i1 = b0; i1 < b1; ++i1) {
            const bool hasAbove = i1 > 0, hasBelow = i1 + 1 < n1;
            const double* here = band.data() + (i1 - top) * n2;
            const double* above = hasAbove ? here - n2 : here;
            const double* below = hasBelow ? here + n2 : here;
            for (size_t i2 = margin2; i2 + margin2 < n2; ++i2) {
                const double v = here[i2];
                if (!(v > 0.0)) continue;
                const size_t lo = i2 > 0 ? i2 - 1 : i2, hi = i2 + 1 < n2 ? i2 + 1 : i2;
                bool peak = true;
                for (size_t k = lo; k <= hi && peak; ++k) {
                    if (hasAbove && above[k] > v) peak = false;
                    if (k != i2 && here[k] > v) peak = false;
                    if (hasBelow && below[k] > v) peak = false;
                }
                if (peak) maxima.push_back({v, i1, i2});
            }
        }
    }
    keepStrongest(maxima, count);
    return maxima;
}

}  // namespace zolt

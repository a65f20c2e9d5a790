// The strongest local maxima of a value over a grid of points (a 2-D plane, or one row).
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace zolt {

struct LocalMaximum {
    double value;
    size_t i1, i2;  // row (along f1) and column (along the row)
};

// The `count` largest, largest first, in place.
void keepStrongest(std::vector<LocalMaximum>& maxima, size_t count);

// A grid whose values are read a line at a time along the axis that lies contiguous in memory:
// values(j, out) writes the values of all points of line j, which is row j (along i2) when
// alongRows, else column j (along i1), and returns a bound no value of the line but a NaN
// exceeds (the largest, or infinity).
struct GridLines {
    size_t n1 = 0, n2 = 0, margin1 = 0, margin2 = 0;
    bool alongRows = true;
    std::function<double(size_t, double*)> values;
};

// What strongestLocalMaxima below returns for the same values, point for point, found faster:
// the lines are scanned on the row threads and each keeps only its strongest candidates. When
// ties among the strongest would let the order of the scan decide, every maximum is gathered
// and ordered as the row-by-row scan pushes them.
std::vector<LocalMaximum> strongestLocalMaxima(const GridLines& grid, size_t count);

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
    // and below it), tile by tile of the band's columns: whichever axis lies contiguous in
    // memory, the cache lines and pages of a tile stay at hand across the whole tile.
    constexpr size_t kBand = 64, kTile = 16;
    const size_t last = n1 - margin1;  // one past the last row searched
    std::vector<double> band(std::min(kBand + 2, n1) * n2);
    for (size_t b0 = margin1; b0 < last; b0 += kBand) {
        const size_t b1 = std::min(last, b0 + kBand);
        const size_t top = b0 > 0 ? b0 - 1 : 0, bottom = std::min(n1, b1 + 1);
        for (size_t t0 = 0; t0 < n2; t0 += kTile) {
            const size_t t1 = std::min(n2, t0 + kTile);
            for (size_t i1 = top; i1 < bottom; ++i1)
                for (size_t i2 = t0; i2 < t1; ++i2) band[(i1 - top) * n2 + i2] = value(i1, i2);
        }
        for (size_t i1 = b0; i1 < b1; ++i1) {
            // A missing row or column stands in as the point's own, which never exceeds it.
            const double* here = band.data() + (i1 - top) * n2;
            const double* above = i1 > 0 ? here - n2 : here;
            const double* below = i1 + 1 < n1 ? here + n2 : here;
            for (size_t i2 = margin2; i2 + margin2 < n2; ++i2) {
                const double v = here[i2];
                if (!(v > 0.0)) continue;
                const size_t lo = i2 > 0 ? i2 - 1 : i2, hi = i2 + 1 < n2 ? i2 + 1 : i2;
                const bool peak = !(above[lo] > v) & !(above[i2] > v) & !(above[hi] > v) &
                                  !(here[lo] > v) & !(here[hi] > v) & !(below[lo] > v) &
                                  !(below[i2] > v) & !(below[hi] > v);
                if (peak) maxima.push_back({v, i1, i2});
            }
        }
    }
    keepStrongest(maxima, count);
    return maxima;
}

}  // namespace zolt

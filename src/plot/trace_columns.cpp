#include "plot/trace_columns.h"

#include <algorithm>
#include <cmath>

namespace zolt {

namespace {

size_t clampedIndex(double position, size_t n) {
    if (!(position > 0.0)) return 0;  // NaN too
    return static_cast<size_t>(std::min(std::round(position), double(n - 1)));
}

}  // namespace

std::vector<ColumnExtremes> columnExtremes(const float* trace, size_t n, double firstPoint,
                                           double step, int columns) {
    std::vector<ColumnExtremes> out;
    if (n == 0 || columns <= 0) return out;
    out.resize(static_cast<size_t>(columns));
    for (int c = 0; c < columns; ++c) {
        size_t a = clampedIndex(firstPoint + c * step, n);
        size_t b = clampedIndex(firstPoint + (c + 1) * step, n);
        if (a > b) std::swap(a, b);
        const auto [lo, hi] = std::minmax_element(trace + a, trace + b + 1);
        out[static_cast<size_t>(c)] = {*lo, *hi};
    }
    return out;
}

}  // namespace zolt

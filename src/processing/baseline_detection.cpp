#include "processing/baseline_detection.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace zolt {
namespace {

// Marks every unmarked point of d[lo ... hi] above mean + 3 sigma of the unmarked points,
// until a pass marks nothing. Returns the last threshold.
double markOutliers(const std::vector<double>& d, size_t lo, size_t hi, uint8_t* mask) {
    double threshold = 0.0;
    for (;;) {
        double sum = 0.0, sumSq = 0.0;
        size_t count = 0;
        for (size_t i = lo; i <= hi; ++i) {
            if (mask[i]) continue;
            sum += d[i];
            sumSq += d[i] * d[i];
            ++count;
        }
        if (count == 0) return threshold;
        const double mean = sum / count;
        const double variance = sumSq / count - mean * mean;
        threshold = mean + 3.0 * std::sqrt(variance > 0.0 ? variance : 0.0);
        size_t marked = 0;
        for (size_t i = lo; i <= hi; ++i) {
            if (!mask[i] && d[i] > threshold) {
                mask[i] = 1;
                ++marked;
            }
        }
        if (marked == 0) return threshold;
    }
}

// One widening pass: a baseline point with signal at both i-g and i+g becomes signal.
void closeGaps(uint8_t* mask, const uint8_t* before, size_t n, size_t g) {
    for (size_t i = g; i + g < n; ++i)
        if (!before[i] && before[i - g] && before[i + g]) mask[i] = 1;
}

}  // namespace

size_t detectBaselinePoints(const float* row, size_t n, int w, unsigned mode, uint8_t* mask,
                            double& carried) {
    if (n == 0) return 0;
    std::memset(mask, 0, n);
    if (!(mode & autosampling_mode::kCarryThreshold)) carried = 0.0;
    const size_t hw = static_cast<size_t>(std::max(w, 0));
    // At least two centres are needed for one difference.
    if (n < 2 * hw + 3) return n;

    std::vector<double> d(n, 0.0);
    double s = 0.0;
    for (size_t j = 0; j <= 2 * hw; ++j) s += row[j];
    const size_t lo = hw + 1, hi = n - hw - 1;
    for (size_t i = lo; i <= hi; ++i) {
        const double next = s + row[i + hw] - row[i - hw - 1];
        d[i] = std::fabs(next - s);
        s = next;
    }

    if (mode & autosampling_mode::kCarryThreshold) {
        const double limit = 2.0 * carried;
        for (size_t i = lo; i <= hi; ++i)
            if (d[i] > limit) mask[i] = 1;
    }
    const double threshold = markOutliers(d, lo, hi, mask);
    carried = std::max(carried, threshold);

    // The ends have no difference of their own; they follow the nearest point that has one.
    for (size_t i = 0; i < lo; ++i) mask[i] = mask[lo];
    for (size_t i = hi + 1; i < n; ++i) mask[i] = mask[hi];

    const bool narrow = mode & autosampling_mode::kNarrow;
    if (narrow || hw > 1) {
        std::vector<uint8_t> before(n);
        const size_t first = narrow ? 1 : hw - 1;
        for (size_t g = first; g >= 1; --g) {
            std::memcpy(before.data(), mask, n);
            closeGaps(mask, before.data(), n, g);
        }
    }
    return static_cast<size_t>(std::count(mask, mask + n, uint8_t{0}));
}

size_t detectSignal(const float* row, size_t n, uint8_t* mask) {
    const size_t m = n < 4096 ? 1 : std::min<size_t>(n / 4096, 10);
    double carried = 0.0;
    return detectBaselinePoints(row, n, static_cast<int>(2 * m), autosampling_mode::kNarrow, mask,
                                carried);
}

}  // namespace zolt

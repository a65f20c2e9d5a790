#include "processing/baseline_detection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "processing/outlier_marking.h"

namespace zolt {
namespace {

// One widening pass: a baseline point with signal at both i-g and i+g becomes signal. The
// marks are 0 or 1, so the test is an or/and, done on eight marks at once in a 64-bit word.
void closeGaps(uint8_t* __restrict after, const uint8_t* __restrict before, size_t n, size_t g) {
    const size_t first = std::min(g, n), last = n > 2 * g ? n - g : first;
    std::memcpy(after, before, first);
    size_t i = first;
    for (; i + 8 <= last; i += 8) {
        uint64_t here, left, right;
        std::memcpy(&here, before + i, 8);
        std::memcpy(&left, before + i - g, 8);
        std::memcpy(&right, before + i + g, 8);
        here |= left & right;
        std::memcpy(after + i, &here, 8);
    }
    for (; i < last; ++i)
        after[i] = static_cast<uint8_t>(before[i] | (before[i - g] & before[i + g]));
    std::memcpy(after + last, before + last, n - last);
}

// The marks set among n, eight at a time: each is 0 or 1, so the bytes of a word summed by one
// multiplication never carry into one another.
size_t countMarks(const uint8_t* mask, size_t n) {
    size_t count = 0, i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t word;
        std::memcpy(&word, mask + i, 8);
        count += (word * 0x0101010101010101ULL) >> 56;
    }
    for (; i < n; ++i) count += mask[i];
    return count;
}

}  // namespace

bool hasDifferences(size_t n, int w) {
    // At least two centres are needed for one difference.
    return n >= 2 * static_cast<size_t>(std::max(w, 0)) + 3;
}

void movingDifferences(const float* const* rows, size_t count, size_t n, int w, double* d) {
    if (!hasDifferences(n, w)) return;
    const size_t hw = static_cast<size_t>(std::max(w, 0)), lo = hw + 1, hi = n - hw - 1;
    // Each row's sum is a chain of its own; running up to four side by side lets them overlap.
    for (size_t k0 = 0; k0 < count; k0 += kDifferenceRows) {
        const size_t rowsHere = std::min(kDifferenceRows, count - k0);
        double s[kDifferenceRows] = {};
        for (size_t k = 0; k < rowsHere; ++k)
            for (size_t j = 0; j <= 2 * hw; ++j) s[k] += rows[k0 + k][j];
        if (rowsHere == kDifferenceRows) {
            for (size_t i = lo; i <= hi; ++i)
                for (size_t k = 0; k < kDifferenceRows; ++k) {
                    const float* row = rows[k0 + k];
                    const double next = s[k] + row[i + hw] - row[i - hw - 1];
                    d[(k0 + k) * n + i] = std::fabs(next - s[k]);
                    s[k] = next;
                }
            continue;
        }
        for (size_t k = 0; k < rowsHere; ++k) {
            const float* row = rows[k0 + k];
            double* out = d + (k0 + k) * n;
            for (size_t i = lo; i <= hi; ++i) {
                const double next = s[k] + row[i + hw] - row[i - hw - 1];
                out[i] = std::fabs(next - s[k]);
                s[k] = next;
            }
        }
    }
}

size_t markBaselinePoints(const double* d, size_t n, int w, unsigned mode, uint8_t* mask,
                          double& carried) {
    if (n == 0) return 0;
    std::memset(mask, 0, n);
    if (!(mode & autosampling_mode::kCarryThreshold)) carried = 0.0;
    if (!hasDifferences(n, w)) return n;
    const size_t hw = static_cast<size_t>(std::max(w, 0)), lo = hw + 1, hi = n - hw - 1;

    if (mode & autosampling_mode::kCarryThreshold) {
        // Written for every point, without a branch: the marks were all 0.
        const double limit = 2.0 * carried;
        for (size_t i = lo; i <= hi; ++i) mask[i] = static_cast<uint8_t>(d[i] > limit);
    }
    const double threshold = markOutliers(d + lo, hi - lo + 1, mask + lo);
    carried = std::max(carried, threshold);

    // The ends have no difference of their own; they follow the nearest point that has one.
    for (size_t i = 0; i < lo; ++i) mask[i] = mask[lo];
    for (size_t i = hi + 1; i < n; ++i) mask[i] = mask[hi];

    const bool narrow = mode & autosampling_mode::kNarrow;
    if (narrow || hw > 1) {
        // The passes alternate between the mask and a spare row instead of copying back.
        std::vector<uint8_t> spare(n);
        uint8_t* current = mask;
        uint8_t* next = spare.data();
        const size_t first = narrow ? 1 : hw - 1;
        for (size_t g = first; g >= 1; --g) {
            closeGaps(next, current, n, g);
            std::swap(current, next);
        }
        if (current != mask) std::memcpy(mask, current, n);
    }
    return n - countMarks(mask, n);
}

size_t detectBaselinePoints(const float* row, size_t n, int w, unsigned mode, uint8_t* mask,
                            double& carried) {
    std::vector<double> d(hasDifferences(n, w) ? n : 0, 0.0);
    movingDifferences(&row, 1, n, w, d.data());
    return markBaselinePoints(d.data(), n, w, mode, mask, carried);
}

size_t detectSignal(const float* row, size_t n, uint8_t* mask) {
    const size_t m = n < 4096 ? 1 : std::min<size_t>(n / 4096, 10);
    double carried = 0.0;
    return detectBaselinePoints(row, n, static_cast<int>(2 * m), autosampling_mode::kNarrow, mask,
                                carried);
}

}  // namespace zolt

// Which points of a row belong to the baseline (autosampling), and the generic signal detector
// built on it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolt {

namespace autosampling_mode {
// Not the first row of a run: points far above the carried threshold are signal at once.
inline constexpr unsigned kCarryThreshold = 0x1;
// Narrow dilation: a single widening pass at distance 1.
inline constexpr unsigned kNarrow = 0x2;
}  // namespace autosampling_mode

// Marks mask[i] = 1 for signal and 0 for baseline over row[0 ... n-1], with the moving sums of
// 2w+1 points. carried is the threshold kept between the rows of one run: reset to 0 unless
// mode has kCarryThreshold, then raised to the last threshold. Returns the number of baseline
// points. The widening pass at distance g marks a baseline point whose neighbours at i-g and
// i+g are both signal, closing gaps between signal marks from the widest distance down; the
// moving-sum difference marks a narrow line at w points on either side, so this fills the line
// itself back in.
size_t detectBaselinePoints(const float* row, size_t n, int w, unsigned mode, uint8_t* mask,
                            double& carried);

// detectBaselinePoints in two parts, so that the order-bound moving sums of several rows can
// run side by side while the marking, which carries its threshold, goes row after row. The
// differences of row k go to d[k*n + i] for w < i < n-w-1 (nothing when n < 2w+3); the
// marking reads them there for one row, and may reorder none of them.
inline constexpr size_t kDifferenceRows = 4;
bool hasDifferences(size_t n, int w);
void movingDifferences(const float* const* rows, size_t count, size_t n, int w, double* d);
size_t markBaselinePoints(const double* d, size_t n, int w, unsigned mode, uint8_t* mask,
                          double& carried);

// The generic detector: half-width 2*m with m = 1 below 4,096 points, otherwise n/4,096 at most
// 10, narrow widening and a fresh threshold. Returns the number of baseline points.
size_t detectSignal(const float* row, size_t n, uint8_t* mask);

}  // namespace zolt

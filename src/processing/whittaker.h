// Whittaker smoother weighted by a baseline mask.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolt {

// lambda = (4n)^((9 - k)/9): k = 9 gives 1, k = 0 gives 4n.
double whittakerLambda(size_t n, int k);

// Minimises lambda * sum w_i (y_i - z_i)^2 + integral of z''(x)^2 over the row taken as
// x = 0 ... 1 (n^3 times the sum of squared second differences), with w_i = 1 on baseline
// points (mask 0) and 0 on signal points. A larger lambda follows the baseline points more
// closely, a smaller one gives a stiffer curve (lambda = 1: close to a cubic across the row);
// signal regions are bridged by the penalty alone. The pentadiagonal system is solved by LDL^T in
// O(n). Writes z into out; returns false (out untouched) with fewer than 2 baseline points.
bool whittakerSmooth(const float* y, const uint8_t* mask, size_t n, double lambda, float* out);

}  // namespace zolt

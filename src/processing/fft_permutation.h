// The bit-reversal permutation of the complex FFT, fused with its first radix-4 pass.
#pragma once

#include <cstddef>

namespace zolt {

// Moves point i to the bit-reversed place of i in both arrays (n a power of two, 4 <= n <=
// 2^20), then turns each group of four consecutive points into its 4-point transform, the odd
// pair rotated by sign * i (sign +1 or -1).
void bitReverseWithRadix4(float* re, float* im, size_t n, float sign);

}  // namespace zolt

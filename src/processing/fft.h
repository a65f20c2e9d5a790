// In-place complex FFT on split real and imaginary arrays, and the transforms built on it.
#pragma once

#include <cstddef>

namespace zolt {

inline constexpr size_t kMaxFftSize = size_t{1} << 20;

// n a power of two, 4 <= n <= 2^20; direction +1 computes sum x[m] e^{+2 pi i mk/n},
// -1 the conjugate kernel. Unnormalised.
void fft(float* re, float* im, size_t n, int direction);

// Turns the FFT of 2n real samples packed in n pairs into the first half of their spectrum.
void unscrambleRealFt(float* re, float* im, size_t n);

// Rebuilds the imaginary parts of a real row of length n (a power of two, at least 32;
// any other length gives zeros). scratch holds n floats.
void hilbertRow(const float* re, float* im, size_t n, float* scratch);

}  // namespace zolt

// Which vector kernels the FFT runs: the widest the processor has, unless capped. Every choice
// gives the same bits, which the cap lets a test prove on one machine.
#pragma once

namespace zolt {

// Baseline is SSE2 on x86-64 and plain scalar code elsewhere.
enum class FftKernels { Baseline, Avx, AvxFma, Avx512 };

// The widest kernels this processor runs, within the cap.
FftKernels fftKernels();

// Limits the kernels to widest and below (the default cap is Avx512: no limit).
void capFftKernels(FftKernels widest);

}  // namespace zolt

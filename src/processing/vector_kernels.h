// Which vector kernels the processing runs (the FFT, the polar toggle, the baseline
// subtraction): the widest the processor has, unless capped. Every choice gives the same bits,
// which the cap lets a test prove on one machine.
#pragma once

namespace zolt {

// Baseline is SSE2 on x86-64 and plain scalar code elsewhere.
enum class VectorKernels { Baseline, Avx, AvxFma, Avx512 };

// The widest kernels this processor runs, within the cap.
VectorKernels vectorKernels();

// Limits the kernels to widest and below (the default cap is Avx512: no limit).
void capVectorKernels(VectorKernels widest);

}  // namespace zolt

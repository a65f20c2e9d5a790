#include "processing/fft_kernels.h"

#include <algorithm>
#include <atomic>

namespace zolt {
namespace {

std::atomic<FftKernels> cap{FftKernels::Avx512};

FftKernels widestOnThisProcessor() {
#if defined(__x86_64__) && defined(__GNUC__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("fma"))
        return FftKernels::Avx512;
    if (__builtin_cpu_supports("avx") && __builtin_cpu_supports("fma")) return FftKernels::AvxFma;
    if (__builtin_cpu_supports("avx")) return FftKernels::Avx;
#endif
    return FftKernels::Baseline;
}

}  // namespace

FftKernels fftKernels() {
    static const FftKernels widest = widestOnThisProcessor();
    return std::min(widest, cap.load(std::memory_order_relaxed));
}

void capFftKernels(FftKernels widest) {
    cap.store(widest, std::memory_order_relaxed);
}

}  // namespace zolt

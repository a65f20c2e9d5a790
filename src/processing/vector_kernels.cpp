#include "processing/vector_kernels.h"

#include <algorithm>
#include <atomic>

namespace zolt {
namespace {

std::atomic<VectorKernels> cap{VectorKernels::Avx512};

VectorKernels widestOnThisProcessor() {
#if defined(__x86_64__) && defined(__GNUC__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("fma"))
        return VectorKernels::Avx512;
    if (__builtin_cpu_supports("avx") && __builtin_cpu_supports("fma"))
        return VectorKernels::AvxFma;
    if (__builtin_cpu_supports("avx")) return VectorKernels::Avx;
#endif
    return VectorKernels::Baseline;
}

}  // namespace

VectorKernels vectorKernels() {
    static const VectorKernels widest = widestOnThisProcessor();
    return std::min(widest, cap.load(std::memory_order_relaxed));
}

void capVectorKernels(VectorKernels widest) {
    cap.store(widest, std::memory_order_relaxed);
}

}  // namespace zolt

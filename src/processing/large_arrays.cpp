#include "processing/large_arrays.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace zolt {

namespace {

// Only whole huge pages inside the block can be advised; the advice is a hint, its failure
// changes nothing but the speed.
void adviseHugePages([[maybe_unused]] void* data, [[maybe_unused]] size_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr uintptr_t kHuge = uintptr_t{1} << 21;
    const uintptr_t at = reinterpret_cast<uintptr_t>(data);
    const uintptr_t begin = (at + kHuge - 1) & ~(kHuge - 1);
    const uintptr_t end = (at + bytes) & ~(kHuge - 1);
    if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

}  // namespace

void reserveLarge(std::vector<float>& v, size_t size) {
    if (size <= v.capacity()) return;
    v.reserve(size);
    adviseHugePages(v.data(), v.capacity() * sizeof(float));
}

void growZeroed(std::vector<float>& v, size_t size) {
    reserveLarge(v, size);
    v.resize(size);
}

}  // namespace zolt

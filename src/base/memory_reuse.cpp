#include "base/memory_reuse.h"

#include <cstdlib>  // defines __GLIBC__ where it applies

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace zolt {

void keepFreedMemoryForReuse() {
#if defined(__GLIBC__)
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    mallopt(M_TOP_PAD, 16 << 20);
#endif
}

}  // namespace zolt

// Growing the large arrays of a transform.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

// Reserves room for size floats, as reserve does (and throws as it does). Where the system
// allows, fresh memory is asked for in huge pages: the matrix of a 2-D transform otherwise
// costs a page fault every 4 KB, a large part of the whole transform. No page is touched yet,
// so several arrays can be had before any of them takes memory.
void reserveLarge(std::vector<float>& v, size_t size);

// reserveLarge, then resize to size floats, the new ones zero.
void growZeroed(std::vector<float>& v, size_t size);

}  // namespace zolt

// Growing the large arrays of a transform.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

// Resizes v to size floats, new ones zero, as resize does (and throws as it does). Where the
// system allows, the fresh memory is asked for in huge pages first: the matrix of a 2-D
// transform otherwise costs a page fault every 4 KB, a large part of the whole transform.
void growZeroed(std::vector<float>& v, size_t size);

}  // namespace zolt

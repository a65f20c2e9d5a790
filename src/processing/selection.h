// The k-th smallest of a list of numbers, as std::nth_element finds it, with fewer mispredicted
// branches on the short lists of the baseline refits.
#pragma once

#include <cstddef>

namespace zolt {

// The value a sort of v[0..n) would put at position k (k < n); v is reordered. Lists holding a
// NaN, which has no place in an order, are left to std::nth_element.
double selectNth(double* v, size_t n, size_t k);

}  // namespace zolt

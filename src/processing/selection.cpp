#include "processing/selection.h"

#include <algorithm>
#include <cmath>

namespace zolt {
namespace {

// Below this many the rest is sorted by insertion.
constexpr size_t kSmall = 16;

// Moves the values of v[lo..hi) for which below(x) holds to the front, keeping nothing else in
// order, and returns where the others begin. Every step swaps, so no branch depends on the data.
template <typename Below>
size_t partition(double* v, size_t lo, size_t hi, Below below) {
    size_t store = lo;
    for (size_t i = lo; i < hi; ++i) {
        const double x = v[i];
        v[i] = v[store];
        v[store] = x;
        store += below(x) ? 1 : 0;
    }
    return store;
}

double medianOfThree(double a, double b, double c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

}  // namespace

double selectNth(double* v, size_t n, size_t k) {
    for (size_t i = 0; i < n; ++i)
        if (std::isnan(v[i])) {
            std::nth_element(v, v + k, v + n);
            return v[k];
        }
    size_t lo = 0, hi = n;
    while (hi - lo > kSmall) {
        const double pivot = medianOfThree(v[lo], v[lo + (hi - lo) / 2], v[hi - 1]);
        const size_t less = partition(v, lo, hi, [pivot](double x) { return x < pivot; });
        if (k < less) {
            hi = less;
            continue;
        }
        // The pivot is one of the values, so at least one lies in [less, equal).
        const size_t equal = partition(v, less, hi, [pivot](double x) { return x <= pivot; });
        if (k < equal) return pivot;
        lo = equal;
    }
    std::sort(v + lo, v + hi);
    return v[k];
}

}  // namespace zolt

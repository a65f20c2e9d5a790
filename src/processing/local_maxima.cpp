#include "processing/local_maxima.h"

#include <algorithm>

namespace zolt {

void keepStrongest(std::vector<LocalMaximum>& maxima, size_t count) {
    const size_t keep = std::min(count, maxima.size());
    std::partial_sort(
        maxima.begin(), maxima.begin() + keep, maxima.end(),
        [](const LocalMaximum& a, const LocalMaximum& b) { return a.value > b.value; });
    maxima.resize(keep);
}

}  // namespace zolt

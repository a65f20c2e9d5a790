#include "processing/local_maxima.h"

#include <algorithm>
#include <mutex>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "processing/row_parallel.h"

namespace zolt {
namespace {

// Lines too few to be worth a thread of their own.
constexpr size_t kMinLinesPerThread = 32;

// Whether none of the four values exceeds the floor (a NaN does not).
bool noneAbove(const double* v, double floor) {
#if defined(__SSE2__)
    const __m128d f = _mm_set1_pd(floor);
    return !_mm_movemask_pd(
        _mm_or_pd(_mm_cmpgt_pd(_mm_loadu_pd(v), f), _mm_cmpgt_pd(_mm_loadu_pd(v + 2), f)));
#else
    return !(v[0] > floor) && !(v[1] > floor) && !(v[2] > floor) && !(v[3] > floor);
#endif
}

bool stronger(const LocalMaximum& a, const LocalMaximum& b) {
    return a.value > b.value;
}

// The maxima of lines [begin, end) of the grid. With keep > 0 only the `keep` strongest are
// certain to stay: a point no stronger than the weakest of `keep` candidates found so far is
// passed over, and the candidates are cut back to `keep` now and then. Any `keep` strongest
// are as good as others here, because the caller checks that their values are all different.
void scanLines(const GridLines& grid, size_t begin, size_t end, size_t keep,
               std::vector<LocalMaximum>& found) {
    const size_t lines = grid.alongRows ? grid.n1 : grid.n2;
    const size_t points = grid.alongRows ? grid.n2 : grid.n1;
    const size_t margin = grid.alongRows ? grid.margin2 : grid.margin1;
    const size_t cut = std::max<size_t>(4 * keep, 256);
    // Three lines at hand, rolling: the one before, the one searched and the one after.
    std::vector<double> buffer(3 * points);
    double* before = buffer.data();
    double* here = before + points;
    double* after = here + points;
    if (begin > 0) grid.values(begin - 1, before);
    double bound = grid.values(begin, here), floor = 0.0;
    for (size_t j = begin; j < end; ++j) {
        const double next = j + 1 < lines ? grid.values(j + 1, after) : 0.0;
        if (!(bound > floor)) {
            // Nothing of this line can join the candidates.
            std::swap(before, here);
            std::swap(here, after);
            bound = next;
            continue;
        }
        // A missing line or point stands in as the point's own, which never exceeds it.
        const double* above = j > 0 ? before : here;
        const double* below = j + 1 < lines ? after : here;
        for (size_t i = margin; i + margin < points; ++i) {
            // Most points lie below the floor: four at a time are passed over.
            if (i + 4 + margin <= points && noneAbove(here + i, floor)) {
                i += 3;
                continue;
            }
            const double v = here[i];
            if (!(v > floor)) continue;
            const size_t lo = i > 0 ? i - 1 : i, hi = i + 1 < points ? i + 1 : i;
            const bool peak = !(above[lo] > v) & !(above[i] > v) & !(above[hi] > v) &
                              !(here[lo] > v) & !(here[hi] > v) & !(below[lo] > v) &
                              !(below[i] > v) & !(below[hi] > v);
            if (!peak) continue;
            found.push_back(grid.alongRows ? LocalMaximum{v, j, i} : LocalMaximum{v, i, j});
            if (keep && found.size() >= cut) {
                std::nth_element(found.begin(), found.begin() + (keep - 1), found.end(), stronger);
                found.resize(keep);
                floor = found[keep - 1].value;
            }
        }
        std::swap(before, here);
        std::swap(here, after);
        bound = next;
    }
}

// The maxima of the searched lines, scanned on the row threads, in no particular order.
std::vector<LocalMaximum> scanGrid(const GridLines& grid, size_t keep) {
    const size_t lines = grid.alongRows ? grid.n1 : grid.n2;
    const size_t margin = grid.alongRows ? grid.margin1 : grid.margin2;
    std::vector<LocalMaximum> all;
    std::mutex gather;
    forEachRowRange(lines - 2 * margin, kMinLinesPerThread, [&](size_t begin, size_t end) {
        std::vector<LocalMaximum> found;
        scanLines(grid, margin + begin, margin + end, keep, found);
        const std::lock_guard<std::mutex> lock(gather);
        all.insert(all.end(), found.begin(), found.end());
    });
    return all;
}

}  // namespace

void keepStrongest(std::vector<LocalMaximum>& maxima, size_t count) {
    const size_t keep = std::min(count, maxima.size());
    std::partial_sort(maxima.begin(), maxima.begin() + keep, maxima.end(), stronger);
    maxima.resize(keep);
}

std::vector<LocalMaximum> strongestLocalMaxima(const GridLines& grid, size_t count) {
    const size_t n1 = grid.n1, n2 = grid.n2, margin1 = grid.margin1, margin2 = grid.margin2;
    if (count == 0 || margin1 >= n1 || n1 - margin1 <= margin1 || margin2 >= n2 ||
        n2 - margin2 <= margin2)
        return {};
    // The count + 1 strongest with all values different are the same whatever scanned them:
    // the count strongest are then the same points in the same order as any partial sort of
    // all maxima gives.
    auto maxima = scanGrid(grid, count + 1);
    if (maxima.size() > count + 1) {
        std::nth_element(maxima.begin(), maxima.begin() + count, maxima.end(), stronger);
        maxima.resize(count + 1);
    }
    std::sort(maxima.begin(), maxima.end(), stronger);
    const bool distinct = std::adjacent_find(maxima.begin(), maxima.end(),
                                             [](const LocalMaximum& a, const LocalMaximum& b) {
                                                 return !(a.value > b.value);
                                             }) == maxima.end();
    if (distinct) {
        maxima.resize(std::min(count, maxima.size()));
        return maxima;
    }
    // Ties: the partial sort must see the maxima in the order of the row-by-row scan.
    maxima = scanGrid(grid, 0);
    std::sort(maxima.begin(), maxima.end(), [](const LocalMaximum& a, const LocalMaximum& b) {
        return a.i1 != b.i1 ? a.i1 < b.i1 : a.i2 < b.i2;
    });
    keepStrongest(maxima, count);
    return maxima;
}

}  // namespace zolt

#include "processing/outlier_marking.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zolt {
namespace {

// Summing every pass in index order is one chain of dependent additions, and there are tens of
// passes over a long row. The passes therefore use fast sums with a proven bound on how far they
// can be from the ordered ones, decide every value the bound leaves no doubt about, and take the
// ordered sums only when a value is too close to call and for the threshold that is returned.

struct Sums {
    double sum = 0.0, sumSq = 0.0;
};

// The defining sums of a pass over the values at or below cut: index order, +0 for the others
// (which leaves a sum of magnitudes as it is; the cut-off entries are NaN or above the cut).
Sums orderedSums(const std::vector<double>& value, double cut) {
    Sums s;
    for (const double v : value) {
        const double added = v <= cut ? v : 0.0;
        s.sum += added;
        s.sumSq += added * added;
    }
    return s;
}

// Sums of the entries of v at or below limit (all with an infinite limit) in eight independent
// chains: any order will do, the bound below holds for all of them.
Sums fastSums(const double* v, size_t n, double limit) {
    size_t i = 0;
    double s = 0.0, q = 0.0;
#if defined(__SSE2__)
    // Four pairs of chains; a value above the limit (or NaN) is masked to +0.
    const __m128d lim = _mm_set1_pd(limit);
    __m128d s0 = _mm_setzero_pd(), s1 = s0, s2 = s0, s3 = s0, q0 = s0, q1 = s0, q2 = s0, q3 = s0;
    for (; i + 8 <= n; i += 8) {
        __m128d a0 = _mm_loadu_pd(v + i), a1 = _mm_loadu_pd(v + i + 2);
        __m128d a2 = _mm_loadu_pd(v + i + 4), a3 = _mm_loadu_pd(v + i + 6);
        a0 = _mm_and_pd(_mm_cmple_pd(a0, lim), a0), a1 = _mm_and_pd(_mm_cmple_pd(a1, lim), a1);
        a2 = _mm_and_pd(_mm_cmple_pd(a2, lim), a2), a3 = _mm_and_pd(_mm_cmple_pd(a3, lim), a3);
        s0 = _mm_add_pd(s0, a0), s1 = _mm_add_pd(s1, a1);
        s2 = _mm_add_pd(s2, a2), s3 = _mm_add_pd(s3, a3);
        q0 = _mm_add_pd(q0, _mm_mul_pd(a0, a0)), q1 = _mm_add_pd(q1, _mm_mul_pd(a1, a1));
        q2 = _mm_add_pd(q2, _mm_mul_pd(a2, a2)), q3 = _mm_add_pd(q3, _mm_mul_pd(a3, a3));
    }
    double sl[2], ql[2];
    _mm_storeu_pd(sl, _mm_add_pd(_mm_add_pd(s0, s1), _mm_add_pd(s2, s3)));
    _mm_storeu_pd(ql, _mm_add_pd(_mm_add_pd(q0, q1), _mm_add_pd(q2, q3)));
    s = sl[0] + sl[1];
    q = ql[0] + ql[1];
#endif
    for (; i < n; ++i) {
        const double a = v[i] <= limit ? v[i] : 0.0;
        s += a, q += a * a;
    }
    return {s, q};
}

// mean + 3 sigma, the mean from meanSum and the squared mean of the variance from spreadSum; with
// both the same, the threshold of a pass in its defining operations. Each operation is correctly
// rounded, hence monotone, so the rounded result grows with meanSum and sumSq and shrinks with
// spreadSum: bounds on the sums bound the rounded threshold itself.
double threshold(double meanSum, double spreadSum, double sumSq, size_t count) {
    const double mean = meanSum / count;
    const double spreadMean = spreadSum / count;
    const double variance = sumSq / count - spreadMean * spreadMean;
    return mean + 3.0 * std::sqrt(variance > 0.0 ? variance : 0.0);
}

// The values still in play, split at a level: those at or below it (never cut while the cut
// stays above the level) are carried as a count and their sums, the others in a short list that
// each pass walks.
struct Pool {
    double level = 0.0;
    size_t lowCount = 0, highCount = 0;
    Sums low, high;
    std::unique_ptr<double[]> list;  // room for every value, written only as far as used
    // The rough final cut of the first split, kept for the later ones: it only steers the speed.
    double predicted = std::numeric_limits<double>::quiet_NaN();

    size_t count() const { return lowCount + highCount; }
    Sums sums() const { return {low.sum + high.sum, low.sumSq + high.sumSq}; }
};

// Where the final cut will roughly fall: the same passes run on about 256 of the values at or
// below cut, taken at equal steps. Only the speed depends on it.
double predictedCut(const std::vector<double>& value, double cut) {
    std::vector<double> sample;
    const size_t step = std::max<size_t>(1, value.size() / 256);
    for (size_t i = 0; i < value.size(); i += step)
        if (value[i] <= cut) sample.push_back(value[i]);
    double predicted = 0.0;
    for (size_t kept = sample.size(), before = 0; kept != before && kept > 0;) {
        // Any order of the sums will do here; four chains do not wait on one another.
        const Sums s = fastSums(sample.data(), kept, std::numeric_limits<double>::infinity());
        const double mean = s.sum / kept, variance = s.sumSq / kept - mean * mean;
        predicted = mean + 3.0 * std::sqrt(std::max(variance, 0.0));
        before = kept;
        // Kept in place without a branch on each value: the cut falls anywhere in the noise.
        size_t k = 0;
        for (size_t i = 0; i < kept; ++i) {
            sample[k] = sample[i];
            k += sample[i] > predicted ? 0 : 1;
        }
        kept = k;
    }
    return std::isfinite(predicted) ? predicted : 0.0;
}

// Splits the values at or below cut a little under the predicted final cut, or lower at most:
// once the passes have cut the signal away, the list holds only the upper tail of the noise.
void split(const std::vector<double>& value, double cut, double most, Pool& pool) {
    if (std::isnan(pool.predicted)) pool.predicted = predictedCut(value, cut);
    const double level = std::min({0.8 * pool.predicted, most, cut});
    if (!pool.list) pool.list = std::make_unique_for_overwrite<double[]>(value.size());
    double* list = pool.list.get();
    size_t lowCount = 0, kept = 0;
    for (const double v : value) {
        list[kept] = v;
        kept += (v > level) & (v <= cut);
        lowCount += v <= level;
    }
    pool.level = level;
    pool.lowCount = lowCount;
    pool.highCount = kept;
    pool.low = fastSums(value.data(), value.size(), level);
    pool.high = fastSums(list, kept, cut);
}

// Keeps the listed values at or below t and sums them for the next pass; returns how many were
// in (undecidedFrom, undecidedTo].
size_t cutList(Pool& pool, double t, double undecidedFrom, double undecidedTo) {
    double* list = pool.list.get();
    size_t kept = 0, undecided = 0;
    for (size_t r = 0; r < pool.highCount; ++r) {
        const double v = list[r];
        undecided += (v > undecidedFrom) & (v <= undecidedTo);
        list[kept] = v;
        kept += v <= t;
    }
    pool.highCount = kept;
    pool.high = fastSums(list, kept, t);
    return undecided;
}

// The least and the greatest threshold the ordered sums can give, from fast sums of n entries.
// Any order of adding k non-negative terms is within gamma_k = k u / (1 - k u) (u = 2^-53) of
// the true sum, so the fast and the ordered sums are within about 2 gamma of each other; 3 gamma
// for n + 16 entries with a 1% margin also covers the rounding of the bounds. Squares are the
// same rounded products on both sides, but in case one side fuses them, each may also differ by
// what an underflow loses (2^-1075).
struct Bounds {
    double low, high;
};

Bounds thresholdBounds(const Sums& fast, size_t count, size_t n) {
    const double entries = static_cast<double>(n) + 16.0;
    const double spread = 3.0 * (entries * 0x1p-53 * 1.01);
    const double pad = entries * 0x1p-1073;
    constexpr double inf = std::numeric_limits<double>::infinity();
    const double sumLow = std::max(0.0, std::nextafter(fast.sum - fast.sum * spread, 0.0));
    const double sumHigh = std::nextafter(fast.sum + fast.sum * spread, inf);
    const double sqLow = std::max(0.0, std::nextafter(fast.sumSq - fast.sumSq * spread - pad, 0.0));
    const double sqHigh = std::nextafter(fast.sumSq + fast.sumSq * spread + pad, inf);
    return {threshold(sumLow, sumHigh, sqLow, count), threshold(sumHigh, sumLow, sqHigh, count)};
}

// Beyond these the bounds above are no longer small or finite; such passes are summed in order.
bool boundable(const Sums& fast, size_t n) {
    return n < (size_t{1} << 40) && fast.sum <= 1e300 && fast.sumSq <= 1e300;
}

// The threshold of a pass over the values at or below cut, from the defining sums.
double orderedThreshold(const std::vector<double>& value, double cut, size_t count) {
    const Sums s = orderedSums(value, cut);
    return threshold(s.sum, s.sum, s.sumSq, count);
}

// One pass over the values at or below cut: cuts the pool where the pass's own threshold does
// and returns a threshold that cuts it there, the exact one when ordered is set.
double cutPass(const std::vector<double>& value, double cut, Pool& pool, bool& ordered) {
    const size_t count = pool.count(), n = value.size();
    Sums sums = pool.sums();
    ordered = !boundable(sums, n);
    Bounds bounds{};
    if (!ordered) {
        bounds = thresholdBounds(sums, count, n);
        // The values at or below the level are kept for certain only when the level is at or
        // below the least threshold; otherwise split lower, once.
        if (bounds.low < pool.level) {
            split(value, cut, bounds.low, pool);
            bounds = thresholdBounds(pool.sums(), count, n);
            ordered = bounds.low < pool.level;
        }
    }
    bool listWhole = true;
    if (!ordered) {
        // Every listed value outside (low, high] is on a known side of the pass's own
        // threshold, and low puts it on the same side.
        ordered = cutList(pool, bounds.low, bounds.low, bounds.high) > 0;
        if (!ordered) return bounds.low;
        listWhole = false;
    }
    const double t = orderedThreshold(value, cut, count);
    // A list the fast cut went through, or a threshold under the level, needs a new split.
    if (listWhole && t >= pool.level)
        cutList(pool, t, 0.0, 0.0);
    else
        split(value, std::min(cut, t), t, pool);
    return t;
}

}  // namespace

double markOutliers(const double* d, size_t n, uint8_t* mask) {
    // Marked entries become NaN, which no cut keeps and no sum sees.
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> value(n);
    bool anyNaN = false;
    for (size_t i = 0; i < n; ++i) {
        value[i] = mask[i] ? nan : d[i];
        anyNaN |= std::isnan(value[i]) && !mask[i];
    }
    // A NaN in the sums makes the threshold NaN, above which nothing is.
    if (anyNaN) return nan;

    // Kept after each pass: the values at or below every threshold so far, their least.
    double cut = std::numeric_limits<double>::infinity();
    Pool pool;
    split(value, cut, cut, pool);
    if (pool.count() == 0) return 0.0;
    for (;;) {
        const size_t count = pool.count();
        const double passCut = cut;
        bool ordered = false;
        double t = cutPass(value, cut, pool, ordered);
        cut = std::min(cut, t);
        // The last pass marks nothing, or everything left; its threshold is the one returned.
        const size_t marked = count - pool.count();
        if (marked == 0 || marked == count) {
            if (!ordered) t = orderedThreshold(value, passCut, count);
            for (size_t i = 0; i < n; ++i) mask[i] |= static_cast<uint8_t>(value[i] > cut);
            return t;
        }
    }
}

}  // namespace zolt

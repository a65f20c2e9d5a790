#include "processing/outlier_marking.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

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

// Four independent chains: any order will do, the bound below holds for all of them.
Sums fastSums(const double* v, size_t n) {
    double s[4] = {}, q[4] = {};
    size_t i = 0;
    for (; i + 4 <= n; i += 4)
        for (size_t k = 0; k < 4; ++k) {
            s[k] += v[i + k];
            q[k] += v[i + k] * v[i + k];
        }
    for (; i < n; ++i) {
        s[0] += v[i];
        q[0] += v[i] * v[i];
    }
    return {(s[0] + s[1]) + (s[2] + s[3]), (q[0] + q[1]) + (q[2] + q[3])};
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
// stays above the level) are carried as a count and two sums, the others in a short list that
// each pass walks.
struct Pool {
    double level = 0.0;
    size_t lowCount = 0;
    Sums low;
    std::vector<double> high;

    size_t count() const { return lowCount + high.size(); }
};

void split(const std::vector<double>& value, double cut, double level, Pool& pool) {
    pool.level = std::min(level, cut);
    pool.high.resize(value.size());
    double s[2] = {}, q[2] = {};
    size_t lowCount = 0, kept = 0;
    for (size_t i = 0; i < value.size(); ++i) {
        const double v = value[i];
        const bool isLow = v <= pool.level;
        const double added = isLow ? v : 0.0;
        s[i & 1] += added;
        q[i & 1] += added * added;
        lowCount += isLow;
        pool.high[kept] = v;
        kept += v > pool.level && v <= cut;
    }
    pool.high.resize(kept);
    pool.lowCount = lowCount;
    pool.low = {s[0] + s[1], q[0] + q[1]};
}

// Where to split next: one sigma above the mean, below the coming cuts in the usual run; 0 when
// the sums overflowed.
double nextLevel(const Sums& s, size_t count) {
    const double mean = s.sum / count;
    const double variance = s.sumSq / count - mean * mean;
    const double level = mean + std::sqrt(variance > 0.0 ? variance : 0.0);
    return std::isfinite(level) ? level : 0.0;
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
        bool ordered = false;
        Bounds bounds{};
        Sums fast;
        for (int attempt = 0;; ++attempt) {
            fast = pool.low;
            const Sums high = fastSums(pool.high.data(), pool.high.size());
            fast.sum += high.sum;
            fast.sumSq += high.sumSq;
            if (!boundable(fast, n)) {
                ordered = true;
                break;
            }
            bounds = thresholdBounds(fast, count, n);
            // Every value at or below the level is kept for certain once the level is at or
            // below the least threshold; otherwise split lower, once.
            if (bounds.low >= pool.level) break;
            if (attempt == 1) {
                ordered = true;
                break;
            }
            split(value, cut, std::min(nextLevel(fast, count), bounds.low), pool);
        }
        if (!ordered) {
            size_t undecided = 0;
            for (const double v : pool.high) undecided += v > bounds.low && v <= bounds.high;
            ordered = undecided > 0;
        }
        const double passCut = cut;
        double t = bounds.low;
        if (ordered) {
            fast = orderedSums(value, passCut);
            t = threshold(fast.sum, fast.sum, fast.sumSq, count);
        }
        // Every kept value is now on a known side of the pass's own threshold, and t puts it on
        // the same side.
        if (t >= pool.level) {
            size_t kept = 0;
            for (const double v : pool.high) {
                pool.high[kept] = v;
                kept += v <= t;
            }
            pool.high.resize(kept);
        } else {
            split(value, std::min(cut, t), nextLevel(fast, count), pool);
        }
        cut = std::min(cut, t);
        const size_t marked = count - pool.count();
        if (marked == 0 || marked == count) {
            if (!ordered) {
                const Sums exact = orderedSums(value, passCut);
                t = threshold(exact.sum, exact.sum, exact.sumSq, count);
            }
            for (size_t i = 0; i < n; ++i) mask[i] |= static_cast<uint8_t>(value[i] > cut);
            return t;
        }
    }
}

}  // namespace zolt

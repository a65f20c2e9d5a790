#include "display/vertical_scale.h"

#include <algorithm>
#include <cmath>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zolt {

namespace {

// Space left above the tallest point of a 1-D plot.
constexpr float kTopGapPixels = 6.0f;
// The lowest contour as a fraction of the extreme: homonuclear maps have weaker cross peaks
// relative to their diagonal than heteronuclear ones have to their strongest peak.
constexpr float kSameIsotopeDivisor = 128.0f;
constexpr float kOtherIsotopeDivisor = 16.0f;
constexpr int kFastPlotMaxLevels = 10;

size_t axisPoints(const SpectrumMatrix& m, int f) {
    return f >= 1 && f <= 3 ? std::max<size_t>(m.dims[f].points, 1) : 1;
}

float clampThreshold(double t) {
    if (!(t >= kMinThreshold)) return kMinThreshold;  // NaN too
    return static_cast<float>(std::min<double>(t, kMaxThreshold));
}

// The least and greatest of the values, as minmax_element finds them. Four lanes at a time give
// the same two values whenever the answer does not depend on the order of the comparisons: no
// NaN, and no zero at either end (a zero's sign is that of the first least or the last greatest
// one met). Otherwise the values are gone through in order.
std::pair<float, float> extremes(const float* v, size_t n) {
#if defined(__SSE2__)
    if (n >= 8) {
        __m128 lo = _mm_loadu_ps(v), hi = lo, unordered = _mm_cmpunord_ps(lo, lo);
        size_t i = 4;
        for (; i + 4 <= n; i += 4) {
            const __m128 x = _mm_loadu_ps(v + i);
            lo = _mm_min_ps(lo, x);
            hi = _mm_max_ps(hi, x);
            unordered = _mm_or_ps(unordered, _mm_cmpunord_ps(x, x));
        }
        float l[4], h[4];
        _mm_storeu_ps(l, lo);
        _mm_storeu_ps(h, hi);
        float least = std::min({l[0], l[1], l[2], l[3]});
        float greatest = std::max({h[0], h[1], h[2], h[3]});
        for (; i < n; ++i) {
            least = std::min(least, v[i]);
            greatest = std::max(greatest, v[i]);
        }
        bool nan = _mm_movemask_ps(unordered) != 0;
        for (size_t k = n - n % 4; k < n; ++k) nan |= std::isnan(v[k]);
        if (!nan && least != 0.0f && greatest != 0.0f) return {least, greatest};
    }
#endif
    const auto [lo, hi] = std::minmax_element(v, v + n);
    return {*lo, *hi};
}

}  // namespace

DataExtremes shownExtremes(const SpectrumMatrix& m) {
    size_t n = axisPoints(m, m.xIndex);
    if (m.yIndex) n *= axisPoints(m, m.yIndex);
    const size_t begin = std::min(m.planeOffset, m.re.size());
    const size_t end = begin + std::min(n, m.re.size() - begin);
    DataExtremes e;
    if (begin == end) return e;
    const auto [least, greatest] = extremes(m.re.data() + begin, end - begin);
    e.minimum = least;
    e.maximum = greatest;
    return e;
}

void setAutomaticScale(DisplayParameters& plot, const SpectrumMatrix& m) {
    const DataExtremes e = shownExtremes(m);
    const double extreme =
        std::fabs(plot.negativeLevels > plot.positiveLevels ? e.minimum : e.maximum);
    if (!plot.hasVertical) {
        // A box no higher than the gap is scaled as if it had one pixel to show.
        const double height = std::max(1.0, double(plot.box[3]) - kTopGapPixels);
        plot.threshold = clampThreshold(extreme / height);
    } else {
        const int x = plot.horizontal.fIndex, y = plot.vertical.fIndex;
        const bool same =
            x >= 1 && x <= 3 && y >= 1 && y <= 3 && m.dims[x].isotope == m.dims[y].isotope;
        plot.threshold =
            clampThreshold(extreme / (same ? kSameIsotopeDivisor : kOtherIsotopeDivisor));
        if (plot.plotMode() == PlotMode::Fast)
            plot.positiveLevels =
                static_cast<int8_t>(std::min<int>(plot.positiveLevels, kFastPlotMaxLevels));
    }
    plot.flags &= ~display_flags::kScaleSetByHand;
}

float amplify(DisplayParameters& plot, double factor) {
    // A zero factor divides to infinity, which the clamp bounds.
    if (!std::isnan(factor)) plot.threshold = clampThreshold(plot.threshold / factor);
    return plot.threshold;
}

ContourLevels contourLevels(const DisplayParameters& plot, float step) {
    const float s = std::max(step, 0.1f);
    const float m = std::pow(plot.ratio, s);
    ContourLevels levels;
    const auto fill = [m](std::vector<float>& out, int count, float first) {
        float level = first;
        for (int i = 0; i < count; ++i, level *= m) out.push_back(level);
    };
    fill(levels.positive, static_cast<int>(std::max(0, int(plot.positiveLevels)) / s),
         plot.threshold);
    fill(levels.negative, static_cast<int>(std::max(0, int(plot.negativeLevels)) / s),
         -plot.threshold);
    return levels;
}

}  // namespace zolt

#include "display/vertical_scale.h"

#include <algorithm>
#include <cmath>

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

}  // namespace

DataExtremes shownExtremes(const SpectrumMatrix& m) {
    size_t n = axisPoints(m, m.xIndex);
    if (m.yIndex) n *= axisPoints(m, m.yIndex);
    const size_t begin = std::min(m.planeOffset, m.re.size());
    const size_t end = begin + std::min(n, m.re.size() - begin);
    DataExtremes e;
    if (begin == end) return e;
    const auto [lo, hi] = std::minmax_element(m.re.begin() + begin, m.re.begin() + end);
    e.minimum = *lo;
    e.maximum = *hi;
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

#include "display/levels_colors.h"

#include <algorithm>
#include <cmath>

#include "display/vertical_scale.h"

namespace zolt {

LevelsColorsState levelsColorsState(const PageRecord& page) {
    LevelsColorsState s;
    s.color1 = page.color1;
    s.color2 = page.color2;
    if (page.plots.empty()) return s;
    const DisplayParameters& plot = page.plots.front();
    s.plotMode = plot.flags & display_flags::kPlotModeMask;
    s.positiveLevels = plot.positiveLevels;
    s.negativeLevels = plot.negativeLevels;
    s.threshold = plot.threshold;
    s.ratio = plot.ratio;
    return s;
}

void restoreLevelsColors(PageRecord& page, const LevelsColorsState& opened) {
    page.color1 = opened.color1;
    page.color2 = opened.color2;
    if (page.plots.empty()) return;
    DisplayParameters& plot = page.plots.front();
    plot.flags = (plot.flags & ~display_flags::kPlotModeMask) | opened.plotMode;
    plot.positiveLevels = opened.positiveLevels;
    plot.negativeLevels = opened.negativeLevels;
    plot.threshold = opened.threshold;
    plot.ratio = opened.ratio;
}

void choosePlotMode(DisplayParameters& plot, int index) {
    if (index < 0 || index >= int(kPlotModeNames.size())) return;
    plot.flags = (plot.flags & ~display_flags::kPlotModeMask) | uint32_t(index);
}

int8_t stepLevelCount(int8_t count, int direction) {
    const int next = int(count) + (direction > 0 ? 1 : -1);
    return int8_t(std::clamp(next, 0, kMostContourLevels));
}

float stepThreshold(float threshold, int direction) {
    const float next =
        direction > 0 ? threshold * kThresholdArrowFactor : threshold / kThresholdArrowFactor;
    // A damaged threshold starts again from the lowest one.
    if (!std::isfinite(next)) return kMinThreshold;
    return std::clamp(next, kMinThreshold, kMaxThreshold);
}

float stepRatio(float ratio, int direction, bool hasVertical) {
    const double step = (hasVertical ? 0.02 : 0.005) * (direction > 0 ? 1 : -1);
    const float lowest = hasVertical ? kLowestRatio2D : kLowestRatio1D;
    const float next = float(double(ratio) + step);
    if (!std::isfinite(next)) return lowest;
    return std::clamp(next, lowest, kHighestRatio);
}

}  // namespace zolt

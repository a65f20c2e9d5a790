#include "analysis/peak_picking_1d.h"

#include <algorithm>
#include <cmath>

#include "analysis/peak_top.h"

namespace zolt {

namespace {

// The first and the last three points of a trace never become peaks.
constexpr size_t kEdgePoints = 3;
// Refined tops just outside a region still belong to it.
constexpr double kRegionSlack = 0.00001;

struct Scan {
    std::vector<size_t> tops;
    std::optional<size_t> highest;
    bool overflow = false;
};

// Climbs each stretch at or above the threshold to its top (looking two points ahead, so that
// a single dip does not stop the climb), keeps the top when it lies strictly inside the limits,
// then runs down its far side.
Scan scanRegion(const float* y, size_t begin, size_t stop, double threshold, double upper,
                double lower) {
    Scan scan;
    double best = -1.0;
    size_t i = begin;
    while (i < stop) {
        if (std::fabs(y[i]) < threshold) {
            ++i;
            continue;
        }
        const double s = y[i] < 0.0f ? -1.0 : 1.0;
        while (s * y[i + 1] > s * y[i] || s * y[i + 2] > s * y[i])
            if (++i >= stop) return scan;
        if (lower < y[i] && y[i] < upper) {
            scan.tops.push_back(i);
            if (std::fabs(y[i]) > best) best = std::fabs(y[i]), scan.highest = i;
            if (scan.tops.size() > kMaxRegionPeaks) {
                scan.overflow = true;
                return scan;
            }
        }
        ++i;
        while (i < stop && s * y[i] > s * y[i + 1]) ++i;
        ++i;
    }
    return scan;
}

// Positions here carry no half-point shift, unlike the centres of points.
double ppmOfPosition(const DimensionRecord& axis, double position) {
    return (1.0 - position / axis.points) * axis.spectralWidth + axis.lowestPpm;
}

}  // namespace

RegionPeaks pickRegion1D(const float* trace, const DimensionRecord& axis, PpmRegion& region,
                         double threshold, double upper, double lower) {
    RegionPeaks r;
    const size_t n = axis.points;
    if (!trace || n <= 2 * kEdgePoints) return r;
    const size_t start = static_cast<size_t>(pointOfPpm(axis, region.high));
    const size_t end = static_cast<size_t>(pointOfPpm(axis, region.low));
    const size_t begin = std::max(start, kEdgePoints), stop = std::min(n - kEdgePoints, end);
    const Scan scan = scanRegion(trace, begin, stop, threshold, upper, lower);
    if (scan.overflow) {
        r.overflow = scan.tops.size();
        return r;
    }
    for (auto it = scan.tops.rbegin(); it != scan.tops.rend(); ++it) {
        const double ppm = ppmOfPosition(axis, refineTop(trace, n, *it, false).position);
        r.ppm.push_back(static_cast<float>(ppm));
        if (*it == scan.highest) r.highest = r.ppm.back();
    }
    std::sort(r.ppm.begin(), r.ppm.end());
    if (!r.ppm.empty()) {
        if (r.ppm.back() > region.high) region.high = r.ppm.back() + kRegionSlack;
        if (r.ppm.front() < region.low) region.low = r.ppm.front() - kRegionSlack;
    }
    return r;
}

void mergeRegionPeaks(std::vector<float>& list, const PpmRegion& region,
                      const std::vector<float>& fresh) {
    std::erase_if(list, [&](float p) { return p >= region.low && p <= region.high; });
    list.insert(list.end(), fresh.begin(), fresh.end());
    std::sort(list.begin(), list.end());
}

double pickingThreshold(double requested, const DisplayParameters& plot, int minimumPoints) {
    double t = requested == 0.0 || std::isnan(requested) ? plot.threshold : std::fabs(requested);
    const double floor = std::max(minimumPoints, 4) * std::fabs(double(plot.threshold));
    return std::max(t, floor);
}

Pick1DResult pick1D(const float* trace, const DimensionRecord& axis, const DisplayParameters& plot,
                    double threshold, int minimumPoints, bool highestOnly,
                    std::vector<float>& list) {
    Pick1DResult result;
    const double t = pickingThreshold(threshold, plot, minimumPoints);
    const VerticalRange range = verticalRange(plot);
    const double axisHigh = double(axis.lowestPpm) + axis.spectralWidth;
    const double axisLow = axis.lowestPpm;
    const std::vector<float>& segments = plot.horizontal.ppm;
    for (size_t s = 0; s + 1 < segments.size(); s += 2) {
        PpmRegion region{std::min<double>(std::max(segments[s], segments[s + 1]), axisHigh),
                         std::max<double>(std::min(segments[s], segments[s + 1]), axisLow)};
        if (!(region.high > region.low)) continue;
        RegionPeaks peaks = pickRegion1D(trace, axis, region, t, range.top, range.bottom);
        if (peaks.overflow) {
            result.overflow = std::max(result.overflow, peaks.overflow);
            continue;
        }
        if (highestOnly) {
            peaks.ppm.clear();
            if (peaks.highest) peaks.ppm.push_back(*peaks.highest);
        }
        result.found += peaks.ppm.size();
        mergeRegionPeaks(list, region, peaks.ppm);
    }
    return result;
}

}  // namespace zolt

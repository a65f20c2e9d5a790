#include "analysis/auto_cut.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "analysis/integration.h"
#include "processing/baseline_detection.h"

namespace zolt {
namespace {

// Clears every run of signal shorter than the minimum size that starts inside the scanned
// range; runs at the very ends are left, as the detector's own edges are.
void dropShortRuns(std::vector<uint8_t>& mask, size_t minimum) {
    const size_t n = mask.size();
    if (minimum < 2 || minimum + 1 >= n || minimum >= n - minimum - 1) return;
    const size_t last = n - minimum - 2;
    for (size_t i = minimum; i <= last; ++i) {
        if (!mask[i] || mask[i - 1]) continue;
        size_t end = i;
        while (end < n && mask[end]) ++end;
        if (end - i < minimum) std::fill(mask.begin() + i, mask.begin() + end, 0);
        i = end;
    }
}

// Every point from 2e to n - 2e - 1 becomes signal when a point within e of it is; the first
// and last 2e points are cleared. A running count of the signal in the window keeps it linear.
void enlarge(std::vector<uint8_t>& mask, size_t e) {
    const size_t n = mask.size();
    if (e == 0) return;
    std::vector<uint8_t> grown(n, 0);
    if (n > 4 * e) {
        size_t inWindow = 0;  // signal points in [i - e, i + e]
        for (size_t j = e; j <= 3 * e; ++j) inWindow += mask[j];
        for (size_t i = 2 * e; i < n - 2 * e; ++i) {
            grown[i] = inWindow > 0;
            if (i + e + 1 < n) inWindow += mask[i + e + 1];
            inWindow -= mask[i - e];
        }
    }
    mask.swap(grown);
}

}  // namespace

std::vector<uint8_t> autoCutMask(const float* trace, const DimensionRecord& axis,
                                 const AutoCutParameters& p) {
    const size_t n = axis.points;
    std::vector<uint8_t> mask(n, 0);
    if (n == 0) return mask;
    detectSignal(trace, n, mask.data());
    dropShortRuns(mask, static_cast<size_t>(std::max(p.minimumSize, 0)));
    const double pointsPerPpm = n / double(axis.spectralWidth);
    const double e = std::trunc(pointsPerPpm * p.enlargement);
    if (e >= 1.0 && e < double(n)) enlarge(mask, static_cast<size_t>(e));
    return mask;
}

std::vector<PointRun> signalRuns(const std::vector<uint8_t>& mask) {
    const size_t n = mask.size(), most = n / 8;
    std::vector<PointRun> runs;
    for (size_t i = 0; i < n && runs.size() < most; ++i) {
        if (!mask[i]) continue;
        size_t end = i;
        while (end < n && mask[end]) ++end;
        runs.push_back({i, end});
        i = end;
    }
    return runs;
}

AutoCutResult autoCutRegions(const float* trace, const DimensionRecord& axis,
                             const AutoCutParameters& p) {
    AutoCutResult result;
    if (axis.points == 0 || !(axis.spectralWidth > 0.0f)) return result;
    std::vector<IntegralRegion> found;
    std::vector<double> values;
    double largest = 0.0;
    for (const PointRun& run : signalRuns(autoCutMask(trace, axis, p))) {
        IntegralRegion r;
        r.fields[0] = static_cast<float>(edgePpm(axis, run.first));
        r.fields[1] = static_cast<float>(edgePpm(axis, run.end));
        const double value =
            integrateTrace(trace, axis.points, integralLimitIndex(axis, r.fields[0]),
                           integralLimitIndex(axis, r.fields[1]), 0);
        if (!(value > std::numeric_limits<float>::min())) continue;
        found.push_back(r);
        values.push_back(value);
        largest = std::max(largest, value);
    }
    if (found.empty()) return result;
    const double least = largest / p.ratio;
    for (size_t k = 0; k < found.size(); ++k)
        if (values[k] >= least) result.regions.push_back(found[k]);
    result.divisor = static_cast<float>(least);
    return result;
}

std::vector<float> autoCutFragments(const float* trace, const DimensionRecord& axis,
                                    const AutoCutParameters& p) {
    std::vector<float> ppm;
    if (axis.points == 0 || !(axis.spectralWidth > 0.0f)) return ppm;
    for (const PointRun& run : signalRuns(autoCutMask(trace, axis, p))) {
        ppm.push_back(static_cast<float>(edgePpm(axis, run.first)));
        ppm.push_back(static_cast<float>(edgePpm(axis, run.end)));
    }
    return ppm;
}

}  // namespace zolt

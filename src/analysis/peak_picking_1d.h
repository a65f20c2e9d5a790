// Peak picking along a 1-D trace, region by region, into the document's ascending ppm list.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "model/dimension_record.h"
#include "model/display_record.h"

namespace zolt {

// A region accepts at most this many peaks; one more and it yields none.
inline constexpr size_t kMaxRegionPeaks = 200;

// Limits in ppm, high > low; widened in place to cover the refined peaks.
struct PpmRegion {
    double high = 0.0;
    double low = 0.0;
};

struct RegionPeaks {
    std::vector<float> ppm;        // ascending
    std::optional<float> highest;  // the accepted peak of largest magnitude
    size_t overflow = 0;           // the count reached when the region gave up (201)
};

// Peaks of the trace (n points along `axis`) inside the region whose magnitude reaches the
// threshold and whose signed height lies strictly between lower and upper.
RegionPeaks pickRegion1D(const float* trace, const DimensionRecord& axis, PpmRegion& region,
                         double threshold, double upper, double lower);

// Replaces the list's peaks inside the region (limits included) by the new ones.
void mergeRegionPeaks(std::vector<float>& list, const PpmRegion& region,
                      const std::vector<float>& fresh);

// The threshold in intensity units: zero or NaN takes the plot's own (one display point), a
// negative one counts by its magnitude; never below `minimumPoints` display points (at least 4).
double pickingThreshold(double requested, const DisplayParameters& plot, int minimumPoints);

struct Pick1DResult {
    size_t found = 0;     // peaks merged into the list
    size_t overflow = 0;  // the largest overflow count of a region, 0 when none gave up
};

// Picks every horizontal segment of the plot, clipped to the axis, between the plot's vertical
// edges; with highestOnly each region gives only its highest peak.
Pick1DResult pick1D(const float* trace, const DimensionRecord& axis, const DisplayParameters& plot,
                    double threshold, int minimumPoints, bool highestOnly,
                    std::vector<float>& list);

}  // namespace zolt

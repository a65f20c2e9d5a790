// The automatic cut: regions of signal found on a 1-D trace, either as integral regions or as
// the visible fragments of the ppm scale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/dimension_record.h"
#include "model/integral_region.h"

namespace zolt {

struct AutoCutParameters {
    int minimumSize = 10;       // points: shorter runs of signal are dropped first
    int ratio = 50;             // largest over smallest integral kept: the final filter
    float enlargement = 0.02f;  // ppm added on each side of every run
};

// The signal mask of the trace (the shared signal detector, gaps of one point closed), then the
// first filter and the enlargement. One byte per point, 1 = signal.
std::vector<uint8_t> autoCutMask(const float* trace, const DimensionRecord& axis,
                                 const AutoCutParameters& p);

// Runs of signal as [first, end) point ranges, at most n/8 of them.
struct PointRun {
    size_t first = 0, end = 0;
};
std::vector<PointRun> signalRuns(const std::vector<uint8_t>& mask);

struct AutoCutResult {
    std::vector<IntegralRegion> regions;  // kept by the final filter, high ppm first
    float divisor = 0.0f;                 // largest / ratio; 0 when no region was found
};

// Integration mode: each run becomes a 1-D region from the edge of its first point to the edge
// after its last, without end-point correction; regions whose integral is not above the
// smallest normal float are dropped, then those below largest / ratio.
AutoCutResult autoCutRegions(const float* trace, const DimensionRecord& axis,
                             const AutoCutParameters& p);

// Scale-fragmentation mode: the (from, to) ppm pairs of the runs of the same mask, high ppm
// first, for the segments of the horizontal axis.
std::vector<float> autoCutFragments(const float* trace, const DimensionRecord& axis,
                                    const AutoCutParameters& p);

}  // namespace zolt

// The top of a 1-D peak refined between points: position, height and width at half height.
// Used by the picker, by the list writer and wherever a line needs its starting values.
#pragma once

#include <cstddef>

namespace zolt {

struct PeakTop {
    double position = 0.0;  // fractional point index; 0 when the top lies on an end of the trace
    double height = 0.0;    // signed, like the peak
    double width = 0.0;     // full width at half height in points, when asked for
};

// Climbs from `start` to the nearest top of the same sign, then fits a Gaussian through the
// top and its two neighbours (on the logarithms of the magnitudes).
PeakTop refineTop(const float* y, size_t n, size_t start, bool withWidth);

}  // namespace zolt

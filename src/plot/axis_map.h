// Where the ppm values of an axis fall in a plot: each segment of the axis gets a share of the
// box's length in proportion to its width in ppm, with a small gap between split segments.
#pragma once

#include <vector>

#include "model/dimension_record.h"
#include "model/display_record.h"

namespace zolt {

struct SegmentMap {
    double ppmA = 0.0, ppmB = 1.0;  // ppm at the start and at the end (pixel order)
    double pixelA = 0.0, pixelB = 1.0;

    double pixel(double ppm) const {
        return pixelA + (ppm - ppmA) / (ppmB - ppmA) * (pixelB - pixelA);
    }
    double ppm(double pixel) const {
        return ppmA + (pixel - pixelA) / (pixelB - pixelA) * (ppmB - ppmA);
    }
    bool holds(double ppm) const { return (ppm - ppmA) * (ppm - ppmB) <= 0.0; }
};

inline constexpr double kSegmentGapPixels = 8.0;

// A horizontal axis runs from high ppm on the left to low ppm on the right; a vertical one
// from low ppm at the top to high ppm at the bottom, as spectroscopists draw 2-D maps.
// Segments without width are left out; none when the axis has no usable segment.
std::vector<SegmentMap> mapAxis(const AxisSegments& axis, double pixelStart, double pixelEnd,
                                bool horizontal);

// The fractional point index (point centres at whole numbers) of a ppm value on an axis.
double pointPosition(const DimensionRecord& d, double ppm);

}  // namespace zolt

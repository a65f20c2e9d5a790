#include "plot/axis_map.h"

#include <algorithm>
#include <cmath>

namespace zolt {

std::vector<SegmentMap> mapAxis(const AxisSegments& axis, double pixelStart, double pixelEnd,
                                bool horizontal) {
    std::vector<SegmentMap> maps;
    double total = 0.0;
    for (size_t i = 0; i + 1 < axis.ppm.size(); i += 2) {
        const double a = axis.ppm[i], b = axis.ppm[i + 1];
        if (!std::isfinite(a) || !std::isfinite(b) || a == b) continue;
        const double hi = std::max(a, b), lo = std::min(a, b);
        maps.push_back(horizontal ? SegmentMap{hi, lo} : SegmentMap{lo, hi});
        total += hi - lo;
    }
    if (maps.empty()) return maps;
    const double gaps = kSegmentGapPixels * double(maps.size() - 1);
    const double length = std::max(1.0, pixelEnd - pixelStart - gaps);
    double at = pixelStart;
    for (SegmentMap& s : maps) {
        const double share = std::fabs(s.ppmB - s.ppmA) / total * length;
        s.pixelA = at;
        s.pixelB = at + share;
        at += share + kSegmentGapPixels;
    }
    return maps;
}

double pointPosition(const DimensionRecord& d, double ppm) {
    return (1.0 - (ppm - d.lowestPpm) / d.spectralWidth) * d.points - 0.5;
}

}  // namespace zolt

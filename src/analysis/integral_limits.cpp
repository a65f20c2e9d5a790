#include "analysis/integral_limits.h"

#include <algorithm>
#include <cstdint>

#include "analysis/integration.h"
#include "processing/baseline_detection.h"

namespace zolt {
namespace {

struct Span {
    size_t first = 0, end = 0;  // [first, end)
};

Span spanOf(const IntegralRegion& r, const DimensionRecord& axis) {
    const size_t a = integralLimitIndex(axis, r.fields[0]),
                 b = integralLimitIndex(axis, r.fields[1]);
    return {std::min(a, b), std::max(a, b)};
}

// The nearest limits of the other regions on either side of s: a moved limit stops there.
Span neighbourBounds(const std::vector<Span>& spans, size_t self, size_t n) {
    Span bounds{0, n};
    const Span& s = spans[self];
    for (size_t k = 0; k < spans.size(); ++k) {
        if (k == self) continue;
        if (spans[k].end <= s.first) bounds.first = std::max(bounds.first, spans[k].end);
        if (spans[k].first >= s.end) bounds.end = std::min(bounds.end, spans[k].first);
    }
    return bounds;
}

Span fitted(Span s, Span bounds, const std::vector<uint8_t>& mask) {
    const size_t width = s.end - s.first;
    if (mask[s.first]) {
        for (size_t moved = 0; s.first > bounds.first && mask[s.first - 1] && moved < width;
             ++moved)
            --s.first;
    } else {
        while (!mask[s.first]) ++s.first;
    }
    if (mask[s.end - 1]) {
        for (size_t moved = 0; s.end < bounds.end && mask[s.end] && moved < width; ++moved) ++s.end;
    } else {
        while (!mask[s.end - 1]) --s.end;
    }
    return s;
}

}  // namespace

void fitLimitsToSignal(std::vector<IntegralRegion>& regions, const float* trace,
                       const DimensionRecord& axis) {
    const size_t n = axis.points;
    if (n == 0 || !(axis.spectralWidth > 0.0f)) return;
    std::vector<uint8_t> mask(n);
    detectSignal(trace, n, mask.data());
    std::vector<Span> spans;
    for (const IntegralRegion& r : regions) spans.push_back(spanOf(r, axis));
    for (size_t k = 0; k < regions.size(); ++k) {
        IntegralRegion& r = regions[k];
        const Span s = spans[k];
        if (r.dimensions() != 1 || s.first >= s.end) continue;
        if (std::find(mask.begin() + s.first, mask.begin() + s.end, 1) == mask.begin() + s.end)
            continue;
        const Span f = fitted(s, neighbourBounds(spans, k, n), mask);
        // Limit A is the high-ppm edge when it was given so.
        const bool aHigh = r.fields[0] >= r.fields[1];
        const float high = static_cast<float>(edgePpm(axis, f.first));
        const float low = static_cast<float>(edgePpm(axis, f.end));
        r.fields[0] = aHigh ? high : low;
        r.fields[1] = aHigh ? low : high;
    }
}

}  // namespace zolt

#include "analysis/peak_options.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zolt {

namespace {

constexpr float kMinRatio = 2.0f, kMaxRatio = 2000.0f;
constexpr float kMinThreshold = 1.0f, kMaxThreshold = 999999995904.0f;

// Little-endian float bits, as the registry's double- and quad-words hold them.
std::string floatBytes(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    std::string s(4, '\0');
    for (int i = 0; i < 4; ++i) s[i] = static_cast<char>((bits >> (8 * i)) & 0xff);
    return s;
}

float floatAt(const std::string& s, size_t at) {
    uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits |= uint32_t(static_cast<unsigned char>(s[at + i])) << (8 * i);
    float v;
    std::memcpy(&v, &bits, 4);
    return v;
}

}  // namespace

PeakPickingOptions loadPeakOptions(const PeakOptionStore* store, float threshold) {
    PeakPickingOptions o;
    float ratio = kDefaultPeakRange;
    if (store) {
        // A value that is not a finite number keeps its default: nothing else can use it.
        if (auto r = store->bytes(kPeakRangeKey); r && r->size() == 4) {
            const float v = floatAt(*r, 0);
            if (std::isfinite(v) && v != 0.0f) ratio = v;
        }
        if (auto d = store->bytes(kPeakDeltaKey); d && d->size() == 8) {
            const float x = floatAt(*d, 0), y = floatAt(*d, 4);
            if (std::isfinite(x) && std::isfinite(y)) o.deltaX = x, o.deltaY = y;
        }
    }
    o.negative = ratio < 0.0f;
    o.threshold = threshold;
    o.upper = std::fabs(ratio) * threshold;
    o.loaded = true;
    return o;
}

void savePeakOptions(PeakPickingOptions& o, PeakOptionStore& store) {
    float ratio = o.upper / o.threshold;
    ratio = std::isnan(ratio) ? kMinRatio : std::clamp(ratio, kMinRatio, kMaxRatio);
    o.threshold = std::isnan(o.threshold) ? kMinThreshold
                                          : std::clamp(o.threshold, kMinThreshold, kMaxThreshold);
    o.upper = o.threshold * ratio;
    store.setBytes(kPeakRangeKey, floatBytes(o.negative ? -ratio : ratio));
    store.setBytes(kPeakDeltaKey, floatBytes(o.deltaX) + floatBytes(o.deltaY));
}

PeakPickingOptions withThreshold(const PeakPickingOptions& options, float threshold) {
    PeakPickingOptions o = options;
    const float ratio =
        options.threshold != 0.0f ? options.upper / options.threshold : kDefaultPeakRange;
    o.threshold = threshold;
    o.upper = ratio * threshold;
    return o;
}

}  // namespace zolt

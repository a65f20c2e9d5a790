// The options of 2-D and 3-D peak picking and the rules by which they are kept between runs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zolt {

struct PeakPickingOptions {
    float threshold = 0.0f;  // intensity units; the caller presets the lowest contour level
    float upper = 0.0f;      // peaks whose height is not below this are ignored
    float deltaX = 10.0f;    // merge distances, Hz
    float deltaY = 10.0f;
    int32_t window = 1;  // points, set by the picker before each scan
    bool negative = false;
    uint8_t action = 4;  // PeakAction
    uint8_t dimensions = 2;
    bool loaded = false;
};

// Where the two stored values live: "range" (the bits of a float, 4 bytes) and "deltaXY" (two
// floats, 8 bytes), little-endian. The application keeps them in its settings.
inline constexpr const char* kPeakOptionsGroup = "Peak-Picking 2D Options";
inline constexpr const char* kPeakRangeKey = "range";
inline constexpr const char* kPeakDeltaKey = "deltaXY";
inline constexpr float kDefaultPeakRange = 100.0f;

class PeakOptionStore {
public:
    virtual ~PeakOptionStore() = default;
    virtual std::optional<std::string> bytes(std::string_view name) const = 0;
    virtual void setBytes(std::string_view name, std::string_view value) = 0;
};

// Defaults, then what the store holds (none: defaults only); the stored ratio times the
// threshold gives the upper limit, a negative ratio sets the negative flag.
PeakPickingOptions loadPeakOptions(const PeakOptionStore* store, float threshold);

// Clamps the ratio to 2 ... 2000 and the threshold to 1 ... 999999995904, recomputes the upper
// limit, then writes the ratio (negated with the negative flag) and the merge distances.
void savePeakOptions(PeakPickingOptions& options, PeakOptionStore& store);

// The same options for another lowest contour level: the ratio upper / threshold is kept.
PeakPickingOptions withThreshold(const PeakPickingOptions& options, float threshold);

}  // namespace zolt

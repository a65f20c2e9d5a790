// One integral region: six floats whose meaning depends on the number of dimensions.
#pragma once

#include <array>

namespace zolt {

// A limit at or above this marks an axis the region does not use.
inline constexpr float kUnusedLimit = 5000.0f;
inline constexpr float kOpenLimit = 10000.0f;

struct IntegralRegion {
    // horizontal A, horizontal B, vertical A, vertical B, third-axis A, and in 1-D the end-point
    // average count (0: no straight-line correction) or in 3-D the third-axis B.
    std::array<float, 6> fields{0.0f, 0.0f, kOpenLimit, -kOpenLimit, kOpenLimit, 0.0f};

    // 1, 2 or 3: the kind of region its limits describe.
    int dimensions() const {
        if (fields[4] < kUnusedLimit) return 3;
        if (fields[2] < kUnusedLimit) return 2;
        return 1;
    }
};

}  // namespace zolt

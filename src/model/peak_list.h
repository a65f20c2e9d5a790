// A document's peak lists. Only positions are kept: heights and widths are recomputed from the
// data whenever a list is written out.
#pragma once

#include <array>
#include <vector>

namespace zolt {

struct PeakLists {
    std::vector<float> oneD;                   // ppm, ascending
    std::vector<std::array<float, 2>> twoD;    // horizontal, vertical ppm
    std::vector<std::array<float, 3>> threeD;  // horizontal, vertical, third-axis ppm
};

}  // namespace zolt

// Peak picking on a 2-D or 3-D matrix: a point is a peak when it is the merged maximum of its
// line along every axis. Also the list edits the 2-D picker offers.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "analysis/peak_options.h"
#include "model/spectrum_matrix.h"

namespace zolt {

inline constexpr size_t kMax2DPeaks = 200, kMax3DPeaks = 300;
inline constexpr const char* kTooManyPeaksCaption = "Too Many Peaks !";
inline constexpr const char* kTooManyPeaksText = "Please reduce the threshold or narrow the region";

// The f-indices on the horizontal, vertical and third axes (third 0 for a 2-D pick).
struct PeakAxes {
    int x = 2, y = 1, z = 0;
};

// A selection in ppm along each axis; either order of the limits.
struct PpmBox {
    std::array<double, 2> x{}, y{}, z{};
};
// The whole spectrum, whatever its referencing.
inline constexpr PpmBox kWholeSpectrum{
    {10000.0, -10000.0}, {10000.0, -10000.0}, {10000.0, -10000.0}};

struct PickedPeaks {
    std::vector<std::array<float, 3>> peaks;  // horizontal, vertical, third ppm (0 in 2-D)
    bool tooMany = false;                     // the limit was passed: no peaks
};

// Marks the merged maxima of one line of n values `stride` apart: point i sets `bit` in
// mask[i * maskStride].
void scanLine(const float* line, size_t n, size_t stride, const PeakPickingOptions& options,
              uint8_t* mask, size_t maskStride, uint8_t bit);

// Fills the options' merge window before each pass. 2-D when axes.z is 0.
PickedPeaks pickPeaks(const SpectrumMatrix& m, const PeakAxes& axes, const PpmBox& box,
                      PeakPickingOptions& options);

// The largest point inside the box; the third coordinate is the middle of the box along z.
std::array<float, 3> highestPoint(const SpectrumMatrix& m, const PeakAxes& axes, const PpmBox& box);

// Keeps the peaks outside the box on at least one of the first N axes, in their order.
template <size_t N>
void deleteInside(std::vector<std::array<float, N>>& list, const PpmBox& box) {
    const std::array<const std::array<double, 2>*, 3> limits{&box.x, &box.y, &box.z};
    std::erase_if(list, [&](const std::array<float, N>& p) {
        for (size_t a = 0; a < N; ++a) {
            const auto& l = *limits[a];
            const double lo = std::min(l[0], l[1]), hi = std::max(l[0], l[1]);
            if (p[a] < lo || p[a] > hi) return false;
        }
        return true;
    });
}

// The 2-D peaks within half a point of the vertical position, to mark on an extracted trace.
std::vector<std::array<float, 2>> peaksOnRow(const std::vector<std::array<float, 2>>& list,
                                             const DimensionRecord& vertical, double ppm);

}  // namespace zolt

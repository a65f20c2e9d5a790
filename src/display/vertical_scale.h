// The vertical scale of a plot: set from the data, amplified by hand, and the contour levels
// it gives a 2-D plot.
#pragma once

#include <vector>

#include "model/display_record.h"
#include "model/spectrum_matrix.h"

namespace zolt {

inline constexpr float kMinThreshold = 1e-06f;
inline constexpr float kMaxThreshold = 1e11f;

struct DataExtremes {
    float minimum = 0.0f;
    float maximum = 0.0f;
};
// The real parts of the shown row (1-D) or plane (2-D and 3-D).
DataExtremes shownExtremes(const SpectrumMatrix& m);

// The automatic scale: in 1-D the tallest point stops 6 pixels below the top of the box; in
// 2-D the lowest level is a fixed fraction of the extreme. Clears "set by hand".
void setAutomaticScale(DisplayParameters& plot, const SpectrumMatrix& m);

// Divides the threshold by the factor within kMinThreshold ... kMaxThreshold; a factor that is
// no number leaves it. Returns the new threshold.
float amplify(DisplayParameters& plot, double factor);

struct ContourLevels {
    std::vector<float> positive;
    std::vector<float> negative;
};
// Levels from the threshold up by ratio^step each, in 32-bit floats by successive
// multiplication as the drawing uses them; plain contours use step 1.
ContourLevels contourLevels(const DisplayParameters& plot, float step = 1.0f);

}  // namespace zolt

// The plane of a matrix that a 2-D plot shows, as a grid of rows along the vertical axis and
// columns along the horizontal one.
#pragma once

#include <optional>

#include "model/spectrum_matrix.h"
#include "plot/marching_squares.h"

namespace zolt {

// The shown plane and how its points lie: value(row, column) along the vertical and the
// horizontal axis.
struct Plane {
    GridWindow grid;
    const DimensionRecord* x = nullptr;
    const DimensionRecord* y = nullptr;
};

// Nothing when the matrix has no two axes of two points or more, or holds fewer points. A
// third axis of two points or more shows its plane nearest zeta (ppm); without one the matrix'
// own plane offset holds.
std::optional<Plane> shownPlane(const SpectrumMatrix& m, float zeta = 0.0f);

}  // namespace zolt

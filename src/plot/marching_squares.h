// Contour lines of a grid of intensities by marching squares: each cell of four neighbouring
// points is crossed by a level where its corners lie on both sides of it, and the crossings are
// placed on the cell's edges by linear interpolation.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

// A window onto a plane of the matrix: value(row, column) = data[row * rowStride + column *
// columnStride], for rows and columns of the given ranges (inclusive first, exclusive last).
struct GridWindow {
    const float* data = nullptr;
    size_t rowStride = 0, columnStride = 1;
    size_t firstRow = 0, lastRow = 0, firstColumn = 0, lastColumn = 0;

    float value(size_t row, size_t column) const {
        return data[row * rowStride + column * columnStride];
    }
    // Rows become columns: the same values, walked the other way round.
    GridWindow transposed() const {
        return {data, columnStride, rowStride, firstColumn, lastColumn, firstRow, lastRow};
    }
    // Whether the points of a column lie closer together in memory than those of a row: such a
    // grid is best walked column by column.
    bool columnsContiguous() const { return rowStride < columnStride; }
};

// One piece of a contour line in grid coordinates (fractional column x and row y).
struct ContourSegment {
    float x0, y0, x1, y1;
};

// The segments of every level, in the order of the levels. A point counts as inside a level
// when it is at or above it (for negative levels: at or below it). Where a cell's diagonal
// corners are inside and the others not, the average of the four corners, the value at the
// cell's centre, decides whether the inside corners join across the centre. The cells are
// visited in the order of the grid's memory.
std::vector<std::vector<ContourSegment>> traceContours(const GridWindow& grid,
                                                       const std::vector<float>& levels);

}  // namespace zolt

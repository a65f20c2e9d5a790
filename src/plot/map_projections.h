// The projections of a 2-D map: along each axis the tallest intensity of every line across
// the shown part of the plane (a skyline), drawn as a trace in a band beside the map, the
// horizontal one above it and the vertical one to its right, both rising away from the map.
#pragma once

#include <QPainter>
#include <QRectF>
#include <vector>

#include "model/display_record.h"
#include "plot/map_plane.h"
#include "plot/plot_frame.h"

namespace zolt {

// Contour maps, gradient contours, chessboards and fast plots have projections; rows drawn as
// traces have none.
bool showsProjections(const DisplayParameters& plot);

// The band each projection takes off the top and off the right of a box of that size.
double projectionBand(double boxLength);

// The skylines of the grid's whole window: along the horizontal axis one value per column, the
// largest over the rows first ... last (exclusive) of the grid's own row range; along the
// vertical axis one per row, over the given columns. The largest of the positive values when
// `positive`, of the negated negative ones when `negative`, never below 0.
struct Skylines {
    std::vector<float> horizontal, vertical;
};
Skylines skylines(const GridWindow& g, size_t firstRow, size_t lastRow, size_t firstColumn,
                  size_t lastColumn, bool positive, bool negative);

// Draws both projections in the bands left between frame.data and frame.box. The amplitude
// fields of the plot are the intensity per pixel of each; 0 (or no number) scales the tallest
// shown point to the band.
void drawProjections(QPainter& p, const Plane& pl, const DisplayParameters& plot,
                     const PlotFrame& f);

}  // namespace zolt

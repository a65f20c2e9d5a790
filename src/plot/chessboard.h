// The chessboard of a 2-D plot: the plane cut into squares of a few pixels on alternately
// light and white fields, each holding a filled square that grows with the number of contour
// levels its most intense point reaches (positive in the page's first colour, negative in its
// second). Peaks stand out as dark blocks while their shape stays readable.
#pragma once

#include <QPainter>
#include <vector>

#include "model/display_record.h"
#include "plot/map_plane.h"
#include "plot/plot_frame.h"

namespace zolt {

// How many of the levels (ascending for positive ones, descending for negative ones) the
// value reaches: positive values count positive levels, negative values negative levels.
int levelsReached(float value, const std::vector<float>& positive,
                  const std::vector<float>& negative);

void drawChessboard(QPainter& p, const Plane& pl, const DisplayParameters& plot,
                    const PlotFrame& f);

}  // namespace zolt

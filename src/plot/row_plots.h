// 2-D plots drawn as rows of 1-D traces: an arrayed series side by side, and stacked rows
// (white-washed: each row hides what lies behind it). The contour threshold says nothing about
// the height of a row, so the rows share one scale from the plane's extremes, with room for
// negative rows (an inversion recovery starts inverted).
#pragma once

#include <QPainter>

#include "model/spectrum_matrix.h"
#include "plot/map_plane.h"
#include "plot/plot_frame.h"

namespace zolt {

void drawArrayed(QPainter& p, const Plane& pl, const SpectrumMatrix& m, const PlotFrame& f);
void drawStacked(QPainter& p, const Plane& pl, const SpectrumMatrix& m, const PlotFrame& f,
                 bool whiteWashed);
// The first row of an arrayed series in the same way, for a scale under it.
PlotFrame arrayedFirstFrame(const Plane& pl, const PlotFrame& f);
// Where the front row of a stack lies along the horizontal axis: the frame with one horizontal
// segment from the first shown ppm to the last over the front row's pixels, for its scale.
PlotFrame stackFrontFrame(const PlotFrame& f);

}  // namespace zolt

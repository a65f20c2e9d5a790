// The scales of a plot: tick marks every minor step, labels at the major ones, the unit at the
// end, and the grid lines of the major ticks when the plot asks for them.
#pragma once

#include <QPainter>

#include "plot/plot_frame.h"

namespace zolt {

// Below the data, along the bottom edge of frame.data.
void drawHorizontalScale(QPainter& p, const PlotFrame& frame, uint32_t flags);
// Left of the data, along its left edge.
void drawVerticalScale(QPainter& p, const PlotFrame& frame, uint32_t flags);

}  // namespace zolt

// A 2-D plot: contour lines of the contour levels (positive in the page's first colour,
// negative in its second), or the fast plot's raster through a palette, and both scales.
#pragma once

#include <QPainter>

#include "model/spectrum_document.h"
#include "plot/plot_frame.h"

namespace zolt {

void drawMapPlot(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                 const PlotFrame& frame);

}  // namespace zolt

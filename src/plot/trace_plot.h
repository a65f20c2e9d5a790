// A 1-D plot: the trace, its zero line and scale, and what the plot's flags add to it (peak
// labels, integral curves and values, marks).
#pragma once

#include <QPainter>

#include "model/spectrum_document.h"
#include "plot/plot_frame.h"
#include "plot/trace_columns.h"

namespace zolt {

// The room under the data that the horizontal scale of a 1-D plot takes inside its box: tick
// labels, and below them the integral values and the unit.
inline constexpr double kTraceScaleBand = 44.0;

// Where the intensities of the plot fall: its vertical range across the data's height.
struct IntensityMap {
    double bottom = 0.0, top = 1.0;  // intensities at the data's bottom and top edges
    double yBottom = 0.0, height = 1.0;

    double y(double v) const { return yBottom - (v - bottom) / (top - bottom) * height; }
};
IntensityMap intensityMap(const DisplayParameters& plot, const QRectF& data);

// The shown row's extremes in each pixel column of a segment, from its left edge.
std::vector<ColumnExtremes> segmentColumns(const SpectrumMatrix& m, const SegmentMap& s);

void drawTracePlot(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                   const PlotFrame& frame);

}  // namespace zolt

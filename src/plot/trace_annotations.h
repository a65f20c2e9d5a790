// What a plot shows over the data when its flags ask: peak labels, integral curves and values,
// and the marked ppm positions.
#pragma once

#include <QPainter>

#include "model/spectrum_document.h"
#include "plot/plot_frame.h"
#include "plot/trace_plot.h"

namespace zolt {

// The room the peak labels want above the trace: the longest label with its leader, nothing
// when the plot shows no labels or no peak lies in view. Never more than 40 % of the data's
// height, so that a small plot keeps most of it for the trace.
double peakLabelBand(const QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                     const PlotFrame& f);
// Vertical text with each peak's ppm above its top ("frequencies"), with a leader line from
// the top ("labels"); crowded labels move apart sideways.
void drawPeakLabels(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                    const PlotFrame& f, const IntensityMap& im);
// The running sum over each 1-D region above the zero line ("integrals as curves"), and its
// integral divided by the normalisation under the scale labels ("integrals as values").
void drawIntegrals(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                   const PlotFrame& f, const IntensityMap& im);
// Dashed lines at the marks of the horizontal axis, and in a map of the vertical one.
void drawMarks(QPainter& p, const SpectrumDocument& doc, const PlotFrame& f, bool map);

}  // namespace zolt

// The display records a document starts with, before the user changes any of them.
#pragma once

#include <array>

#include "model/display_record.h"
#include "model/spectrum_document.h"

namespace zolt {

// Room between the client area and the main plot's box: the vertical scale's labels take the
// left margin of a 2-D plot, the horizontal scale's the bottom margin.
inline constexpr float kPlotMargin = 16.0f;
inline constexpr float kVerticalScaleMargin = 64.0f;
inline constexpr float kHorizontalScaleMargin = 40.0f;

// The whole extent of an axis in ppm, ascending: its lowest value and lowest plus width.
std::array<float, 2> fullRange(const DimensionRecord& d);

// One segment over the whole of each shown axis; the zeta of a third axis at its first plane.
void showFullExtent(DisplayParameters& plot, const SpectrumMatrix& m);

// The main plot of a matrix in a client area of the given size: a fast 1-D plot, or a contour
// map with both axes in 2-D, and the automatic vertical scale.
DisplayParameters defaultMainPlot(const SpectrumMatrix& m, int clientWidth, int clientHeight);

// Sized for the default client area, which the page size records.
PageRecord defaultPageRecord(const SpectrumMatrix& m);

// A document read from a file keeps the records it was saved with; one without them (a new
// data set, an older file) gets the defaults; a plot saved without limits shows everything.
void completeDisplay(SpectrumDocument& doc);

}  // namespace zolt

// What lies under the pointer in a drawn main plot: pixels to ppm through the same axis maps
// the renderer draws with, the data value there, and the ranges a drag covers.
#pragma once

#include <QPointF>
#include <QSize>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "model/spectrum_document.h"
#include "plot/axis_map.h"

namespace zolt {

struct PlotPoint {
    int fx = 0;                  // f-index of the horizontal axis
    double x = 0.0;              // ppm
    int fy = 0;                  // f-index of the vertical axis, 0 in a 1-D plot
    double y = 0.0;              // ppm
    std::optional<float> value;  // the shown data at that point (real part)
};

// The ppm of a pixel along an axis: a pixel outside every segment takes the nearest edge.
std::optional<double> ppmAtPixel(const std::vector<SegmentMap>& axis, double pixel);

// The point under a pixel of the main plot drawn at `size`; nothing outside its box.
std::optional<PlotPoint> pointAt(const SpectrumDocument& doc, QSize size, QPointF pixel);

// The ascending ppm pairs a drag from `a` to `b` covers: horizontal, and vertical on a map.
struct PlotSpan {
    std::array<double, 2> x{};
    std::optional<std::array<double, 2>> y;
};
std::optional<PlotSpan> spanBetween(const SpectrumDocument& doc, QSize size, QPointF a, QPointF b);

// The status line: "7.2601 ppm  3634.33 Hz  intensity 1.23457e+06" in 1-D; on a map each axis
// is named, "f2 7.2601 ppm 3634.33 Hz  f1 ...", before the intensity. Hz are ppm times the
// axis' carrier frequency, as the scales in Hz show them.
std::string statusText(const SpectrumDocument& doc, const PlotPoint& p);

}  // namespace zolt

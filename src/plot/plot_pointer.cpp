#include "plot/plot_pointer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "plot/map_plane.h"
#include "plot/page_renderer.h"

namespace zolt {

namespace {

double clampedPixel(const SegmentMap& s, double pixel) {
    return std::clamp(pixel, std::min(s.pixelA, s.pixelB), std::max(s.pixelA, s.pixelB));
}

double distanceOutside(const SegmentMap& s, double pixel) {
    return std::fabs(pixel - clampedPixel(s, pixel));
}

size_t pointIndex(const DimensionRecord& d, double ppm) {
    return static_cast<size_t>(std::clamp<int64_t>(pointOfPpm(d, ppm), 0, d.points - 1));
}

std::optional<float> traceValue(const SpectrumMatrix& m, int f, double ppm) {
    if (f < 1 || f > 3 || m.dims[f].points == 0) return std::nullopt;
    const size_t i = m.planeOffset + pointIndex(m.dims[f], ppm);
    if (i >= m.re.size()) return std::nullopt;
    return m.re[i];
}

std::optional<float> mapValue(const SpectrumMatrix& m, double x, double y) {
    const std::optional<Plane> pl = shownPlane(m);
    if (!pl) return std::nullopt;
    return pl->grid.value(pointIndex(*pl->y, y), pointIndex(*pl->x, x));
}

std::string axisText(const SpectrumMatrix& m, int f, double ppm) {
    const double carrier = f >= 1 && f <= 3 ? m.dims[f].carrier : 0.0;
    char text[64];
    std::snprintf(text, sizeof text, "%.4f ppm %.2f Hz", ppm, ppm * carrier);
    return text;
}

}  // namespace

std::optional<double> ppmAtPixel(const std::vector<SegmentMap>& axis, double pixel) {
    if (axis.empty() || !std::isfinite(pixel)) return std::nullopt;
    const auto nearest =
        std::min_element(axis.begin(), axis.end(), [&](const auto& a, const auto& b) {
            return distanceOutside(a, pixel) < distanceOutside(b, pixel);
        });
    return nearest->ppm(clampedPixel(*nearest, pixel));
}

std::optional<PlotPoint> pointAt(const SpectrumDocument& doc, QSize size, QPointF pixel) {
    const std::optional<DrawnPlot> drawn = drawnMainPlot(doc, size);
    if (!drawn || !drawn->frame.box.contains(pixel)) return std::nullopt;
    PlotPoint p;
    p.fx = drawn->plot.horizontal.fIndex;
    p.x = *ppmAtPixel(drawn->frame.x, pixel.x());
    if (!drawn->plot.hasVertical) {
        p.value = traceValue(doc.matrix, p.fx, p.x);
        return p;
    }
    p.fy = drawn->plot.vertical.fIndex;
    p.y = *ppmAtPixel(drawn->frame.y, pixel.y());
    p.value = mapValue(doc.matrix, p.x, p.y);
    return p;
}

std::optional<PlotSpan> spanBetween(const SpectrumDocument& doc, QSize size, QPointF a, QPointF b) {
    const std::optional<DrawnPlot> drawn = drawnMainPlot(doc, size);
    if (!drawn || !std::isfinite(a.x() + a.y() + b.x() + b.y())) return std::nullopt;
    const auto pair = [](double u, double v) {
        return std::array<double, 2>{std::min(u, v), std::max(u, v)};
    };
    const PlotFrame& f = drawn->frame;
    PlotSpan span;
    span.x = pair(*ppmAtPixel(f.x, a.x()), *ppmAtPixel(f.x, b.x()));
    if (drawn->plot.hasVertical) span.y = pair(*ppmAtPixel(f.y, a.y()), *ppmAtPixel(f.y, b.y()));
    return span;
}

std::string statusText(const SpectrumDocument& doc, const PlotPoint& p) {
    const SpectrumMatrix& m = doc.matrix;
    std::string text;
    if (p.fy) {
        text = "f" + std::to_string(p.fx) + " " + axisText(m, p.fx, p.x) + "  f" +
               std::to_string(p.fy) + " " + axisText(m, p.fy, p.y);
    } else {
        text = axisText(m, p.fx, p.x);
    }
    if (p.value) {
        char value[48];
        std::snprintf(value, sizeof value, "  intensity %g", double(*p.value));
        text += value;
    }
    return text;
}

}  // namespace zolt

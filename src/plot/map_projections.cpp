#include "plot/map_projections.h"

#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "plot/trace_columns.h"

namespace zolt {

namespace {

constexpr double kBandShare = 0.12, kSmallestBand = 24.0, kLargestBand = 90.0;
// Room kept between a band and the map, and at the far edge of the band.
constexpr double kBandGap = 3.0;

// The points of an axis the segments show, from the lowest to one past the highest.
std::pair<size_t, size_t> shownPoints(const DimensionRecord& d,
                                      const std::vector<SegmentMap>& segments) {
    double lo = INFINITY, hi = -INFINITY;
    for (const SegmentMap& s : segments)
        for (const double ppm : {s.ppmA, s.ppmB}) {
            lo = std::min(lo, pointPosition(d, ppm));
            hi = std::max(hi, pointPosition(d, ppm));
        }
    const double n = double(d.points);
    if (!std::isfinite(lo) || !std::isfinite(hi)) return {0, 0};
    return {size_t(std::clamp(std::round(lo), 0.0, n)),
            size_t(std::clamp(std::round(hi) + 1, 0.0, n))};
}

// One projection: `heights` of the skyline over each pixel of the segments along the axis,
// rising from `base` by `direction` pixels per unit (horizontal: upwards; vertical: to the
// right).
void drawSkyline(QPainter& p, const std::vector<float>& sky, const DimensionRecord& d,
                 const std::vector<SegmentMap>& segments, bool horizontal, double base,
                 double perPixel) {
    for (const SegmentMap& s : segments) {
        const double start = std::floor(s.pixelA);
        const int pixels = static_cast<int>(std::ceil(s.pixelB) - start);
        const double first = pointPosition(d, s.ppm(start));
        const double step = pointPosition(d, s.ppm(start + 1.0)) - first;
        const auto columns = columnExtremes(sky.data(), sky.size(), first, step, pixels);
        QPolygonF line;
        line.reserve(static_cast<qsizetype>(columns.size()));
        for (size_t c = 0; c < columns.size(); ++c) {
            const double along = start + double(c) + 0.5;
            const double rise = double(columns[c].high) / perPixel;
            line << (horizontal ? QPointF(along, base - rise) : QPointF(base + rise, along));
        }
        p.drawPolyline(line);
    }
}

double tallest(const std::vector<float>& sky, size_t first, size_t last) {
    float top = 0.0f;
    for (size_t i = first; i < last && i < sky.size(); ++i) top = std::max(top, sky[i]);
    return top;
}

double perPixel(float amplitude, double top, double band) {
    if (std::isfinite(amplitude) && amplitude > 0.0f) return amplitude;
    return top > 0.0 ? top / std::max(1.0, band - 2 * kBandGap) : 1.0;
}

}  // namespace

bool showsProjections(const DisplayParameters& plot) {
    switch (plot.plotMode()) {
        case PlotMode::Fast:
        case PlotMode::Contours:
        case PlotMode::GradientContours:
        case PlotMode::Mosaic:
            return plot.hasVertical;
        default:
            return int(plot.plotMode()) == 7 && plot.hasVertical;  // read as a fast plot
    }
}

double projectionBand(double boxLength) {
    return std::clamp(kBandShare * boxLength, kSmallestBand, kLargestBand);
}

Skylines skylines(const GridWindow& g, size_t firstRow, size_t lastRow, size_t firstColumn,
                  size_t lastColumn, bool positive, bool negative) {
    Skylines sky;
    if (!g.data || g.lastRow < g.firstRow || g.lastColumn < g.firstColumn) return sky;
    if (g.columnsContiguous()) {
        sky = skylines(g.transposed(), firstColumn, lastColumn, firstRow, lastRow, positive,
                       negative);
        std::swap(sky.horizontal, sky.vertical);
        return sky;
    }
    sky.horizontal.assign(g.lastColumn - g.firstColumn, 0.0f);
    sky.vertical.assign(g.lastRow - g.firstRow, 0.0f);
    const float sp = positive ? 1.0f : 0.0f, sn = negative ? -1.0f : 0.0f;
    // Row by row in simple loops the compiler vectorizes.
    std::vector<float> row(sky.horizontal.size());
    const size_t c0 = std::clamp(firstColumn, g.firstColumn, g.lastColumn) - g.firstColumn;
    const size_t c1 = std::clamp(lastColumn, g.firstColumn, g.lastColumn) - g.firstColumn;
    for (size_t r = g.firstRow; r < g.lastRow; ++r) {
        for (size_t k = 0; k < row.size(); ++k) {
            const float v = g.value(r, g.firstColumn + k);
            row[k] = std::max(sp * v, sn * v);
        }
        if (r >= firstRow && r < lastRow)
            for (size_t k = 0; k < row.size(); ++k)
                sky.horizontal[k] = std::max(sky.horizontal[k], row[k]);
        float top = 0.0f;
        for (size_t k = c0; k < c1; ++k) top = std::max(top, row[k]);
        sky.vertical[r - g.firstRow] = top;
    }
    return sky;
}

void drawProjections(QPainter& p, const Plane& pl, const DisplayParameters& plot,
                     const PlotFrame& f) {
    const bool negative = plot.negativeLevels > 0;
    const bool positive = plot.positiveLevels > 0 || !negative;
    const auto [r0, r1] = shownPoints(*pl.y, f.y);
    const auto [c0, c1] = shownPoints(*pl.x, f.x);
    GridWindow whole = pl.grid;
    whole.firstRow = whole.firstColumn = 0;
    whole.lastRow = pl.y->points;
    whole.lastColumn = pl.x->points;
    const Skylines sky = skylines(whole, r0, r1, c0, c1, positive, negative);
    const std::vector<float>&across = sky.horizontal, &down = sky.vertical;
    // The title keeps its line above the horizontal projection.
    const double top = f.data.top() - f.box.top() - f.titleRoom;
    const double right = f.box.right() - f.data.right();
    p.save();
    p.setPen(QPen(f.color1, 0));
    if (top > kBandGap) {
        p.setClipRect(
            QRectF(f.data.left(), f.box.top() + f.titleRoom, f.data.width(), top - kBandGap));
        const double scale = perPixel(plot.horizontalProjection, tallest(across, c0, c1), top);
        drawSkyline(p, across, *pl.x, f.x, true, f.data.top() - kBandGap, scale);
    }
    if (right > kBandGap) {
        p.setClipRect(QRectF(f.data.right() + kBandGap, f.data.top(), right, f.data.height()));
        const double scale = perPixel(plot.verticalProjection, tallest(down, r0, r1), right);
        drawSkyline(p, down, *pl.y, f.y, false, f.data.right() + kBandGap, scale);
    }
    p.restore();
}

}  // namespace zolt

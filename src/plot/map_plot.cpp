#include "plot/map_plot.h"

#include <QImage>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "display/vertical_scale.h"
#include "plot/marching_squares.h"
#include "plot/scale_drawing.h"
#include "plot/trace_annotations.h"
#include "plot/trace_columns.h"
#include "processing/phase.h"

namespace zolt {

namespace {

// The shown plane and how its points lie: value(row, column) along the vertical and the
// horizontal axis.
struct Plane {
    GridWindow grid;
    const DimensionRecord* x = nullptr;
    const DimensionRecord* y = nullptr;
};

std::optional<Plane> shownPlane(const SpectrumMatrix& m) {
    const int xf = m.xIndex, yf = m.yIndex;
    if (xf < 1 || xf > 3 || yf < 1 || yf > 3 || xf == yf) return std::nullopt;
    const size_t total = m.pointCount();
    if (m.re.size() < total || m.dims[xf].points < 2 || m.dims[yf].points < 2) return std::nullopt;
    Plane pl;
    pl.x = &m.dims[xf];
    pl.y = &m.dims[yf];
    pl.grid.columnStride = axisWalk(m, xf, total).inner;
    pl.grid.rowStride = axisWalk(m, yf, total).inner;
    const size_t last =
        (pl.x->points - 1) * pl.grid.columnStride + (pl.y->points - 1) * pl.grid.rowStride;
    if (m.planeOffset + last >= m.re.size()) return std::nullopt;
    pl.grid.data = m.re.data() + m.planeOffset;
    return pl;
}

// The points of an axis a segment shows, one more on either side so lines reach its edges.
std::pair<size_t, size_t> pointRange(const DimensionRecord& d, const SegmentMap& s) {
    const double a = pointPosition(d, s.ppmA), b = pointPosition(d, s.ppmB);
    const double lo = std::floor(std::min(a, b)) - 1, hi = std::ceil(std::max(a, b)) + 2;
    const double n = double(d.points);
    return {size_t(std::clamp(lo, 0.0, n)), size_t(std::clamp(hi, 0.0, n))};
}

double pixelOfPoint(const DimensionRecord& d, const SegmentMap& s, double i) {
    return s.pixel(ppmOfPoint(d, i));
}

void drawContours(QPainter& p, const Plane& pl, const DisplayParameters& plot, const PlotFrame& f) {
    const ContourLevels levels = contourLevels(plot);
    std::vector<float> all = levels.positive;
    all.insert(all.end(), levels.negative.begin(), levels.negative.end());
    for (const SegmentMap& sx : f.x)
        for (const SegmentMap& sy : f.y) {
            GridWindow g = pl.grid;
            std::tie(g.firstColumn, g.lastColumn) = pointRange(*pl.x, sx);
            std::tie(g.firstRow, g.lastRow) = pointRange(*pl.y, sy);
            const auto lines = traceContours(g, all);
            // Pixels are linear in the point index along each axis.
            const double x0 = pixelOfPoint(*pl.x, sx, 0), dx = pixelOfPoint(*pl.x, sx, 1) - x0;
            const double y0 = pixelOfPoint(*pl.y, sy, 0), dy = pixelOfPoint(*pl.y, sy, 1) - y0;
            p.save();
            p.setClipRect(
                QRectF(QPointF(sx.pixelA, sy.pixelA), QPointF(sx.pixelB, sy.pixelB)).normalized());
            for (size_t i = 0; i < all.size(); ++i) {
                if (lines[i].empty()) continue;
                p.setPen(QPen(all[i] < 0 ? f.color2 : f.color1, 0));
                QVector<QLineF> drawn;
                drawn.reserve(static_cast<qsizetype>(lines[i].size()));
                for (const ContourSegment& s : lines[i])
                    drawn.append(
                        QLineF(x0 + s.x0 * dx, y0 + s.y0 * dy, x0 + s.x1 * dx, y0 + s.y1 * dy));
                p.drawLines(drawn);
            }
            p.restore();
        }
}

// Positive intensities from pale yellow through red to brown, negative ones through blue.
QRgb paletteColour(double position) {
    const double t = std::clamp(std::fabs(position) / 255.0, 0.0, 1.0);
    if (t < 0.02) return qRgb(255, 255, 255);
    if (position < 0) return qRgb(int(230 - 200 * t), int(240 - 200 * t), 255 - int(100 * t));
    return qRgb(255 - int(120 * t * t), int(230 * (1 - t)), int(120 * (1 - t) * (1 - t)));
}

void drawFastPlot(QPainter& p, const Plane& pl, const DisplayParameters& plot, const PlotFrame& f) {
    const double levels = std::max(0, int(plot.positiveLevels));
    const double factor =
        (8 * levels + 256) / (std::pow(double(plot.ratio), 0.4 * levels + 1) * plot.threshold / 2);
    for (const SegmentMap& sx : f.x)
        for (const SegmentMap& sy : f.y) {
            const QRect r = QRectF(QPointF(sx.pixelA, sy.pixelA), QPointF(sx.pixelB, sy.pixelB))
                                .normalized()
                                .toAlignedRect();
            if (r.width() <= 0 || r.height() <= 0 || r.width() > 8192 || r.height() > 8192)
                continue;
            QImage image(r.size(), QImage::Format_RGB32);
            for (int row = 0; row < r.height(); ++row) {
                const double py = pointPosition(*pl.y, sy.ppm(r.top() + row + 0.5));
                const auto yi = size_t(std::clamp(std::round(py), 0.0, double(pl.y->points - 1)));
                auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
                for (int col = 0; col < r.width(); ++col) {
                    const double px = pointPosition(*pl.x, sx.ppm(r.left() + col + 0.5));
                    const auto xi =
                        size_t(std::clamp(std::round(px), 0.0, double(pl.x->points - 1)));
                    line[col] = paletteColour(pl.grid.value(yi, xi) * factor);
                }
            }
            p.drawImage(r.topLeft(), image);
        }
}

// An arrayed series (a pseudo-2-D set of 1-D rows) side by side: each row gets an equal slot
// of the box's width, showing the horizontal segments' ppm range. The contour threshold says
// nothing about the height of a row, so the rows share one scale from the plane's extremes,
// with room for negative rows (an inversion recovery starts inverted).
constexpr size_t kMostArrayedRows = 256;

void drawArrayed(QPainter& p, const Plane& pl, const SpectrumMatrix& m, const PlotFrame& f) {
    if (f.x.empty()) return;
    const size_t rows = std::min<size_t>(pl.y->points, kMostArrayedRows);
    const double slot = f.data.width() / double(rows);
    const double hi = f.x.front().ppmA, lo = f.x.back().ppmB;
    const double a = pointPosition(*pl.x, hi), b = pointPosition(*pl.x, lo);
    const double perPixel = (b - a) / std::max(1.0, slot - 4);
    const DataExtremes e = shownExtremes(m);
    const double low = std::min(0.0f, e.minimum), high = std::max(0.0f, e.maximum);
    const double span = high > low ? high - low : 1.0;
    const double scale = (f.data.height() - 8) / span;
    const double zero = f.data.bottom() - 4 + low * scale;
    std::vector<float> row(pl.x->points);
    p.save();
    p.setClipRect(f.data);
    p.setPen(QPen(f.color1, 0));
    for (size_t r = 0; r < rows; ++r) {
        for (size_t c = 0; c < row.size(); ++c) row[c] = pl.grid.value(r, c);
        const int columns = std::max(1, int(slot - 4));
        const auto ext = columnExtremes(row.data(), row.size(), a, perPixel, columns);
        QPolygonF line;
        const double left = f.data.left() + double(r) * slot + 2;
        for (size_t c = 0; c < ext.size(); ++c) {
            const double yh = zero - ext[c].high * scale, yl = zero - ext[c].low * scale;
            line << QPointF(left + double(c) + 0.5, c % 2 ? yl : yh)
                 << QPointF(left + double(c) + 0.5, c % 2 ? yh : yl);
        }
        p.drawPolyline(line);
    }
    p.restore();
}

}  // namespace

void drawMapPlot(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                 const PlotFrame& f) {
    p.save();
    if (const auto plane = shownPlane(doc.matrix)) {
        if (plot.plotMode() == PlotMode::Fast)
            drawFastPlot(p, *plane, plot, f);
        else if (plot.plotMode() == PlotMode::Arrayed)
            drawArrayed(p, *plane, doc.matrix, f);
        else
            drawContours(p, *plane, plot, f);
    }
    drawMarks(p, doc, f, true);
    p.setPen(QPen(f.color1, 0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(f.data);
    // The rows of an arrayed plot have no common scale to show.
    const bool arrayed = plot.plotMode() == PlotMode::Arrayed;
    if ((plot.flags & display_flags::kXAxis) && !arrayed) drawHorizontalScale(p, f, plot.flags);
    if ((plot.flags & display_flags::kYAxis) && !arrayed) drawVerticalScale(p, f, plot.flags);
    p.restore();
}

}  // namespace zolt

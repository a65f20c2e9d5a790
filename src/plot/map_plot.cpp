#include "plot/map_plot.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <tuple>

#include "display/vertical_scale.h"
#include "plot/chessboard.h"
#include "plot/map_plane.h"
#include "plot/map_projections.h"
#include "plot/marching_squares.h"
#include "plot/palettes.h"
#include "plot/row_plots.h"
#include "plot/scale_drawing.h"
#include "plot/trace_annotations.h"

namespace zolt {

namespace {

// The points of an axis a segment shows, one more on either side so lines reach its edges.
std::pair<size_t, size_t> pointRange(const DimensionRecord& d, const SegmentMap& s) {
    const double a = pointPosition(d, s.ppmA), b = pointPosition(d, s.ppmB);
    const double lo = std::floor(std::min(a, b)) - 1, hi = std::ceil(std::max(a, b)) + 2;
    const double n = double(d.points);
    if (!std::isfinite(lo) || !std::isfinite(hi)) return {0, 0};
    return {size_t(std::clamp(lo, 0.0, n)), size_t(std::clamp(hi, 0.0, n))};
}

// A fractional point position rounded into 0 ... n - 1 (0 when it is no number).
size_t nearestPoint(double position, size_t n) {
    if (!(position > 0.0)) return 0;
    return size_t(std::min(std::round(position), double(n - 1)));
}

double pixelOfPoint(const DimensionRecord& d, const SegmentMap& s, double i) {
    return s.pixel(ppmOfPoint(d, i));
}

// Gradient contours draw twice as many levels, each in its own colour: the positive ones from
// blue through green to red as they rise, the negative ones from cyan to violet.
constexpr float kGradientLevelStep = 0.5f;

std::vector<QColor> levelColours(const ContourLevels& levels, const PlotFrame& f, bool gradient) {
    std::vector<QColor> colours;
    const auto add = [&](size_t n, const QColor& plain, int hueFrom, int hueTo) {
        for (size_t i = 0; i < n; ++i) {
            const double t = n > 1 ? double(i) / double(n - 1) : 0.0;
            colours.push_back(
                gradient ? QColor::fromHsv(int(hueFrom + (hueTo - hueFrom) * t), 255, 210) : plain);
        }
    };
    add(levels.positive.size(), f.color1, 230, 0);
    add(levels.negative.size(), f.color2, 180, 290);
    return colours;
}

void drawContours(QPainter& p, const Plane& pl, const DisplayParameters& plot, const PlotFrame& f) {
    const bool gradient = plot.plotMode() == PlotMode::GradientContours;
    const ContourLevels levels = contourLevels(plot, gradient ? kGradientLevelStep : 1.0f);
    std::vector<float> all = levels.positive;
    all.insert(all.end(), levels.negative.begin(), levels.negative.end());
    const std::vector<QColor> colours = levelColours(levels, f, gradient);
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
                p.setPen(QPen(colours[i], 0));
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
                const size_t yi = nearestPoint(py, pl.y->points);
                auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
                for (int col = 0; col < r.width(); ++col) {
                    const double px = pointPosition(*pl.x, sx.ppm(r.left() + col + 0.5));
                    const size_t xi = nearestPoint(px, pl.x->points);
                    line[col] = paletteColour(f.palette, pl.grid.value(yi, xi) * factor);
                }
            }
            p.drawImage(r.topLeft(), image);
        }
}

}  // namespace

void drawMapPlot(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                 const PlotFrame& f) {
    p.save();
    const auto plane = shownPlane(doc.matrix, plot.zeta);
    if (plane) {
        // The unnamed mode 7 is read as a fast plot.
        if (plot.plotMode() == PlotMode::Fast || int(plot.plotMode()) == 7)
            drawFastPlot(p, *plane, plot, f);
        else if (plot.plotMode() == PlotMode::Arrayed)
            drawArrayed(p, *plane, doc.matrix, f);
        else if (plot.plotMode() == PlotMode::Stacked || plot.plotMode() == PlotMode::WhiteWashed)
            drawStacked(p, *plane, doc.matrix, f, plot.plotMode() == PlotMode::WhiteWashed);
        else if (plot.plotMode() == PlotMode::Mosaic)
            drawChessboard(p, *plane, plot, f);
        else
            drawContours(p, *plane, plot, f);
        if (showsProjections(plot)) drawProjections(p, *plane, plot, f);
    }
    drawMarks(p, doc, f, true);
    p.setPen(QPen(f.color1, 0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(f.data);
    // Rows have no common vertical scale; the horizontal one stands under the front row of a
    // stack and under the first of a series side by side.
    const PlotMode mode = plot.plotMode();
    const bool stacked = mode == PlotMode::Stacked || mode == PlotMode::WhiteWashed;
    const bool rows = stacked || mode == PlotMode::Arrayed;
    if (plot.flags & display_flags::kXAxis) {
        if (stacked)
            drawHorizontalScale(p, stackFrontFrame(f), plot.flags);
        else if (!rows)
            drawHorizontalScale(p, f, plot.flags);
        else if (plane)
            drawHorizontalScale(p, arrayedFirstFrame(*plane, f), plot.flags);
    }
    if ((plot.flags & display_flags::kYAxis) && !rows) drawVerticalScale(p, f, plot.flags);
    p.restore();
}

}  // namespace zolt

#include "plot/row_plots.h"

#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <vector>

#include "display/vertical_scale.h"
#include "plot/trace_columns.h"

namespace zolt {

namespace {

// More rows than these are thinned evenly.
constexpr size_t kMostArrayedRows = 256;
constexpr size_t kMostStackedRows = 128;
// A stack leans back by these shares of the data's width and height, the last row the
// furthest; a row's tallest point takes the rest of the height.
constexpr double kStackDepthX = 0.2, kStackDepthY = 0.5;

// Which rows are drawn, and the common intensity scale of all of them.
struct Rows {
    size_t count = 0, stride = 1;
    double low = 0.0, high = 1.0;
};
// Rows at the end that hold nothing but zeros pad a series to the transform's size: they are
// not drawn.
size_t filledRows(const Plane& pl) {
    size_t n = pl.y->points;
    const auto empty = [&](size_t row) {
        for (size_t c = 0; c < pl.x->points; ++c)
            if (pl.grid.value(row, c) != 0.0f) return false;
        return true;
    };
    while (n > 1 && empty(n - 1)) --n;
    return n;
}

Rows rowsOf(const Plane& pl, const SpectrumMatrix& m, size_t most) {
    Rows r;
    const size_t filled = filledRows(pl);
    r.stride = (filled + most - 1) / most;
    r.count = (filled + r.stride - 1) / r.stride;
    const DataExtremes e = shownExtremes(m);
    r.low = std::min(0.0f, e.minimum);
    r.high = std::max(0.0f, e.maximum);
    if (!(r.high > r.low)) r.high = r.low + 1.0;
    return r;
}

// One row over `columns` pixels from `left`, the horizontal segments' whole ppm range, with
// intensity v at zero - v * scale.
QPolygonF rowLine(const Plane& pl, const PlotFrame& f, size_t row, double left, int columns,
                  double zero, double scale) {
    const double a = pointPosition(*pl.x, f.x.front().ppmA);
    const double b = pointPosition(*pl.x, f.x.back().ppmB);
    std::vector<float> values(pl.x->points);
    for (size_t c = 0; c < values.size(); ++c) values[c] = pl.grid.value(row, c);
    const auto ext = columnExtremes(values.data(), values.size(), a, (b - a) / columns, columns);
    QPolygonF line;
    for (size_t c = 0; c < ext.size(); ++c) {
        const double x = left + double(c) + 0.5;
        const double yh = zero - ext[c].high * scale, yl = zero - ext[c].low * scale;
        line << QPointF(x, c % 2 ? yl : yh) << QPointF(x, c % 2 ? yh : yl);
    }
    return line;
}

}  // namespace

void drawArrayed(QPainter& p, const Plane& pl, const SpectrumMatrix& m, const PlotFrame& f) {
    if (f.x.empty()) return;
    const QRectF data = f.data.adjusted(0, f.titleRoom, 0, 0);  // the title keeps its line
    const Rows rows = rowsOf(pl, m, kMostArrayedRows);
    const double slot = data.width() / double(rows.count);
    const int columns = std::max(1, int(slot - 4));
    const double scale = (data.height() - 8) / (rows.high - rows.low);
    const double zero = data.bottom() - 4 + rows.low * scale;
    p.save();
    p.setClipRect(f.data);
    p.setPen(QPen(f.color1, 0));
    for (size_t k = 0; k < rows.count; ++k)
        p.drawPolyline(rowLine(pl, f, k * rows.stride, data.left() + double(k) * slot + 2, columns,
                               zero, scale));
    p.restore();
}

// The largest scale at which every row of a stack, lifted by its depth, keeps within the
// data (4 pixels from the edges), and the front row's zero line there: a row behind may dip
// below its zero line into the room the rows in front leave.
std::pair<double, double> stackScale(const Plane& pl, const Rows& rows, const QRectF& data,
                                     double depthY, double steps) {
    std::vector<double> low(rows.count, 0.0), high(rows.count, 0.0);
    for (size_t k = 0; k < rows.count; ++k)
        for (size_t c = 0; c < pl.x->points; ++c) {
            const double v = pl.grid.value(k * rows.stride, c);
            low[k] = std::min(low[k], v), high[k] = std::max(high[k], v);
        }
    const auto place = [&](double s) {  // the front zero, and whether the rows fit
        double zero = INFINITY;
        for (size_t k = 0; k < rows.count; ++k)
            zero = std::min(zero, data.bottom() - 4 + low[k] * s + depthY * double(k) / steps);
        bool fits = true;
        for (size_t k = 0; k < rows.count; ++k)
            fits = fits && zero - depthY * double(k) / steps - high[k] * s >= data.top() + 4;
        return std::pair{zero, fits};
    };
    double fit = std::max(0.0, (data.height() - depthY - 8) / (rows.high - rows.low));
    double beyond = std::max(fit, data.height() / (rows.high - rows.low)) * 2 + 1e-30;
    for (int i = 0; i < 40 && place(fit).second; ++i) {
        const double s = (fit + beyond) / 2;
        (place(s).second ? fit : beyond) = s;
    }
    return {fit, place(fit).first};
}

PlotFrame arrayedFirstFrame(const Plane& pl, const PlotFrame& f) {
    PlotFrame first = f;
    if (f.x.empty()) return first;
    const size_t filled = filledRows(pl);
    const size_t stride = (filled + kMostArrayedRows - 1) / kMostArrayedRows;
    const double slot = f.data.width() / double((filled + stride - 1) / stride);
    const double left = f.data.left() + 2;
    first.x = {
        SegmentMap{f.x.front().ppmA, f.x.back().ppmB, left, left + std::max(1, int(slot - 4))}};
    return first;
}

PlotFrame stackFrontFrame(const PlotFrame& f) {
    PlotFrame front = f;
    if (f.x.empty()) return front;
    const double columns = std::max(1, int(f.data.width() - kStackDepthX * f.data.width()));
    front.x = {
        SegmentMap{f.x.front().ppmA, f.x.back().ppmB, f.data.left(), f.data.left() + columns}};
    return front;
}

void drawStacked(QPainter& p, const Plane& pl, const SpectrumMatrix& m, const PlotFrame& f,
                 bool whiteWashed) {
    if (f.x.empty()) return;
    const QRectF data = f.data.adjusted(0, f.titleRoom, 0, 0);
    const Rows rows = rowsOf(pl, m, kMostStackedRows);
    const double depthX = kStackDepthX * data.width(), depthY = kStackDepthY * data.height();
    const int columns = std::max(1, int(data.width() - depthX));
    const double steps = std::max<double>(1.0, double(rows.count) - 1);
    const auto [scale, frontZero] = stackScale(pl, rows, data, depthY, steps);
    p.save();
    p.setClipRect(f.data);
    p.setPen(QPen(f.color1, 0));
    // From the back, so that each row in front hides what it covers.
    for (size_t k = rows.count; k-- > 0;) {
        const double left = data.left() + depthX * double(k) / steps;
        const double zero = frontZero - depthY * double(k) / steps;
        QPolygonF line = rowLine(pl, f, k * rows.stride, left, columns, zero, scale);
        if (whiteWashed && !line.isEmpty()) {
            QPolygonF area = line;
            area << QPointF(line.back().x(), data.bottom())
                 << QPointF(line.front().x(), data.bottom());
            p.setBrush(Qt::white);
            p.save();
            p.setPen(Qt::NoPen);
            p.drawPolygon(area);
            p.restore();
        }
        p.drawPolyline(line);
    }
    p.restore();
}

}  // namespace zolt

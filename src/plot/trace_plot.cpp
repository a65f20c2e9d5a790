#include "plot/trace_plot.h"

#include <QPolygonF>
#include <cmath>

#include "plot/scale_drawing.h"
#include "plot/trace_annotations.h"

namespace zolt {

namespace {

// The shown row of a 1-D matrix, or nothing when the matrix holds fewer points.
struct Row {
    const float* data = nullptr;
    size_t n = 0;
};
Row shownRow(const SpectrumMatrix& m) {
    const int f = m.xIndex;
    if (f < 1 || f > 3) return {};
    const size_t n = m.dims[f].points;
    if (n == 0 || m.planeOffset > m.re.size() || m.re.size() - m.planeOffset < n) return {};
    return {m.re.data() + m.planeOffset, n};
}

void drawTrace(QPainter& p, const SpectrumMatrix& m, const PlotFrame& f, const IntensityMap& im) {
    for (const SegmentMap& s : f.x) {
        const std::vector<ColumnExtremes> columns = segmentColumns(m, s);
        QPolygonF line;
        line.reserve(static_cast<qsizetype>(2 * columns.size()));
        for (size_t c = 0; c < columns.size(); ++c) {
            const double x = std::floor(s.pixelA) + double(c) + 0.5;
            const double hi = im.y(columns[c].high), lo = im.y(columns[c].low);
            // Alternating the order keeps the line from jumping back across each column.
            line << QPointF(x, c % 2 ? lo : hi);
            if (hi != lo) line << QPointF(x, c % 2 ? hi : lo);
        }
        p.drawPolyline(line);
    }
}

}  // namespace

IntensityMap intensityMap(const DisplayParameters& plot, const QRectF& data) {
    const VerticalRange r = verticalRange(plot);
    IntensityMap im{r.bottom, r.top, data.bottom(), data.height()};
    if (!(im.top > im.bottom)) im.top = im.bottom + 1.0;
    return im;
}

std::vector<ColumnExtremes> segmentColumns(const SpectrumMatrix& m, const SegmentMap& s) {
    const Row row = shownRow(m);
    if (!row.data) return {};
    const DimensionRecord& d = m.dims[m.xIndex];
    const double left = std::floor(s.pixelA);
    const int columns = static_cast<int>(std::ceil(s.pixelB) - left);
    const double first = pointPosition(d, s.ppm(left));
    const double step = pointPosition(d, s.ppm(left + 1.0)) - first;
    return columnExtremes(row.data, row.n, first, step, columns);
}

void drawTracePlot(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                   const PlotFrame& f) {
    p.save();
    // The trace keeps below its peak labels, as on a spectrometer's plot; amplified beyond the
    // top, it is cut off under them.
    const double band = peakLabelBand(p, doc, plot, f);
    const IntensityMap im = intensityMap(plot, f.data.adjusted(0, band, 0, 0));
    p.setClipRect(f.box);
    p.setPen(QPen(f.color1, 0));
    if (plot.flags & display_flags::kXAxis) drawHorizontalScale(p, f, plot.flags);
    const double zero = im.y(0.0);
    p.setPen(QPen(QColor(150, 150, 150), 0));
    for (const SegmentMap& s : f.x) p.drawLine(QLineF(s.pixelA, zero, s.pixelB, zero));
    drawMarks(p, doc, f, false);
    p.setClipRect(f.data.adjusted(0, band > 0 ? band : f.box.top() - f.data.top(), 0, 0));
    p.setPen(QPen(f.color1, 0));
    drawTrace(p, doc.matrix, f, im);
    p.setClipRect(f.box);
    drawIntegrals(p, doc, plot, f, im);
    drawPeakLabels(p, doc, plot, f, im);
    p.restore();
}

}  // namespace zolt

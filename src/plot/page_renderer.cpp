#include "plot/page_renderer.h"

#include <algorithm>
#include <cmath>

#include "display/window_resize.h"
#include "plot/map_plot.h"
#include "plot/trace_plot.h"

namespace zolt {

namespace {

constexpr float kLargestBoxPixels = 32768.0f;

double hzPerPpm(const PageRecord& page, const SpectrumMatrix& m, int f) {
    return page.scaleUnit == ScaleUnit::Hz && f >= 1 && f <= 3 ? m.dims[f].carrier : 0.0;
}

PlotFrame frameOf(const PageRecord& page, const DisplayParameters& plot, const SpectrumMatrix& m) {
    PlotFrame f;
    f.box = QRectF(plot.box[0], plot.box[1], plot.box[2], plot.box[3]);
    f.data = f.box;
    // A 1-D box reaches the bottom of the window: its scale is drawn inside it.
    if (!plot.hasVertical && (plot.flags & display_flags::kXAxis))
        f.data.setBottom(std::max(f.box.top() + 1, f.box.bottom() - kTraceScaleBand));
    f.x = mapAxis(plot.horizontal, f.data.left(), f.data.right(), true);
    if (plot.hasVertical) f.y = mapAxis(plot.vertical, f.data.top(), f.data.bottom(), false);
    f.xHzPerPpm = hzPerPpm(page, m, plot.horizontal.fIndex);
    if (plot.hasVertical) f.yHzPerPpm = hzPerPpm(page, m, plot.vertical.fIndex);
    f.color1 = pageColor(page.color1);
    f.color2 = pageColor(page.color2);
    f.font = QFont(QString::fromStdString(page.fontName), page.fontSize > 0 ? page.fontSize : 10);
    f.font.setPixelSize(std::max<int>(page.fontSize, 6) + 2);
    return f;
}

void drawTitle(QPainter& p, const SpectrumDocument& doc, const PlotFrame& f) {
    const std::string& title = doc.metadata.title.empty() ? doc.windowName : doc.metadata.title;
    if (title.empty()) return;
    p.setPen(QPen(f.color1, 0));
    p.drawText(f.box.adjusted(4, 2, -4, 0), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
               QString::fromStdString(title));
}

PageRecord pageAt(const SpectrumDocument& doc, QSize size) {
    PageRecord page = doc.page;
    if (page.pageWidth && page.pageHeight)
        followResize(page, page.pageWidth, page.pageHeight, size.width(), size.height());
    return page;
}

// A box from a damaged file is not drawn.
bool saneBox(const DisplayParameters& plot) {
    return std::all_of(plot.box.begin(), plot.box.end(), [](float v) {
        return std::isfinite(v) && std::fabs(v) <= kLargestBoxPixels;
    });
}

bool drawable(const DisplayParameters& plot, const PlotFrame& f) {
    return !f.x.empty() && !(plot.hasVertical && f.y.empty());
}

}  // namespace

std::optional<DrawnPlot> drawnMainPlot(const SpectrumDocument& doc, QSize size) {
    const PageRecord page = pageAt(doc, size);
    if (page.plots.empty() || !saneBox(page.plots.front())) return std::nullopt;
    DrawnPlot drawn{page.plots.front(), frameOf(page, page.plots.front(), doc.matrix)};
    if (!drawable(drawn.plot, drawn.frame)) return std::nullopt;
    return drawn;
}

void renderPage(const SpectrumDocument& doc, QPainter& p, QSize size) {
    const PageRecord page = pageAt(doc, size);
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    p.fillRect(QRect(QPoint(0, 0), size), Qt::white);
    for (size_t i = 0; i < page.plots.size(); ++i) {
        const DisplayParameters& plot = page.plots[i];
        if (!saneBox(plot)) continue;
        const PlotFrame f = frameOf(page, plot, doc.matrix);
        if (!drawable(plot, f)) continue;
        p.setFont(f.font);
        if (i > 0) {
            // An inset covers what lies under it.
            p.fillRect(f.box, Qt::white);
            p.setPen(QPen(Qt::gray, 0));
            p.drawRect(f.box);
        }
        if (plot.hasVertical)
            drawMapPlot(p, doc, plot, f);
        else
            drawTracePlot(p, doc, plot, f);
        if (i == 0) drawTitle(p, doc, f);
    }
    p.restore();
}

}  // namespace zolt

#include "plot/page_renderer.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "display/window_resize.h"
#include "plot/map_plot.h"
#include "plot/map_projections.h"
#include "plot/trace_plot.h"

namespace zolt {

namespace {

constexpr float kLargestBoxPixels = 32768.0f;

double hzPerPpm(const PageRecord& page, const SpectrumMatrix& m, int f) {
    return page.scaleUnit == ScaleUnit::Hz && f >= 1 && f <= 3 ? m.dims[f].carrier : 0.0;
}

PlotFrame frameOf(const PageRecord& page, const DisplayParameters& plot, const SpectrumMatrix& m,
                  const RenderStyle& style) {
    PlotFrame f;
    f.box = QRectF(plot.box[0], plot.box[1], plot.box[2], plot.box[3]);
    f.data = plotDataRect(plot);
    f.x = mapAxis(plot.horizontal, f.data.left(), f.data.right(), true);
    if (plot.hasVertical) f.y = mapAxis(plot.vertical, f.data.top(), f.data.bottom(), false);
    f.xHzPerPpm = hzPerPpm(page, m, plot.horizontal.fIndex);
    if (plot.hasVertical) f.yHzPerPpm = hzPerPpm(page, m, plot.vertical.fIndex);
    f.color1 = pageColor(page.color1);
    f.color2 = pageColor(page.color2);
    f.font = pageFont(page);
    f.palette = style.palette;
    return f;
}

const std::string& titleOf(const SpectrumDocument& doc) {
    return doc.metadata.title.empty() ? doc.windowName : doc.metadata.title;
}

void drawTitle(QPainter& p, const SpectrumDocument& doc, const PlotFrame& f) {
    const std::string& title = titleOf(doc);
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

// The frame plot i is drawn in; the main plot leaves room for the title.
PlotFrame drawnFrame(const SpectrumDocument& doc, const PageRecord& page, size_t i,
                     const RenderStyle& style) {
    PlotFrame f = frameOf(page, page.plots[i], doc.matrix, style);
    if (i == 0 && !titleOf(doc).empty()) f.titleRoom = QFontMetricsF(f.font).height() + 4;
    return f;
}

bool drawable(const DisplayParameters& plot, const PlotFrame& f) {
    return !f.x.empty() && !(plot.hasVertical && f.y.empty());
}

}  // namespace

std::optional<DrawnPlot> drawnMainPlot(const SpectrumDocument& doc, QSize size,
                                       const RenderStyle& style) {
    const PageRecord page = pageAt(doc, size);
    if (page.plots.empty() || !saneBox(page.plots.front())) return std::nullopt;
    DrawnPlot drawn{page.plots.front(), drawnFrame(doc, page, 0, style)};
    if (!drawable(drawn.plot, drawn.frame)) return std::nullopt;
    return drawn;
}

QRectF plotDataRect(const DisplayParameters& plot) {
    const QRectF box(plot.box[0], plot.box[1], plot.box[2], plot.box[3]);
    QRectF data = box;
    // A 1-D box reaches the bottom of the window: its scale is drawn inside it.
    if (!plot.hasVertical && (plot.flags & display_flags::kXAxis))
        data.setBottom(std::max(box.top() + 1, box.bottom() - kTraceScaleBand));
    if (showsProjections(plot)) {
        data.setTop(box.top() + projectionBand(box.height()));
        data.setRight(box.right() - projectionBand(box.width()));
    }
    return data;
}

QFont pageFont(const PageRecord& page) {
    QFont font(
        QString::fromStdString(page.fontName.empty() ? PageRecord{}.fontName : page.fontName));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(std::max<int>(page.fontSize, 6) + 2);
    return font;
}

void renderPage(const SpectrumDocument& doc, QPainter& p, QSize size, const RenderStyle& style) {
    const PageRecord page = pageAt(doc, size);
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    p.fillRect(QRect(QPoint(0, 0), size), Qt::white);
    for (size_t i = 0; i < page.plots.size(); ++i) {
        const DisplayParameters& plot = page.plots[i];
        if (!saneBox(plot)) continue;
        const PlotFrame f = drawnFrame(doc, page, i, style);
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

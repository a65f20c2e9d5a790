#include "gui/plot_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <cstdlib>

#include "app/application.h"
#include "gui/plot_tools.h"
#include "operations/display_operations.h"
#include "operations/document_axes.h"
#include "operations/integral_operations.h"
#include "operations/peak_operations.h"
#include "plot/page_renderer.h"

namespace zolt {

namespace {

// A shorter drag is a click: it neither zooms nor picks.
constexpr int kSmallestDrag = 3;

const QColor kOverlayColor(40, 110, 220);

}  // namespace

PlotView::PlotView(Application& app, SpectrumDocument& document, QWidget* parent)
    : QWidget(parent), app_(app), document_(document) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void PlotView::setTool(int toolId) {
    if (!tools::isTool(toolId) || toolId == tool_) return;
    tool_ = toolId;
    dragStart_.reset();
    update();
    emit toolChanged(tool_);
}

void PlotView::setPreview(const SpectrumDocument* preview) {
    preview_ = preview;
    page_ = QPixmap();
    update();
}

const SpectrumDocument& PlotView::shownDocument() const {
    return preview_ ? *preview_ : document_;
}

void PlotView::setMarker(std::optional<double> ppm) {
    marker_ = ppm;
    update();
}

void PlotView::documentChanged() {
    page_ = QPixmap();
    update();
}

void PlotView::documentEdited() {
    page_ = QPixmap();
    update();
    emit modified();
}

void PlotView::paintEvent(QPaintEvent*) {
    const qreal ratio = devicePixelRatioF();
    if (page_.isNull() || page_.deviceIndependentSize() != QSizeF(size())) {
        page_ = QPixmap(size() * ratio);
        page_.setDevicePixelRatio(ratio);
        QPainter pagePainter(&page_);
        pagePainter.fillRect(rect(), Qt::white);
        renderPage(shownDocument(), pagePainter, size(), renderStyle(app_.preferences()));
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, page_);
    paintOverlay(painter);
}

// What the view draws over the page and never stores: the drag's band or box, the cross-hair
// and the marker.
void PlotView::paintOverlay(QPainter& p) {
    const std::optional<DrawnPlot> drawn = drawnMainPlot(shownDocument(), size());
    if (!drawn) return;
    const QRectF box = drawn->frame.box;
    p.setPen(QPen(kOverlayColor, 0, Qt::DashLine));
    if (dragStart_ && cursor_) {
        QRectF band = QRectF(QPointF(*dragStart_), QPointF(*cursor_)).normalized();
        // A trace's tools use the horizontal range only: the band spans the height.
        if (!drawn->plot.hasVertical) {
            band.setTop(box.top());
            band.setBottom(box.bottom());
        }
        p.fillRect(band.intersected(box), QColor(40, 110, 220, 40));
        p.drawRect(band.intersected(box));
    }
    if (marker_)
        for (const SegmentMap& s : drawn->frame.x)
            if (s.holds(*marker_)) {
                const double x = s.pixel(*marker_);
                p.drawLine(QLineF(x, box.top(), x, box.bottom()));
            }
    if (tool_ == tools::kCrossHair && cursor_ && box.contains(*cursor_)) {
        p.setPen(QPen(kOverlayColor, 0));
        p.drawLine(QLineF(box.left(), cursor_->y(), box.right(), cursor_->y()));
        p.drawLine(QLineF(cursor_->x(), box.top(), cursor_->x(), box.bottom()));
    }
}

bool PlotView::dragsRegions() const {
    return tool_ == tools::kZoom || tool_ == tools::kPeakPicker || tool_ == tools::kIntegrator;
}

void PlotView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QPoint at = event->position().toPoint();
    if (pointHandler_) {
        if (const std::optional<PlotPoint> p = pointAt(shownDocument(), size(), at))
            pointHandler_(*p);
        return;
    }
    if (dragsRegions()) {
        dragStart_ = at;
        cursor_ = at;
    }
}

void PlotView::mouseMoveEvent(QMouseEvent* event) {
    cursor_ = event->position().toPoint();
    const SpectrumDocument& shown = shownDocument();
    if (const std::optional<PlotPoint> p = pointAt(shown, size(), *cursor_))
        emit statusChanged(QString::fromStdString(statusText(shown, *p)));
    if (dragStart_ || tool_ == tools::kCrossHair) update();
}

void PlotView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !dragStart_) return;
    finishDrag(event->position().toPoint());
    dragStart_.reset();
    update();
}

void PlotView::leaveEvent(QEvent*) {
    cursor_.reset();
    if (tool_ == tools::kCrossHair) update();
}

void PlotView::keyPressEvent(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    int tool = 0;
    if (event->key() == Qt::Key_Escape)
        tool = tools::kPointer;
    else if (plain && event->text().size() == 1)
        tool = tools::toolForKey(event->text().toLower().at(0).unicode());
    if (!tool) {
        QWidget::keyPressEvent(event);
        return;
    }
    dragStart_.reset();
    setTool(tool);
}

void PlotView::finishDrag(QPoint end) {
    const QPoint start = *dragStart_;
    const bool wide = std::abs(end.x() - start.x()) >= kSmallestDrag;
    const bool tall = std::abs(end.y() - start.y()) >= kSmallestDrag;
    const std::optional<PlotSpan> span = spanBetween(document_, size(), start, end);
    if (!span) return;
    if (tool_ == tools::kZoom && (wide || (span->y && tall)))
        zoomTo(*span);
    else if (tool_ == tools::kPeakPicker && wide)
        pickIn(*span);
    else if (tool_ == tools::kIntegrator && wide)
        integrateOver(*span);
}

// The horizontal range, and on a map the vertical one too. A 1-D zoom keeps the vertical
// scale: the height of a box drawn over a trace is not meant as an amplification.
void PlotView::zoomTo(const PlotSpan& span) {
    RegionPairs pairs;
    pairs[0] = span.x;
    if (span.y) pairs[1] = *span.y;
    if (!showRegion(document_, pairs).applied) return;
    documentChanged();
    if (!span.y) emit traceZoomed(span.x[0], span.x[1]);
}

void PlotView::pickIn(const PlotSpan& span) {
    OperationResult r;
    if (!span.y) {
        r = pickPeaksInRange(document_, span.x[0], span.x[1], app_.peakPickingMinimum());
    } else if (frequencyAxes(document_.matrix) == 2) {
        PpmBox box;
        box.x = span.x;
        box.y = *span.y;
        r = runPeakPicker(document_, app_.peakPickingOptions(), box);
    }
    if (r.message) app_.message(r.message->caption, r.message->text);
    if (r.applied) documentEdited();
}

void PlotView::integrateOver(const PlotSpan& span) {
    if (addIntegralRegion(document_, span.x, span.y).applied) documentEdited();
}

}  // namespace zolt

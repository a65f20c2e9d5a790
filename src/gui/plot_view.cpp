#include "gui/plot_view.h"

#include <QPainter>

#include "app/application.h"
#include "plot/page_renderer.h"

namespace zolt {

PlotView::PlotView(Application& app, SpectrumDocument& document, QWidget* parent)
    : QWidget(parent), app_(app), document_(document) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
}

void PlotView::setTool(int toolId) {
    tool_ = toolId;
}

void PlotView::documentChanged() {
    update();
}

void PlotView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    renderPage(document_, painter, size());
}

}  // namespace zolt

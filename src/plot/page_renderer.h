// Draws a document's page from its display records on any QPainter device: the main plot and
// then the insets over it.
#pragma once

#include <QPainter>
#include <QSize>
#include <optional>

#include "model/spectrum_document.h"
#include "plot/plot_frame.h"

namespace zolt {

// The page is drawn at `size`: when that differs from the page's own size its plots follow the
// change as they follow a resized window (the document itself is not changed).
void renderPage(const SpectrumDocument& doc, QPainter& painter, QSize size);

// The main plot as renderPage draws it at `size`, with its record followed to that size;
// nothing when it is not drawn.
struct DrawnPlot {
    DisplayParameters plot;
    PlotFrame frame;
};
std::optional<DrawnPlot> drawnMainPlot(const SpectrumDocument& doc, QSize size);

}  // namespace zolt

// Draws a document's page from its display records on any QPainter device: the main plot and
// then the insets over it.
#pragma once

#include <QPainter>
#include <QSize>
#include <optional>

#include "app/preferences.h"
#include "model/spectrum_document.h"
#include "plot/plot_frame.h"

namespace zolt {

// What the program's preferences add to a page's own records.
struct RenderStyle {
    int palette = 1;  // of the fast plot, the fifth option byte of the preferences
};
inline RenderStyle renderStyle(const Preferences& prefs) {
    return {prefs.optionBytes[4]};
}

// The page is drawn at `size`: when that differs from the page's own size its plots follow the
// change as they follow a resized window (the document itself is not changed).
void renderPage(const SpectrumDocument& doc, QPainter& painter, QSize size,
                const RenderStyle& style = {});

// Where a plot's data are drawn: its box less the room of a 1-D plot's scale and of a map's
// projections.
QRectF plotDataRect(const DisplayParameters& plot);

// The font of a page's labels: the face the page names (a sans-serif one stands in where that
// face is not installed), at its size.
QFont pageFont(const PageRecord& page);

// The main plot as renderPage draws it at `size`, with its record followed to that size;
// nothing when it is not drawn.
struct DrawnPlot {
    DisplayParameters plot;
    PlotFrame frame;
};
std::optional<DrawnPlot> drawnMainPlot(const SpectrumDocument& doc, QSize size,
                                       const RenderStyle& style = {});

}  // namespace zolt

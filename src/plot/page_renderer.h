// Draws a document's page from its display records on any QPainter device: the main plot and
// then the insets over it.
#pragma once

#include <QPainter>
#include <QSize>

#include "model/spectrum_document.h"

namespace zolt {

// The page is drawn at `size`: when that differs from the page's own size its plots follow the
// change as they follow a resized window (the document itself is not changed).
void renderPage(const SpectrumDocument& doc, QPainter& painter, QSize size);

}  // namespace zolt

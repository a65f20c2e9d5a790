// File > Print... and File > Page Setup...: the document's page on paper (or in a PDF file
// when the system knows no printer), with the header and frame the Print preferences ask for.
#pragma once

#include <QPrinter>

#include "app/preferences.h"
#include "model/spectrum_document.h"

class QWidget;

namespace zolt {

// What the header shows: the title, the document's file and the date, each when its
// preference is on; empty strings for the rest.
struct PrintHeader {
    QString title, fileName, date;
    bool empty() const { return title.isEmpty() && fileName.isEmpty() && date.isEmpty(); }
};
PrintHeader printHeader(const SpectrumDocument& doc, const Preferences& prefs);

// Where a page printed without a printer goes unless the user says otherwise: beside the
// document's file, or its raw data when it was never saved ("fid" gives "fid.pdf"); in the home
// folder for a document of neither.
QString proposedPdfPath(const SpectrumDocument& doc);

// Draws the page on the printer's printable area: the header band on top, then the plot scaled
// to the rest; PrintFrame draws a frame around the plot, PrintDashedLines draws the frame and the
// header's rule dashed. False when the printer cannot be started.
bool printPage(const SpectrumDocument& doc, const Preferences& prefs, QPrinter& printer);

// The print dialog, then the page. Without any printer the page goes to a PDF file whose name
// is asked for, proposed beside the document's data. `printer` is the frame's: it keeps what
// Page Setup chose. False when cancelled or when printing failed.
bool printDocument(const SpectrumDocument& doc, const Preferences& prefs, QPrinter& printer,
                   QWidget* parent);
// Paper, orientation and margins for the next prints.
void pageSetup(QPrinter& printer, QWidget* parent);

}  // namespace zolt

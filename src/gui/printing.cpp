#include "gui/printing.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinterInfo>
#include <algorithm>

#include "model/display_record.h"
#include "plot/page_renderer.h"

namespace zolt {

namespace {

// The header's text is this many points high.
constexpr double kHeaderPoints = 10;

QString documentFile(const SpectrumDocument& doc) {
    return QString::fromStdString(doc.documentPath.empty() ? doc.source.rawPath : doc.documentPath);
}

QPen outlinePen(const Preferences& prefs, int resolution) {
    // A quarter of a millimetre whatever the printer's resolution.
    QPen pen(Qt::black, resolution / 100.0);
    if (prefs.has(pref_flags::kPrintDashedLines)) pen.setStyle(Qt::DashLine);
    return pen;
}

// Title left, file centred, date right, over a rule.
void drawHeader(QPainter& p, const PrintHeader& header, const QString& face, const QRectF& band,
                const QPen& rule) {
    QFont font(face);
    font.setPointSizeF(kHeaderPoints);
    p.setFont(font);
    p.setPen(Qt::black);
    const int flags = Qt::AlignVCenter | Qt::TextSingleLine;
    p.drawText(band, flags | Qt::AlignLeft, header.title);
    p.drawText(band, flags | Qt::AlignHCenter, header.fileName);
    p.drawText(band, flags | Qt::AlignRight, header.date);
    p.setPen(rule);
    p.drawLine(band.bottomLeft(), band.bottomRight());
}

}  // namespace

PrintHeader printHeader(const SpectrumDocument& doc, const Preferences& prefs) {
    PrintHeader h;
    if (prefs.has(pref_flags::kPrintTitle))
        h.title = QString::fromStdString(doc.metadata.title.empty() ? doc.windowName
                                                                    : doc.metadata.title);
    if (prefs.has(pref_flags::kPrintFileName)) h.fileName = documentFile(doc);
    if (prefs.has(pref_flags::kPrintDate))
        h.date = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm"));
    return h;
}

QString proposedPdfPath(const SpectrumDocument& doc) {
    const QFileInfo data(documentFile(doc));
    if (data.fileName().isEmpty()) return QDir::home().filePath(QStringLiteral("page.pdf"));
    return data.absoluteDir().filePath(data.completeBaseName() + QStringLiteral(".pdf"));
}

bool printPage(const SpectrumDocument& doc, const Preferences& prefs, QPrinter& printer) {
    QPainter p;
    if (!p.begin(&printer)) return false;
    // The painter's origin is the printable area's corner.
    const QRectF area(QPointF(0, 0), printer.pageRect(QPrinter::DevicePixel).size());
    const int dpi = printer.resolution();
    const QPen outline = outlinePen(prefs, dpi);
    QRectF plot = area;
    const PrintHeader header = printHeader(doc, prefs);
    if (!header.empty()) {
        const QRectF band(area.topLeft(), QSizeF(area.width(), 2 * kHeaderPoints * dpi / 72));
        drawHeader(p, header, QString::fromStdString(prefs.fontFace), band, outline);
        plot.setTop(band.bottom() + kHeaderPoints * dpi / 72);
    }
    // The page keeps its own width in pixels and takes the paper's proportions, so that its
    // texts and lines keep their size relative to the plot, as in a window of that shape.
    const int width = doc.page.pageWidth > 0 ? doc.page.pageWidth : kDefaultClientWidth;
    const double scale = plot.width() / width;
    const QSize logical(width, std::max(1, static_cast<int>(plot.height() / scale)));
    p.save();
    p.translate(plot.topLeft());
    p.scale(scale, scale);
    p.setClipRect(QRect(QPoint(0, 0), logical));
    renderPage(doc, p, logical, renderStyle(prefs));
    p.restore();
    if (prefs.has(pref_flags::kPrintFrame)) {
        p.setPen(outline);
        p.setBrush(Qt::NoBrush);
        p.drawRect(plot);
    }
    return p.end();
}

bool printDocument(const SpectrumDocument& doc, const Preferences& prefs, QPrinter& printer,
                   QWidget* parent) {
    printer.setDocName(QString::fromStdString(doc.windowName));
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        const QString file =
            QFileDialog::getSaveFileName(parent, QStringLiteral("Print to PDF"),
                                         proposedPdfPath(doc), QStringLiteral("PDF (*.pdf)"));
        if (file.isEmpty()) return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
    } else {
        QPrintDialog dialog(&printer, parent);
        if (dialog.exec() != QDialog::Accepted) return false;
    }
    return printPage(doc, prefs, printer);
}

void pageSetup(QPrinter& printer, QWidget* parent) {
    QPageSetupDialog dialog(&printer, parent);
    dialog.exec();
}

}  // namespace zolt

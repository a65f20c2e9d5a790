#include "plot/picture_output.h"

#include <QFile>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <algorithm>
#include <cctype>
#include <filesystem>

#include "model/display_record.h"
#include "plot/page_renderer.h"
#include "plot/png_encoding.h"

namespace zolt {

namespace {

std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool writeImage(const SpectrumDocument& doc, const QString& path, QSize size, const char* format,
                const RenderStyle& style) {
    QImage image(size, QImage::Format_RGB32);
    QPainter p(&image);
    renderPage(doc, p, size, style);
    p.end();
    if (std::string_view(format) != "PNG") return image.save(path, format);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(encodePng(image)) >= 0;
}

bool writePdf(const SpectrumDocument& doc, const QString& path, QSize size,
              const RenderStyle& style) {
    QPdfWriter writer(path);
    // One pixel of the page is one point of the PDF.
    writer.setResolution(72);
    writer.setPageSize(QPageSize(QSizeF(size), QPageSize::Point));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter p;
    if (!p.begin(&writer)) return false;
    renderPage(doc, p, size, style);
    return p.end();
}

bool writeSvg(const SpectrumDocument& doc, const QString& path, QSize size,
              const RenderStyle& style) {
    QSvgGenerator svg;
    svg.setFileName(path);
    svg.setSize(size);
    svg.setViewBox(QRect(QPoint(0, 0), size));
    svg.setTitle(QString::fromStdString(doc.windowName));
    QPainter p;
    if (!p.begin(&svg)) return false;
    renderPage(doc, p, size, style);
    return p.end();
}

}  // namespace

PictureFormat pictureFormat(std::string_view type, const std::string& path) {
    if (type == "PNGf") return PictureFormat::Png;
    if (type == "JPEG") return PictureFormat::Jpeg;
    if (type == "PDF ") return PictureFormat::Pdf;
    if (type == "SVG ") return PictureFormat::Svg;
    const std::string ext = lower(std::filesystem::path(path).extension().string());
    if (ext == ".png") return PictureFormat::Png;
    if (ext == ".jpg" || ext == ".jpeg") return PictureFormat::Jpeg;
    if (ext == ".pdf") return PictureFormat::Pdf;
    if (ext == ".svg") return PictureFormat::Svg;
    return PictureFormat::Unknown;
}

bool writePicture(const SpectrumDocument& doc, const std::string& path, std::string_view type,
                  QSize size, const RenderStyle& style) {
    if (size.isEmpty())
        size = QSize(doc.page.pageWidth ? doc.page.pageWidth : kDefaultClientWidth,
                     doc.page.pageHeight ? doc.page.pageHeight : kDefaultClientHeight);
    const QString file = QString::fromStdString(path);
    switch (pictureFormat(type, path)) {
        case PictureFormat::Png:
            return writeImage(doc, file, size, "PNG", style);
        case PictureFormat::Jpeg:
            return writeImage(doc, file, size, "JPEG", style);
        case PictureFormat::Pdf:
            return writePdf(doc, file, size, style);
        case PictureFormat::Svg:
            return writeSvg(doc, file, size, style);
        case PictureFormat::Unknown:
            return false;
    }
    return false;
}

}  // namespace zolt

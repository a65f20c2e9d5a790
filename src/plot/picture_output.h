// A picture of a document's page written to a file: PNG or JPEG as pixels, PDF and SVG as
// vector paths and text.
#pragma once

#include <QSize>
#include <string>
#include <string_view>

#include "model/spectrum_document.h"
#include "plot/page_renderer.h"

namespace zolt {

enum class PictureFormat { Png, Jpeg, Pdf, Svg, Unknown };

// The four-character type ("PNGf", "JPEG", "PDF ", "SVG "), else the path's extension.
PictureFormat pictureFormat(std::string_view type, const std::string& path);

// At the page's own size when `size` is empty. False when the format is unknown or the file
// cannot be written.
bool writePicture(const SpectrumDocument& doc, const std::string& path, std::string_view type,
                  QSize size = {}, const RenderStyle& style = {});

}  // namespace zolt

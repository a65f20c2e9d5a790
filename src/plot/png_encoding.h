// PNG files of drawn pages, written for speed: a page is mostly white, so rows go unfiltered
// through the fastest deflate level, which costs a few milliseconds where the general image
// writer's adaptive filtering takes tens. The colours are written as 8-bit RGB.
#pragma once

#include <QByteArray>
#include <QImage>

namespace zolt {

// Empty for a null image.
QByteArray encodePng(const QImage& image);

}  // namespace zolt

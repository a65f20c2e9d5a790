#include "plot/png_encoding.h"

#include <array>
#include <cstdint>

namespace zolt {

namespace {

// The CRC-32 of PNG chunks (polynomial 0xedb88320).
uint32_t crc32(const char* data, qsizetype n, uint32_t crc = 0) {
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xedb88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    crc = ~crc;
    for (qsizetype i = 0; i < n; ++i) crc = table[(crc ^ uint8_t(data[i])) & 0xff] ^ (crc >> 8);
    return ~crc;
}

void appendBigEndian(QByteArray& out, uint32_t v) {
    out.append(char(v >> 24)).append(char(v >> 16)).append(char(v >> 8)).append(char(v));
}

void appendChunk(QByteArray& out, const char* type, const QByteArray& data) {
    appendBigEndian(out, uint32_t(data.size()));
    const qsizetype start = out.size();
    out.append(type, 4).append(data);
    appendBigEndian(out, crc32(out.constData() + start, out.size() - start));
}

}  // namespace

QByteArray encodePng(const QImage& image) {
    if (image.isNull()) return {};
    const QImage rgb =
        image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32
            ? image
            : image.convertToFormat(QImage::Format_RGB32);
    const int w = rgb.width(), h = rgb.height();
    // Each row: filter type 0 (none), then red, green and blue of every pixel.
    QByteArray raw(qsizetype(h) * (1 + 3 * qsizetype(w)), Qt::Uninitialized);
    char* at = raw.data();
    for (int y = 0; y < h; ++y) {
        *at++ = 0;
        const auto* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            *at++ = char(qRed(line[x]));
            *at++ = char(qGreen(line[x]));
            *at++ = char(qBlue(line[x]));
        }
    }
    QByteArray header;
    appendBigEndian(header, uint32_t(w));
    appendBigEndian(header, uint32_t(h));
    header.append(char(8)).append(char(2)).append(char(0)).append(char(0)).append(char(0));
    // qCompress puts the length before a zlib stream: the stream is what IDAT holds.
    const QByteArray compressed = qCompress(raw, 1).mid(4);
    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    appendChunk(png, "IHDR", header);
    appendChunk(png, "IDAT", compressed);
    appendChunk(png, "IEND", {});
    return png;
}

}  // namespace zolt

// The renderer on real data: the trace keeps its tallest peak where it is and under its labels,
// contours close around picked cross peaks, projections rise where the plane does, the
// chessboard and the fast plot's palettes, and PNG, PDF and SVG pictures.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <queue>

#include "analysis/peak_picking_2d.h"
#include "display/vertical_scale.h"
#include "plot/axis_map.h"
#include "plot/chessboard.h"
#include "plot/map_plane.h"
#include "plot/map_projections.h"
#include "plot/marching_squares.h"
#include "plot/page_renderer.h"
#include "plot/palettes.h"
#include "plot/picture_output.h"
#include "plot/plot_pointer.h"
#include "plot/png_encoding.h"
#include "test_data.h"

namespace zolt {
namespace {

void ensureGui() {
    static int argc = 1;
    static char name[] = "test_plot";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static QGuiApplication app(argc, argv);
}

QImage render(const SpectrumDocument& doc, const RenderStyle& style = {}) {
    const QSize size(doc.page.pageWidth, doc.page.pageHeight);
    QImage image(size, QImage::Format_RGB32);
    QPainter p(&image);
    renderPage(doc, p, size, style);
    return image;
}

bool ink(const QImage& im, int x, int y) {
    return im.pixel(x, y) != qRgb(255, 255, 255);
}

TEST(Plot, TraceHighestPixelAtTallestPeak) {
    ensureGui();
    auto doc = testdata::openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    doc->windowName.clear();
    DisplayParameters& plot = doc->page.plots[0];
    plot.flags &= ~(display_flags::kLabels | display_flags::kFrequencies);
    const QImage im = render(*doc);
    const auto box = plot.box;
    int topX = -1;
    for (int y = int(box[1]); y < int(box[1] + box[3]) && topX < 0; ++y)
        for (int x = int(box[0]) + 1; x < int(box[0] + box[2]) - 1; ++x)
            if (ink(im, x, y)) {
                topX = x;
                break;
            }
    ASSERT_GE(topX, 0);
    const SpectrumMatrix& m = doc->matrix;
    const size_t n = m.dims[m.xIndex].points;
    const auto top = std::max_element(m.re.begin(), m.re.begin() + n) - m.re.begin();
    const SegmentMap s = mapAxis(plot.horizontal, box[0], box[0] + box[2], true).at(0);
    // The column the peak falls in, or its neighbour that the antialiased line touches.
    EXPECT_NEAR(topX, std::floor(s.pixel(ppmOfPoint(m.dims[m.xIndex], double(top)))), 1.0);
}

TEST(Plot, ContoursCloseAroundPickedHsqcPeaks) {
    ensureGui();
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    doc->windowName.clear();
    DisplayParameters& plot = doc->page.plots[0];
    plot.negativeLevels = 10;
    PeakPickingOptions options = loadPeakOptions(nullptr, plot.threshold * 8);
    const PickedPeaks picked = pickPeaks(doc->matrix, {doc->matrix.xIndex, doc->matrix.yIndex, 0},
                                         kWholeSpectrum, options);
    ASSERT_GE(picked.peaks.size(), 3u);
    const QImage im = render(*doc);
    const QRectF dataF = plotDataRect(plot);
    const QRect data = dataF.toRect();
    const SegmentMap sx = mapAxis(plot.horizontal, dataF.left(), dataF.right(), true).at(0);
    const SegmentMap sy = mapAxis(plot.vertical, dataF.top(), dataF.bottom(), false).at(0);
    for (size_t k = 0; k < std::min<size_t>(picked.peaks.size(), 6); ++k) {
        const QPoint start(int(sx.pixel(picked.peaks[k][0])), int(sy.pixel(picked.peaks[k][1])));
        SCOPED_TRACE(k);
        ASSERT_TRUE(data.adjusted(2, 2, -2, -2).contains(start));
        // A fill through the blank pixels from the peak stays inside a ring.
        std::vector<char> seen(size_t(im.width() * im.height()));
        std::queue<QPoint> todo;
        todo.push(start);
        size_t area = 0;
        bool escaped = false;
        while (!todo.empty() && !escaped) {
            const QPoint q = todo.front();
            todo.pop();
            if (!data.contains(q) || seen[q.y() * im.width() + q.x()] || ink(im, q.x(), q.y()))
                continue;
            seen[q.y() * im.width() + q.x()] = 1;
            escaped = ++area > 2000 || q.x() <= data.left() + 1 || q.y() <= data.top() + 1 ||
                      q.x() >= data.right() - 1 || q.y() >= data.bottom() - 1;
            for (QPoint d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
                todo.push(q + d);
        }
        EXPECT_FALSE(escaped);
    }
}

// The pointer reads a map through the renderer's own axes: picked peaks lie under their pixels
// with their intensity, and a drag across the whole data area spans the plot's limits.
TEST(Plot, PointerOnAMapFindsPeaksUnderTheirPixels) {
    ensureGui();
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    const QSize size(800, 600);
    const DrawnPlot drawn = *drawnMainPlot(*doc, size);
    const PlotFrame& f = drawn.frame;
    PeakPickingOptions options = loadPeakOptions(nullptr, drawn.plot.threshold * 8);
    const PickedPeaks picked = pickPeaks(doc->matrix, {doc->matrix.xIndex, doc->matrix.yIndex, 0},
                                         kWholeSpectrum, options);
    ASSERT_GE(picked.peaks.size(), 3u);
    const double xStep = std::fabs(f.x[0].ppm(1) - f.x[0].ppm(0));
    const double yStep = std::fabs(f.y[0].ppm(1) - f.y[0].ppm(0));
    for (size_t k = 0; k < 3; ++k) {
        const auto& peak = picked.peaks[k];
        const QPointF pixel(f.x[0].pixel(peak[0]), f.y[0].pixel(peak[1]));
        const std::optional<PlotPoint> p = pointAt(*doc, size, pixel);
        ASSERT_TRUE(p && p->value);
        EXPECT_EQ(p->fx, doc->matrix.xIndex);
        EXPECT_EQ(p->fy, doc->matrix.yIndex);
        EXPECT_NEAR(p->x, peak[0], xStep);
        EXPECT_NEAR(p->y, peak[1], yStep);
        EXPECT_GE(*p->value, drawn.plot.threshold);
        if (k == 0) {
            EXPECT_EQ(statusText(*doc, *p),
                      "f2 5.7415 ppm 2871.50 Hz  f1 130.4119 ppm 16401.46 Hz  intensity 780726");
        }
    }
    const std::optional<PlotSpan> span =
        spanBetween(*doc, size, f.data.bottomRight() + QPointF(9, 9), f.data.topLeft());
    ASSERT_TRUE(span && span->y);
    EXPECT_NEAR(span->x[0], drawn.plot.horizontal.ppm[0], 1e-4);
    EXPECT_NEAR(span->x[1], drawn.plot.horizontal.ppm[1], 1e-4);
    EXPECT_NEAR((*span->y)[0], drawn.plot.vertical.ppm[0], 1e-3);
    EXPECT_NEAR((*span->y)[1], drawn.plot.vertical.ppm[1], 1e-3);
    EXPECT_FALSE(pointAt(*doc, size, QPointF(-5, 10)));
}

TEST(Plot, PdfAndSvgHoldVectorPathsAndText) {
    ensureGui();
    auto doc = testdata::openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    doc->peaks.oneD = {2.0f, 7.0f};
    const std::string dir = testdata::freshTempDir("plot");
    doc->page.scaleUnit = ScaleUnit::Hz;
    ASSERT_TRUE(writePicture(*doc, dir + "/a.svg", "SVG "));
    const std::string svg = testdata::readFile(dir + "/a.svg");
    EXPECT_TRUE(svg.find("<path") != std::string::npos ||
                svg.find("<polyline") != std::string::npos);
    EXPECT_NE(svg.find("<text"), std::string::npos);
    EXPECT_EQ(svg.find("<image"), std::string::npos);
    // The scale in Hz: a label every 500 Hz, and the unit.
    EXPECT_NE(svg.find(">4000</text>"), std::string::npos);
    EXPECT_NE(svg.find(">Hz</text>"), std::string::npos);
    ASSERT_TRUE(writePicture(*doc, dir + "/a", "PDF "));
    const std::string pdf = testdata::readFile(dir + "/a");
    EXPECT_EQ(pdf.rfind("%PDF", 0), 0u);
    EXPECT_NE(pdf.find("/Font"), std::string::npos);
    EXPECT_EQ(pdf.find("/Subtype /Image"), std::string::npos);
    // The page's drawing: its compressed content streams hold moves, lines and strokes.
    std::string content;
    for (size_t at = pdf.find("stream\n"); at != std::string::npos;
         at = pdf.find("stream\n", at + 1)) {
        const size_t end = pdf.find("endstream", at);
        if (end == std::string::npos || pdf.compare(at - 3, 3, "end") == 0) continue;
        QByteArray packed(4, '\0');
        packed[1] = 0x40;  // a size hint of 4 MB, big-endian
        packed.append(pdf.data() + at + 7, qsizetype(end - at - 7));
        content += qUncompress(packed).toStdString();
    }
    EXPECT_NE(content.find(" m\n"), std::string::npos);
    EXPECT_NE(content.find(" l\n"), std::string::npos);
    EXPECT_NE(content.find("BT"), std::string::npos);
    EXPECT_FALSE(writePicture(*doc, dir + "/a.xyz", "????"));
    EXPECT_EQ(pictureFormat("", "x.JPG"), PictureFormat::Jpeg);
}

// Records from a damaged file draw what they can and nothing else.
TEST(Plot, DamagedRecordsNeverCrash) {
    ensureGui();
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    const float nan = std::nanf("");
    DisplayParameters plot = doc->page.plots[0];
    for (const auto& change : std::vector<std::function<void(DisplayParameters&)>>{
             [&](DisplayParameters& d) {
                 d.horizontal.ppm = {nan, 2.0f};
             },
             [&](DisplayParameters& d) {
                 d.box = {0, 0, 1e30f, 1e30f};
             },
             [&](DisplayParameters& d) { d.ratio = 1e30f, d.positiveLevels = 127; },
             [&](DisplayParameters& d) { d.flags |= uint32_t(PlotMode::Fast), d.threshold = 0; },
             [&](DisplayParameters& d) { d.hasVertical = false, d.vertical.ppm.clear(); }}) {
        doc->page.plots = {plot};
        change(doc->page.plots[0]);
        render(*doc);
    }
    doc->matrix = {};
    render(*doc);
}

// Diagonal corners above the level: the centre's average decides whether they join.
TEST(Plot, SaddleCellsFollowTheirCentre) {
    // Low corners 0 (centre 0.5) or 0.9 (centre 0.95), level 0.92.
    for (const auto& [low, joined] : {std::pair{0.0f, false}, std::pair{0.9f, true}}) {
        const float grid[] = {1.0f, low, low, 1.0f};
        const GridWindow g{grid, 2, 1, 0, 2, 0, 2};
        const auto lines = traceContours(g, {0.92f});
        ASSERT_EQ(lines[0].size(), 2u);
        // Apart, the first line cuts off the top-left corner; joined, the top-right one.
        const ContourSegment& s = lines[0][0];
        EXPECT_EQ(std::max(s.x0, s.x1) == 1.0f, joined) << low;
    }
}

// The tallest peak's label stands above the trace, with a gap between them, at the automatic
// scale and amplified beyond it.
TEST(Plot, TraceStaysUnderItsPeakLabels) {
    ensureGui();
    auto doc = testdata::openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    doc->windowName.clear();
    doc->metadata.title.clear();
    const SpectrumMatrix& m = doc->matrix;
    const size_t n = m.dims[m.xIndex].points;
    const auto top = std::max_element(m.re.begin(), m.re.begin() + n) - m.re.begin();
    doc->peaks.oneD = {float(ppmOfPoint(m.dims[m.xIndex], double(top)))};
    DisplayParameters& plot = doc->page.plots[0];
    plot.flags &= ~display_flags::kLabels;
    const SegmentMap s = mapAxis(plot.horizontal, plot.box[0], plot.box[0] + plot.box[2], true)[0];
    const int x = int(s.pixel(doc->peaks.oneD[0]));
    setAutomaticScale(plot, m);
    for (const double factor : {1.0, 10.0}) {
        amplify(plot, factor);
        const QImage im = render(*doc);
        // Down the column: the label's glyphs, a gap of white, then the trace's long run of ink.
        std::vector<std::pair<int, int>> runs;  // of ink, first and last row
        for (int y = int(plot.box[1]); y < int(plot.box[1] + plot.box[3]); ++y) {
            bool any = false;
            for (int dx = -1; dx <= 1; ++dx) any = any || ink(im, x + dx, y);
            if (!any) continue;
            if (runs.empty() || runs.back().second != y - 1) runs.push_back({y, y});
            runs.back().second = y;
        }
        const auto trace =
            std::find_if(runs.begin(), runs.end(), [](auto r) { return r.second - r.first > 30; });
        ASSERT_NE(trace, runs.end()) << factor;
        ASSERT_NE(trace, runs.begin()) << factor << ": no label";
        EXPECT_GE(trace->first - std::prev(trace)->second, 8) << factor;
    }
}

// Traced in the order of the plane's memory (its columns lie together) or row by row from a
// copy, the HSQC gives the very same lines.
TEST(Plot, TracingInMemoryOrderKeepsEveryLine) {
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    const auto plane = shownPlane(doc->matrix);
    ASSERT_TRUE(plane);
    GridWindow g = plane->grid;
    g.firstRow = 300, g.lastRow = 700, g.firstColumn = 100, g.lastColumn = 900;
    ASSERT_TRUE(g.columnsContiguous());
    std::vector<float> rows(plane->y->points * plane->x->points);
    for (size_t r = 0; r < plane->y->points; ++r)
        for (size_t c = 0; c < plane->x->points; ++c)
            rows[r * plane->x->points + c] = g.value(r, c);
    GridWindow copy = g;
    copy.data = rows.data(), copy.rowStride = plane->x->points, copy.columnStride = 1;
    const ContourLevels levels = contourLevels(doc->page.plots[0]);
    std::vector<float> all = levels.positive;
    all.push_back(-levels.positive[0]);
    const auto a = traceContours(g, all), b = traceContours(copy, all);
    const auto key = [](const std::vector<ContourSegment>& v) {
        std::vector<std::array<float, 4>> k;
        for (const ContourSegment& s : v)
            k.push_back(
                std::min(std::array{s.x0, s.y0, s.x1, s.y1}, std::array{s.x1, s.y1, s.x0, s.y0}));
        std::sort(k.begin(), k.end());
        return k;
    };
    size_t total = 0;
    for (size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(key(a[i]), key(b[i])) << i;
        total += a[i].size();
    }
    EXPECT_GT(total, 1000u);
}

// The horizontal projection is highest over the plane's tallest column, the vertical one
// furthest out beside its tallest row.
TEST(Plot, HsqcProjectionsRiseWhereThePlaneDoes) {
    ensureGui();
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    doc->windowName.clear();
    doc->metadata.title.clear();
    DisplayParameters& plot = doc->page.plots[0];
    plot.negativeLevels = 10;
    ASSERT_TRUE(showsProjections(plot));
    const auto plane = shownPlane(doc->matrix);
    // The largest magnitude over each column and each row, the plane's positive and negative
    // peaks both shown.
    std::vector<float> across(plane->x->points), down(plane->y->points);
    for (size_t r = 0; r < down.size(); ++r)
        for (size_t c = 0; c < across.size(); ++c) {
            const float v = std::fabs(plane->grid.value(r, c));
            across[c] = std::max(across[c], v), down[r] = std::max(down[r], v);
        }
    const auto tallest = [](const std::vector<float>& v) {
        return double(std::max_element(v.begin(), v.end()) - v.begin());
    };
    const QRectF data = plotDataRect(plot);
    const SegmentMap sx = mapAxis(plot.horizontal, data.left(), data.right(), true)[0];
    const SegmentMap sy = mapAxis(plot.vertical, data.top(), data.bottom(), false)[0];
    const QImage im = render(*doc);
    QPoint highest(-1, im.height()), furthest(-1, -1);
    for (int y = int(plot.box[1]); y < int(data.top()) - 3; ++y)
        for (int x = int(data.left()) + 1; x < int(data.right()); ++x)
            if (ink(im, x, y) && y < highest.y()) highest = {x, y};
    for (int x = int(data.right()) + 4; x < int(plot.box[0] + plot.box[2]); ++x)
        for (int y = int(data.top()) + 1; y < int(data.bottom()); ++y)
            if (ink(im, x, y) && x > furthest.x()) furthest = {x, y};
    EXPECT_NEAR(highest.x(), sx.pixel(ppmOfPoint(*plane->x, tallest(across))), 2.0);
    EXPECT_NEAR(furthest.y(), sy.pixel(ppmOfPoint(*plane->y, tallest(down))), 2.0);
    EXPECT_LT(highest.y(), int(plot.box[1]) + 6);  // the tallest reaches the top of its band
}

TEST(Plot, ChessboardAndFastPlotColourThePeaks) {
    const std::vector<float> up{1, 2, 4}, down{-1, -2};
    for (const auto& [v, reached] :
         {std::pair{0.5f, 0}, {1.0f, 1}, {3.0f, 2}, {100.0f, 3}, {-1.5f, 1}, {-5.0f, 2}, {NAN, 0}})
        EXPECT_EQ(levelsReached(v, up, down), reached) << v;
    for (int palette = 0; palette < kPaletteCount; ++palette) {
        EXPECT_EQ(paletteColour(palette, 0.0), qRgb(255, 255, 255));
        EXPECT_EQ(paletteColour(palette + kPaletteCount, 300.0), paletteColour(palette, 255.0));
        EXPECT_NE(paletteColour(palette, 255.0), paletteColour(palette, -255.0));
    }
    EXPECT_NE(paletteColour(1, 255.0), paletteColour(2, 255.0));

    ensureGui();
    auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    DisplayParameters& plot = doc->page.plots[0];
    const auto plane = shownPlane(doc->matrix);
    size_t row = 0, column = 0;
    for (size_t r = 0; r < plane->y->points; ++r)
        for (size_t c = 0; c < plane->x->points; ++c)
            if (plane->grid.value(r, c) > plane->grid.value(row, column)) row = r, column = c;
    const QRectF data = plotDataRect(plot);
    const QPoint peak(int(mapAxis(plot.horizontal, data.left(), data.right(), true)[0].pixel(
                          ppmOfPoint(*plane->x, double(column)))),
                      int(mapAxis(plot.vertical, data.top(), data.bottom(), false)[0].pixel(
                          ppmOfPoint(*plane->y, double(row)))));
    plot.flags = (plot.flags & ~display_flags::kPlotModeMask) | uint32_t(PlotMode::Mosaic);
    EXPECT_EQ(render(*doc).pixel(peak), pageColor(doc->page.color1).rgb());
    // The fast plot's tallest point lies far beyond the end of the scale.
    plot.flags = (plot.flags & ~display_flags::kPlotModeMask) | uint32_t(PlotMode::Fast);
    for (int palette : {1, 6})
        EXPECT_EQ(render(*doc, {palette}).pixel(peak), paletteColour(palette, 255.0)) << palette;
}

// A 3-D matrix shows the plane nearest zeta along its third axis, clamped to the axis.
TEST(Plot, ThreeDimensionsShowThePlaneAtZeta) {
    SpectrumMatrix m;
    m.dimensions = 3, m.xIndex = 3, m.yIndex = 2, m.zIndex = 1, m.contiguous = 3;
    for (int f = 1; f <= 3; ++f) {
        m.dims[size_t(f)].points = uint32_t(2 + f);
        m.dims[size_t(f)].spectralWidth = 10.0f;
        m.dims[size_t(f)].lowestPpm = 0.0f;
    }
    m.re.resize(m.pointCount());
    for (size_t i = 0; i < m.re.size(); ++i) m.re[i] = float(i);
    const DimensionRecord& z = m.dims[1];
    for (const auto& [zeta, plane] : {std::pair{float(ppmOfPoint(z, 1)), 1},
                                      {1e6f, 0},
                                      {-1e6f, 2},
                                      {float(ppmOfPoint(z, 1.6)), 2},
                                      {NAN, 0}}) {
        const auto pl = shownPlane(m, zeta);
        ASSERT_TRUE(pl);
        EXPECT_EQ(pl->grid.value(1, 2), float(plane * 20 + 1 * 5 + 2)) << zeta;
    }
}

// The face the page names is asked for, a missing one drawn in an installed sans-serif face.
TEST(Plot, PageFontNamesThePagesFaceAndFallsBack) {
    ensureGui();
    PageRecord page;
    page.fontName = "No Such Face 4711";
    page.fontSize = 9;
    const QFont font = pageFont(page);
    EXPECT_EQ(font.family(), "No Such Face 4711");
    EXPECT_EQ(font.pixelSize(), 11);
    EXPECT_FALSE(QFontInfo(font).family().isEmpty());
    EXPECT_GT(QFontMetricsF(font).horizontalAdvance("7.26"), 10.0);
    page.fontName.clear();
    EXPECT_EQ(pageFont(page).family(), "Verdana");
}

// The PNG written holds exactly the pixels drawn.
TEST(Plot, PngHoldsThePixelsDrawn) {
    ensureGui();
    auto doc = testdata::openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    const QImage drawn = render(*doc);
    const QImage read = QImage::fromData(encodePng(drawn), "PNG");
    ASSERT_EQ(read.size(), drawn.size());
    EXPECT_EQ(read.convertToFormat(QImage::Format_RGB32), drawn);
    EXPECT_TRUE(encodePng(QImage()).isEmpty());
}

}  // namespace
}  // namespace zolt

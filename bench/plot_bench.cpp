// Drawing speed: a 64K-point proton trace reduced to 1600 pixel columns and drawn on its page,
// and the cyclosporin HSQC transformed to 2048 x 1024 points drawn with 16 contour levels and
// its projections into a 1600 x 1200 PNG (with the tracing and the drawing alone beside it).
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdlib>
#include <memory>

#include "display/vertical_scale.h"
#include "plot/map_plane.h"
#include "plot/marching_squares.h"
#include "plot/page_renderer.h"
#include "plot/png_encoding.h"
#include "plot/trace_columns.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace {

void ensureGui() {
    static int argc = 1;
    static char name[] = "plot_bench";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static QGuiApplication app(argc, argv);
}

// The page drawn into a fresh image, as a window or a picture file gets it.
QImage drawnPage(const zolt::SpectrumDocument& doc, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    {
        QPainter p(&image);
        zolt::renderPage(doc, p, size);
    }
    return image;
}

void BM_TraceColumns64K(benchmark::State& state) {
    auto doc = zolt::testdata::openExperiment("aspirin-1h");
    if (!doc) return state.SkipWithError("aspirin-1h could not be read");
    zolt::findFourierTransformStep(doc->processing, 1)->ftSize = 65536;
    if (!zolt::testdata::transformAll(*doc)) return state.SkipWithError("no transform");
    const size_t n = doc->matrix.dims[doc->matrix.xIndex].points;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            zolt::columnExtremes(doc->matrix.re.data(), n, -0.5, double(n) / 1600, 1600));
    state.counters["points"] = double(n);
}
BENCHMARK(BM_TraceColumns64K)->Unit(benchmark::kMillisecond);

// The whole 1-D page at 1600 pixels wide: scale, trace, zero line and frame.
void BM_Trace64KDrawing(benchmark::State& state) {
    ensureGui();
    auto doc = zolt::testdata::openExperiment("aspirin-1h");
    if (!doc) return state.SkipWithError("aspirin-1h could not be read");
    zolt::findFourierTransformStep(doc->processing, 1)->ftSize = 65536;
    if (!zolt::testdata::transformAll(*doc)) return state.SkipWithError("no transform");
    const QSize size(1600, 900);
    for (auto _ : state) {
        benchmark::DoNotOptimize(drawnPage(*doc, size));
    }
}
BENCHMARK(BM_Trace64KDrawing)->Unit(benchmark::kMillisecond);

// The HSQC at 2048 x 1024 points with 8 positive and 8 negative levels, read and transformed
// once for every benchmark that draws it.
zolt::SpectrumDocument* hsqc() {
    static std::unique_ptr<zolt::SpectrumDocument> doc = [] {
        auto d = zolt::testdata::openExperiment("cyclosporin-hsqc");
        if (!d) return d;
        zolt::findFourierTransformStep(d->processing, 2)->ftSize = 2048;
        zolt::findFourierTransformStep(d->processing, 1)->ftSize = 1024;
        if (!zolt::testdata::transformAll(*d)) return decltype(d){};
        d->page.plots[0].positiveLevels = 8;
        d->page.plots[0].negativeLevels = 8;
        return d;
    }();
    return doc.get();
}

// The share of the marching squares in the picture.
void BM_HsqcContourTracing(benchmark::State& state) {
    zolt::SpectrumDocument* doc = hsqc();
    if (!doc) return state.SkipWithError("cyclosporin-hsqc could not be transformed");
    const auto plane = zolt::shownPlane(doc->matrix);
    zolt::GridWindow g = plane->grid;
    g.lastRow = plane->y->points;
    g.lastColumn = plane->x->points;
    const zolt::ContourLevels levels = zolt::contourLevels(doc->page.plots[0]);
    std::vector<float> all = levels.positive;
    all.insert(all.end(), levels.negative.begin(), levels.negative.end());
    state.counters["columnStride"] = double(g.columnStride);
    state.counters["rows"] = double(g.lastRow);
    for (auto _ : state) benchmark::DoNotOptimize(zolt::traceContours(g, all));
}
BENCHMARK(BM_HsqcContourTracing)->Unit(benchmark::kMillisecond);

// The page drawn without encoding it.
void BM_HsqcContoursDrawing(benchmark::State& state) {
    ensureGui();
    zolt::SpectrumDocument* doc = hsqc();
    if (!doc) return state.SkipWithError("cyclosporin-hsqc could not be transformed");
    const QSize size(1600, 1200);
    for (auto _ : state) {
        benchmark::DoNotOptimize(drawnPage(*doc, size));
    }
}
BENCHMARK(BM_HsqcContoursDrawing)->Unit(benchmark::kMillisecond);

void BM_HsqcContoursPng(benchmark::State& state) {
    ensureGui();
    zolt::SpectrumDocument* doc = hsqc();
    if (!doc) return state.SkipWithError("cyclosporin-hsqc could not be transformed");
    const QSize size(1600, 1200);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zolt::encodePng(drawnPage(*doc, size)).size());
    }
    state.counters["points"] = double(doc->matrix.re.size());
}
BENCHMARK(BM_HsqcContoursPng)->Unit(benchmark::kMillisecond);

}  // namespace

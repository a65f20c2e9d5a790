// Drawing speed: a 64K-point proton trace reduced to 1600 pixel columns, and the cyclosporin
// HSQC transformed to 2048 x 1024 points drawn with 16 contour levels into a 1600 x 1200 PNG.
#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdlib>

#include "plot/page_renderer.h"
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

void BM_HsqcContoursPng(benchmark::State& state) {
    ensureGui();
    auto doc = zolt::testdata::openExperiment("cyclosporin-hsqc");
    if (!doc) return state.SkipWithError("cyclosporin-hsqc could not be read");
    zolt::findFourierTransformStep(doc->processing, 2)->ftSize = 2048;
    zolt::findFourierTransformStep(doc->processing, 1)->ftSize = 1024;
    if (!zolt::testdata::transformAll(*doc)) return state.SkipWithError("no transform");
    doc->page.plots[0].positiveLevels = 8;
    doc->page.plots[0].negativeLevels = 8;
    const QSize size(1600, 1200);
    for (auto _ : state) {
        QImage image(size, QImage::Format_RGB32);
        QPainter p(&image);
        zolt::renderPage(*doc, p, size);
        p.end();
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        image.save(&png, "PNG");
        benchmark::DoNotOptimize(png.size());
    }
    state.counters["points"] = double(doc->matrix.re.size());
}
BENCHMARK(BM_HsqcContoursPng)->Unit(benchmark::kMillisecond);

}  // namespace

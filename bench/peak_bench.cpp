// Peak picking as ups() runs it: a 1-D proton spectrum picked at the plot's threshold, and the
// 2-D scan of a whole 2048 x 1024 map.
//
// The picker reads the stand-in main plot of a default window. The 2-D map is synthetic (noise
// and 150 Gaussian cross peaks, fixed seed) so that its size is exactly the one named.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>

#include "analysis/peak_picking_2d.h"
#include "operations/baseline_operations.h"
#include "operations/peak_operations.h"
#include "operations/phase_operations.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace {

// The aspirin FID filled to 64K points, transformed, phased and baseline-corrected as the
// start-up script does it, outside the timing.
void BM_Ups1D(benchmark::State& state) {
    auto doc = zolt::testdata::openExperiment("aspirin-1h");
    if (!doc) return state.SkipWithError("aspirin-1h could not be read");
    zolt::findFourierTransformStep(doc->processing, 1)->ftSize = 65536;
    if (!zolt::testdata::transformAll(*doc)) return state.SkipWithError("no transform");
    zolt::automaticPhase(*doc, false);
    zolt::automaticBaseline(*doc);
    const zolt::PeakPickingOptions options = zolt::loadPeakOptions(nullptr, 1.0f);
    for (auto _ : state) {
        doc->peaks.oneD.clear();
        benchmark::DoNotOptimize(zolt::pickAllPeaks(*doc, options, 4));
    }
    state.counters["points"] = static_cast<double>(doc->matrix.dims[1].points);
    state.counters["peaks"] = static_cast<double>(doc->peaks.oneD.size());
}
BENCHMARK(BM_Ups1D)->Unit(benchmark::kMillisecond);

zolt::SpectrumMatrix syntheticMap(uint32_t columns, uint32_t rows) {
    zolt::SpectrumMatrix m;
    m.contiguous = 2;
    m.dims[1].points = rows, m.dims[1].spectralWidth = 160.0f, m.dims[1].carrier = 100.0f;
    m.dims[2].points = columns, m.dims[2].spectralWidth = 10.0f, m.dims[2].carrier = 400.0f;
    m.re.resize(size_t(columns) * rows);
    uint32_t seed = 12345;
    const auto next = [&] { return (seed = seed * 1664525u + 1013904223u) >> 8; };
    for (float& v : m.re) v = static_cast<float>(next() % 2001) - 1000.0f;
    for (int k = 0; k < 150; ++k) {
        const double cx = next() % columns, cy = next() % rows;
        for (int dy = -6; dy <= 6; ++dy)
            for (int dx = -12; dx <= 12; ++dx) {
                const double x = cx + dx, y = cy + dy;
                if (x < 0 || y < 0 || x >= columns || y >= rows) continue;
                m.re[size_t(y) * columns + size_t(x)] +=
                    float(1e6 * std::exp(-dx * dx / 18.0 - dy * dy / 4.0));
            }
    }
    return m;
}

void BM_Pick2D(benchmark::State& state) {
    const zolt::SpectrumMatrix m = syntheticMap(2048, 1024);
    zolt::PeakPickingOptions options = zolt::loadPeakOptions(nullptr, 20000.0f);
    size_t found = 0;
    for (auto _ : state) {
        const auto r = zolt::pickPeaks(m, zolt::PeakAxes{2, 1, 0}, zolt::kWholeSpectrum, options);
        found = r.peaks.size();
        benchmark::DoNotOptimize(r);
    }
    state.counters["peaks"] = static_cast<double>(found);
}
BENCHMARK(BM_Pick2D)->Unit(benchmark::kMillisecond);

}  // namespace

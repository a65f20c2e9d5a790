// Automatic phase correction: 1-D on the aspirin 1H spectrum, 2-D on two HSQC planes.
//
// The spectrum is built once, outside the timing, by the transform pipeline with the data set's
// default step (the spectrometer's window and size, as `wft()` transforms it). The timed call is
// the whole estimate, its set-up included (moduli, blocks, region minima), as `aph` runs it.
#include <benchmark/benchmark.h>

#include <optional>

#include "processing/auto_phase.h"
#include "test_data.h"

namespace {

std::optional<zolt::SpectrumMatrix> aspirinSpectrum() {
    auto doc = zolt::testdata::openTransformed("aspirin-1h");
    if (!doc || doc->matrix.im.empty()) return std::nullopt;
    return std::move(doc->matrix);
}

void BM_AutoPhaseAspirin(benchmark::State& state) {
    const auto m = aspirinSpectrum();
    if (!m) {
        state.SkipWithError("aspirin-1h could not be read");
        return;
    }
    const size_t n = m->dims[1].points;
    zolt::AutoPhaseResult r;
    for (auto _ : state) {
        r = zolt::estimatePhase(m->re.data(), m->im.data(), n);
        benchmark::DoNotOptimize(r);
    }
    state.counters["points"] = static_cast<double>(n);
    state.counters["evaluations"] = r.evaluations;
    state.counters["iterations"] = r.iterations;
}
BENCHMARK(BM_AutoPhaseAspirin)->Unit(benchmark::kMillisecond);

void BM_AutoPhaseAspirinAlternative(benchmark::State& state) {
    const auto m = aspirinSpectrum();
    if (!m) {
        state.SkipWithError("aspirin-1h could not be read");
        return;
    }
    const size_t n = m->dims[1].points;
    for (auto _ : state) {
        auto r = zolt::estimatePhase(m->re.data(), m->im.data(), n, {}, true);
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_AutoPhaseAspirinAlternative)->Unit(benchmark::kMillisecond);

// The whole 2-D correction as `aph` runs it after two transforms: the search for the strongest
// cross peaks over the plane, the estimates and the phase applied to every point. Each round
// starts again from the unphased plane, copied outside the timing.
void BM_AutoPhase2D(benchmark::State& state, const char* name) {
    auto doc = zolt::testdata::openTransformed(name);
    if (!doc || doc->matrix.im.empty()) {
        state.SkipWithError("the data set could not be read and transformed");
        return;
    }
    const zolt::SpectrumMatrix unphased = doc->matrix;
    zolt::SpectrumMatrix m = unphased;
    for (auto _ : state) {
        state.PauseTiming();
        m.re = unphased.re;
        m.im = unphased.im;
        m.dims = unphased.dims;
        m.state = unphased.state;
        state.ResumeTiming();
        benchmark::DoNotOptimize(zolt::autoPhase2D(m, 0));
    }
    state.counters["points"] = static_cast<double>(m.pointCount());
}
BENCHMARK_CAPTURE(BM_AutoPhase2D, cyclosporin_hsqc, "cyclosporin-hsqc")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_AutoPhase2D, hsqc_nus, "hsqc-nus")->Unit(benchmark::kMillisecond);

}  // namespace

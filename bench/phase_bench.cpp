// Automatic 1-D phase correction on the aspirin 1H spectrum.
//
// The spectrum is built once, outside the timing: the FID is read and loaded, every second
// point negated (the quadrature shift), zero-filled to twice its size, transformed by the own
// FFT and given the stored phase with the digital-filter compensation, as the transform
// pipeline leaves it. The timed call is the whole estimate, its set-up included (moduli,
// blocks, region minima), as `aph` runs it.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <optional>

#include "io/bruker_reader.h"
#include "io/raw_loader.h"
#include "processing/auto_phase.h"
#include "processing/fft.h"
#include "processing/phase.h"
#include "test_data.h"

namespace {

std::optional<zolt::SpectrumMatrix> aspirinSpectrum() {
    const auto read = zolt::readBrukerFolder(zolt::testdata::bruker("aspirin-1h"));
    if (!read) return std::nullopt;
    auto m = zolt::loadMatrix(read->source);
    if (!m || m->im.empty()) return std::nullopt;
    const size_t n = m->dims[1].points;
    size_t size = 32;
    while (size < 2 * n) size *= 2;
    for (size_t k = 1; k < n; k += 2) {
        m->re[k] = -m->re[k];
        m->im[k] = -m->im[k];
    }
    m->re.resize(size, 0.0f);
    m->im.resize(size, 0.0f);
    m->dims[1].points = static_cast<uint32_t>(size);
    zolt::fft(m->re.data(), m->im.data(), size, 1);
    const double phase1 =
        m->dims[1].phase1 + 2.0 * std::numbers::pi * static_cast<double>(m->dims[1].timeShift);
    zolt::applyPhase(*m, 1, m->dims[1].phase0, phase1);
    return m;
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

}  // namespace

BENCHMARK_MAIN();

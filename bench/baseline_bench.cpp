// Automatic polynomial baseline, as the start-up script's poly(7, 64) runs it on every new 1-D
// proton spectrum: the autosampling and the fit with its refits; and the automatic baseplane
// of abc() on the 2-D sets (order 3, moving average 8, both axes).
//
// The spectra are transformed once, outside the timing, with the data sets' default steps (the
// spectrometer's window, size and phase). Each iteration corrects a fresh copy; the copy is not
// timed.
#include <benchmark/benchmark.h>

#include <string>

#include "processing/baseline.h"
#include "test_data.h"

namespace {

void BM_PolynomialBaseline(benchmark::State& state, const std::string& name) {
    const auto doc = zolt::testdata::openTransformed(name);
    if (!doc) {
        state.SkipWithError((name + " could not be read").c_str());
        return;
    }
    const zolt::BaseplaneStep settings{.function = 1, .order = 7, .movingAverage = 64};
    for (auto _ : state) {
        state.PauseTiming();
        zolt::SpectrumMatrix m = doc->matrix;
        state.ResumeTiming();
        benchmark::DoNotOptimize(zolt::correctBaseline(m, 1, settings));
    }
    state.counters["points"] = static_cast<double>(doc->matrix.dims[1].points);
}
BENCHMARK_CAPTURE(BM_PolynomialBaseline, aspirin, std::string("aspirin-1h"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PolynomialBaseline, naphthoic_acid, std::string("naphtoicAcid-1h"))
    ->Unit(benchmark::kMillisecond);

void BM_AutomaticBaseplane(benchmark::State& state, const std::string& name) {
    const auto doc = zolt::testdata::openTransformed(name);
    if (!doc) {
        state.SkipWithError((name + " could not be read").c_str());
        return;
    }
    const zolt::BaseplaneStep settings{.function = 1, .order = 3, .movingAverage = 8};
    for (auto _ : state) {
        state.PauseTiming();
        zolt::SpectrumDocument d = *doc;
        state.ResumeTiming();
        benchmark::DoNotOptimize(zolt::correctBaseplane(d, settings));
    }
}
BENCHMARK_CAPTURE(BM_AutomaticBaseplane, cyclosporin_hsqc, std::string("cyclosporin-hsqc"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_AutomaticBaseplane, hsqc_nus, std::string("hsqc-nus"))
    ->Unit(benchmark::kMillisecond);

}  // namespace

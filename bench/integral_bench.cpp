// The automatic cut as acut() runs it after the start-up script: the signal detector, the two
// filters, the enlargement and the integrals of the regions, on a 64K-point proton spectrum
// (the spectrometer's own processed aspirin). Goal: under 2 ms.
#include <benchmark/benchmark.h>

#include <string>

#include "app/document_opening.h"
#include "operations/integral_operations.h"
#include "test_data.h"

namespace {

void BM_AutomaticCut(benchmark::State& state, const std::string& name) {
    zolt::Preferences prefs;
    prefs.flags |= zolt::pref_flags::kReadProcessedData;
    zolt::Message failure;
    const auto doc = zolt::readDocument(zolt::testdata::bruker(name), prefs, failure);
    if (!doc) {
        state.SkipWithError((name + " could not be read").c_str());
        return;
    }
    zolt::SpectrumDocument d = *doc;
    for (auto _ : state) benchmark::DoNotOptimize(zolt::automaticIntegration(d, {}));
    state.counters["points"] = static_cast<double>(d.matrix.dims[1].points);
    state.counters["regions"] = static_cast<double>(d.integrals.size());
}
BENCHMARK_CAPTURE(BM_AutomaticCut, aspirin, std::string("aspirin-1h-processed"))
    ->Unit(benchmark::kMillisecond);

}  // namespace

// The automatic cut as acut() runs it after the start-up script: the signal detector, the two
// filters, the enlargement and the integrals of the regions, on a 64K-point proton spectrum
// (aspirin zero-filled to 65,536 points, transformed and phased once, outside the timing).
// Goal: under 2 ms.
#include <benchmark/benchmark.h>

#include <string>

#include "operations/integral_operations.h"
#include "operations/phase_operations.h"
#include "operations/transform_operations.h"
#include "test_data.h"

namespace {

void BM_AutomaticCut(benchmark::State& state, const std::string& name) {
    const auto doc = zolt::testdata::openExperiment(name);
    if (!doc) {
        state.SkipWithError((name + " could not be read").c_str());
        return;
    }
    zolt::setFillSize(*doc, 65536, false);
    zolt::weightAndTransform(*doc, {});
    zolt::automaticPhase(*doc, false);
    for (auto _ : state) benchmark::DoNotOptimize(zolt::automaticIntegration(*doc, {}));
    state.counters["points"] = static_cast<double>(doc->matrix.dims[1].points);
    state.counters["regions"] = static_cast<double>(doc->integrals.size());
}
BENCHMARK_CAPTURE(BM_AutomaticCut, aspirin, std::string("aspirin-1h"))
    ->Unit(benchmark::kMillisecond);

}  // namespace

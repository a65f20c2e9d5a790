// The whole transform of real data, file reading excluded: the aspirin FID (fill 32768,
// exponential weighting) and the cyclosporin HSQC along both dimensions, each opened as the
// program opens it (the spectrometer's windows on the HSQC).
#include <benchmark/benchmark.h>

#include "processing/ft_pipeline.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

void runTransforms(benchmark::State& state, const SpectrumDocument& fid) {
    for (auto _ : state) {
        state.PauseTiming();
        SpectrumDocument doc = fid;
        state.ResumeTiming();
        testdata::transformAll(doc);
        benchmark::DoNotOptimize(doc.matrix.re.data());
    }
}

void BM_AspirinFid(benchmark::State& state) {
    auto fid = testdata::openExperiment("aspirin-1h");
    if (!fid) return state.SkipWithError("aspirin-1h not readable");
    auto* step = findFourierTransformStep(fid->processing, 1);
    step->ftSize = 32768;
    step->flags |= ft_flags::kApplyWeights | ft_flags::kExponential;
    step->weights[kWeightExponential] = 0.3f;
    runTransforms(state, *fid);
}
BENCHMARK(BM_AspirinFid)->Unit(benchmark::kMicrosecond);

void BM_CyclosporinHsqcBothDimensions(benchmark::State& state) {
    auto fid = testdata::openExperiment("cyclosporin-hsqc");
    if (!fid) return state.SkipWithError("cyclosporin-hsqc not readable");
    findFourierTransformStep(fid->processing, 2)->ftSize = 1024;
    findFourierTransformStep(fid->processing, 1)->ftSize = 512;
    runTransforms(state, *fid);
}
BENCHMARK(BM_CyclosporinHsqcBothDimensions)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolt

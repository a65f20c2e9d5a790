// The work the NumPy peer (bench/peer_numpy.py) does, point for point, so that the two can be
// timed side by side: the aspirin FID of 8K complex points filled to 16K with exponential
// weighting, transformed and phased; the cyclosporin HSQC transformed along both dimensions to
// 2048 x 1024. File reading is excluded on both sides.
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

void BM_PeerWorkAspirin16K(benchmark::State& state) {
    auto fid = testdata::openExperiment("aspirin-1h");
    if (!fid) return state.SkipWithError("aspirin-1h not readable");
    auto* step = findFourierTransformStep(fid->processing, 1);
    step->ftSize = 16384;
    step->flags |= ft_flags::kApplyWeights | ft_flags::kExponential;
    step->weights[kWeightExponential] = 0.3f;
    runTransforms(state, *fid);
}
BENCHMARK(BM_PeerWorkAspirin16K)->Unit(benchmark::kMicrosecond);

void BM_PeerWorkHsqc2048x1024(benchmark::State& state) {
    auto fid = testdata::openExperiment("cyclosporin-hsqc");
    if (!fid) return state.SkipWithError("cyclosporin-hsqc not readable");
    findFourierTransformStep(fid->processing, 2)->ftSize = 2048;
    findFourierTransformStep(fid->processing, 1)->ftSize = 1024;
    runTransforms(state, *fid);
}
BENCHMARK(BM_PeerWorkHsqc2048x1024)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolt

// The whole transform of real data, file reading excluded, each set opened as the program
// opens it (the spectrometer's windows on the HSQC). Two sizes each: the program's own (the
// aspirin filled to 32768 with exponential weighting, the HSQC to 1024 x 512), and exactly the
// work of the NumPy peer (bench/peer_numpy.py: aspirin to 16K, HSQC to 2048 x 1024), so that
// the two can be timed side by side.
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

// Argument: the FT size.
void BM_AspirinFid(benchmark::State& state) {
    auto fid = testdata::openExperiment("aspirin-1h");
    if (!fid) return state.SkipWithError("aspirin-1h not readable");
    auto* step = findFourierTransformStep(fid->processing, 1);
    step->ftSize = static_cast<uint32_t>(state.range(0));
    step->flags |= ft_flags::kApplyWeights | ft_flags::kExponential;
    step->weights[kWeightExponential] = 0.3f;
    runTransforms(state, *fid);
}
BENCHMARK(BM_AspirinFid)->Arg(32768)->Arg(16384)->Unit(benchmark::kMicrosecond);

// Arguments: the FT sizes along f2 and f1.
void BM_CyclosporinHsqcBothDimensions(benchmark::State& state) {
    auto fid = testdata::openExperiment("cyclosporin-hsqc");
    if (!fid) return state.SkipWithError("cyclosporin-hsqc not readable");
    findFourierTransformStep(fid->processing, 2)->ftSize = static_cast<uint32_t>(state.range(0));
    findFourierTransformStep(fid->processing, 1)->ftSize = static_cast<uint32_t>(state.range(1));
    runTransforms(state, *fid);
}
BENCHMARK(BM_CyclosporinHsqcBothDimensions)
    ->Args({1024, 512})
    ->Args({2048, 1024})
    ->Unit(benchmark::kMillisecond);

// The HMBC as the program processes it: both dimensions, ending in the magnitude.
void BM_CyclosporinHmbcBothDimensions(benchmark::State& state) {
    auto fid = testdata::openExperiment("cyclosporin-hmbc");
    if (!fid) return state.SkipWithError("cyclosporin-hmbc not readable");
    runTransforms(state, *fid);
}
BENCHMARK(BM_CyclosporinHmbcBothDimensions)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolt

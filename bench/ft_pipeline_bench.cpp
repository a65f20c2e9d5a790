// The whole transform of real data, file reading excluded: the aspirin FID (fill 32768,
// exponential weighting) and the cyclosporin HSQC along both dimensions.
#include <benchmark/benchmark.h>

#include <optional>
#include <string>

#include "io/bruker_reader.h"
#include "io/raw_loader.h"
#include "processing/ft_defaults.h"
#include "processing/ft_pipeline.h"
#include "test_data.h"

namespace zolt {
namespace {

std::optional<SpectrumDocument> openFid(const std::string& name) {
    auto read = readBrukerFolder(testdata::bruker(name));
    if (!read) return std::nullopt;
    auto matrix = loadMatrix(read->source);
    if (!matrix) return std::nullopt;
    SpectrumDocument doc;
    doc.source = read->source;
    doc.matrix = std::move(*matrix);
    addDefaultFourierTransformSteps(doc);
    return doc;
}

void runTransforms(benchmark::State& state, const SpectrumDocument& fid) {
    for (auto _ : state) {
        state.PauseTiming();
        SpectrumDocument doc = fid;
        state.ResumeTiming();
        while (doc.source.highestTIndex > 0)
            if (transformNextDimension(doc).outcome != FtOutcome::Transformed) break;
        benchmark::DoNotOptimize(doc.matrix.re.data());
    }
}

void BM_AspirinFid(benchmark::State& state) {
    auto fid = openFid("aspirin-1h");
    if (!fid) return state.SkipWithError("aspirin-1h not readable");
    auto* step = findFourierTransformStep(fid->processing, 1);
    step->ftSize = 32768;
    step->flags |= ft_flags::kApplyWeights | ft_flags::kExponential;
    step->weights[kWeightExponential] = 0.3f;
    runTransforms(state, *fid);
}
BENCHMARK(BM_AspirinFid)->Unit(benchmark::kMicrosecond);

void BM_CyclosporinHsqcBothDimensions(benchmark::State& state) {
    auto fid = openFid("cyclosporin-hsqc");
    if (!fid) return state.SkipWithError("cyclosporin-hsqc not readable");
    findFourierTransformStep(fid->processing, 2)->ftSize = 1024;
    findFourierTransformStep(fid->processing, 1)->ftSize = 512;
    runTransforms(state, *fid);
}
BENCHMARK(BM_CyclosporinHsqcBothDimensions)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolt

BENCHMARK_MAIN();

// The polar toggle on the transformed cyclosporin HMBC plane (the magnitude its processing
// ends with), against the loop it replaced: the C library's double sqrt and atan2 per point.
// Both give the same floats.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "processing/polar.h"
#include "test_data.h"

namespace zolt {
namespace {

const SpectrumMatrix* hmbcPlane() {
    static const auto doc = testdata::openTransformed("cyclosporin-hmbc");
    return doc ? &doc->matrix : nullptr;
}

template <typename Toggle>
void timeToggle(benchmark::State& state, Toggle toggle) {
    const SpectrumMatrix* m = hmbcPlane();
    if (!m) return state.SkipWithError("cyclosporin-hmbc not transformed");
    std::vector<float> re, im;
    for (auto _ : state) {
        state.PauseTiming();
        re = m->re, im = m->im;
        state.ResumeTiming();
        toggle(re.data(), im.data(), re.size());
        benchmark::DoNotOptimize(im.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(m->re.size()));
}

void BM_TogglePolarHmbc(benchmark::State& state) {
    timeToggle(state, [](float* re, float* im, size_t n) { togglePolar(re, im, n, true); });
}
BENCHMARK(BM_TogglePolarHmbc)->Unit(benchmark::kMillisecond);

void BM_LibraryAtan2PerPointHmbc(benchmark::State& state) {
    timeToggle(state, [](float* re, float* im, size_t n) {
        for (size_t k = 0; k < n; ++k) {
            const double a = re[k], b = im[k];
            re[k] = static_cast<float>(std::sqrt(a * a + b * b));
            im[k] = static_cast<float>(std::atan2(b, a));
        }
    });
}
BENCHMARK(BM_LibraryAtan2PerPointHmbc)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolt

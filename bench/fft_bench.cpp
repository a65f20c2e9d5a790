// The own complex FFT against FFTW single precision on the same split layout.
//
// Both transform in place with the e^{-2 pi i mk/n} kernel (our direction -1, FFTW_FORWARD),
// on separate real and imaginary arrays: FFTW through fftwf_plan_guru_split_dft, planned with
// FFTW_MEASURE before timing starts. An unnormalised transform grows the data by about sqrt(n)
// per call, so every few calls the arrays are refilled with the timer paused.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "processing/fft.h"

namespace {

constexpr int kCallsPerRefill = 4;

struct SplitBuffers {
    explicit SplitBuffers(size_t n)
        : n(n),
          re(static_cast<float*>(fftwf_malloc(n * sizeof(float)))),
          im(static_cast<float*>(fftwf_malloc(n * sizeof(float)))) {
        std::mt19937 rng{12345};
        std::uniform_real_distribution<float> u(-1.0f, 1.0f);
        pristineRe.resize(n);
        pristineIm.resize(n);
        for (size_t k = 0; k < n; ++k) {
            pristineRe[k] = u(rng);
            pristineIm[k] = u(rng);
        }
        refill();
    }
    ~SplitBuffers() {
        fftwf_free(re);
        fftwf_free(im);
    }
    SplitBuffers(const SplitBuffers&) = delete;
    SplitBuffers& operator=(const SplitBuffers&) = delete;

    void refill() {
        std::copy(pristineRe.begin(), pristineRe.end(), re);
        std::copy(pristineIm.begin(), pristineIm.end(), im);
    }

    size_t n;
    float* re;
    float* im;
    std::vector<float> pristineRe, pristineIm;
};

template <typename Transform>
void timeTransform(benchmark::State& state, SplitBuffers& data, Transform transform) {
    int calls = 0;
    for (auto _ : state) {
        transform();
        benchmark::DoNotOptimize(data.re);
        benchmark::DoNotOptimize(data.im);
        benchmark::ClobberMemory();
        if (++calls == kCallsPerRefill) {
            state.PauseTiming();
            data.refill();
            calls = 0;
            state.ResumeTiming();
        }
    }
    const double n = static_cast<double>(data.n);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(data.n));
    // The customary 5 n log2 n flop count of a complex transform.
    state.counters["MFlops"] = benchmark::Counter(5.0 * n * std::log2(n) * 1e-6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void ownFft(benchmark::State& state) {
    SplitBuffers data(static_cast<size_t>(state.range(0)));
    timeTransform(state, data, [&] { zolt::fft(data.re, data.im, data.n, -1); });
}

void fftwSplit(benchmark::State& state) {
    SplitBuffers data(static_cast<size_t>(state.range(0)));
    fftwf_iodim dim{static_cast<int>(data.n), 1, 1};
    fftwf_plan plan = fftwf_plan_guru_split_dft(1, &dim, 0, nullptr, data.re, data.im, data.re,
                                                data.im, FFTW_MEASURE);
    if (!plan) {
        state.SkipWithError("FFTW could not plan the transform");
        return;
    }
    data.refill();  // planning with FFTW_MEASURE overwrites the arrays
    timeTransform(state, data,
                  [&] { fftwf_execute_split_dft(plan, data.re, data.im, data.re, data.im); });
    fftwf_destroy_plan(plan);
}

}  // namespace

BENCHMARK(ownFft)->RangeMultiplier(2)->Range(1 << 10, 1 << 20)->Unit(benchmark::kMicrosecond);
BENCHMARK(fftwSplit)->RangeMultiplier(2)->Range(1 << 10, 1 << 20)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

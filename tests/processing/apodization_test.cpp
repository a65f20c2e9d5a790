#include "processing/apodization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;

FourierTransformStep weighted(uint16_t presence, float value, int index) {
    FourierTransformStep s;
    s.flags = ft_flags::kApplyWeights | presence;
    s.weights[index] = value;
    return s;
}

std::vector<float> window(const FourierTransformStep& s, size_t n, size_t n0 = 0,
                          float sw = 5000.0f, size_t first = 0) {
    std::vector<float> w(n);
    buildWeightingVector(s, WeightingInput{n, n0 ? n0 : n, sw, first, false}, w.data());
    return w;
}

TEST(Apodization, WeightsOffLeaveOnlyScaleAndQuadrature) {
    FourierTransformStep s;
    s.flags = ft_flags::kQuadrature | ft_flags::kExponential | ft_flags::kSineBell |
              ft_flags::kFirstPoint | ft_flags::kTruncation;
    s.weights = {10.0f, 0.0f, 0.0f, 0.0f, 50.0f, 0.5f};
    const auto w = window(s, 64, 128);
    for (size_t k = 0; k < w.size(); ++k)
        EXPECT_FLOAT_EQ(w[k], (k % 2 ? -1.0f : 1.0f) * 0.25f) << k;  // 32/128, odd ones negated
}

TEST(Apodization, ExponentialAndGaussianFollowTheirClosedForms) {
    const float sw = 6009.6f;
    const auto e =
        window(weighted(ft_flags::kExponential, 0.3f, kWeightExponential), 4096, 4096, sw);
    for (size_t k : {0u, 1u, 1000u, 4095u})
        EXPECT_NEAR(e[k] / e[0], std::exp(-kPi * 0.3 * k / sw), 1e-5) << k;
    const auto sharp = window(weighted(ft_flags::kExponential, -2.0f, kWeightExponential), 512);
    EXPECT_GT(sharp[511], sharp[0]);

    const double sigma = std::pow(kPi * 4.0 / (2.0 * sw), 2) / std::numbers::ln2;
    const auto g = window(weighted(ft_flags::kGaussian, 4.0f, kWeightGaussian), 2048, 2048, sw);
    const auto inverse =
        window(weighted(ft_flags::kGaussian, -4.0f, kWeightGaussian), 2048, 2048, sw);
    for (size_t k : {0u, 7u, 500u, 2047u}) {
        EXPECT_NEAR(g[k] / g[0], std::exp(-sigma * k * k), 1e-5) << k;
        EXPECT_NEAR(inverse[k] / inverse[0], std::exp(sigma * k * k), 1e-4 * inverse[k]) << k;
    }
}

TEST(Apodization, SineBellWithHalfTheDataKeptReachesZeroAtTheMiddle) {
    auto s = weighted(ft_flags::kSineBell | ft_flags::kTruncation, 0.0f, kWeightSineBell);
    s.weights[kWeightTruncation] = 50.0f;
    const size_t n = 1024;
    const auto w = window(s, n);
    const float scale = 32.0f / n;
    EXPECT_FLOAT_EQ(w[0], 0.0f);
    EXPECT_NEAR(w[256] / scale, 1.0, 1e-6);  // the crest of a pure sine bell over 512 points
    EXPECT_NEAR(w[511] / scale, std::sin(kPi * 511 / 512), 1e-6);
    for (size_t k = 512; k < n; ++k) ASSERT_EQ(w[k], 0.0f) << k;
}

TEST(Apodization, ShiftedAndSquaredBellsMultiply) {
    auto s = weighted(ft_flags::kSineBell | ft_flags::kSquaredSineBell, 90.0f, kWeightSineBell);
    s.weights[kWeightSquaredSine] = 90.0f;
    const auto w = window(s, 256);
    const float scale = 32.0f / 256;
    EXPECT_FLOAT_EQ(w[0], scale);  // cosine bells start at their top
    const double c = std::cos(kPi / 2 * 100 / 256);
    EXPECT_NEAR(w[100] / scale, c * c * c, 1e-6);
}

TEST(Apodization, TruncationAloneTapersTiltsOrEncodesTraficante) {
    const size_t n = 400;
    const float scale = 32.0f / n;
    auto t = [&](float percent) {
        return window(weighted(ft_flags::kTruncation, percent, kWeightTruncation), n, n, 5000.0f);
    };
    for (float v : t(100.0f)) ASSERT_FLOAT_EQ(v, scale);

    const auto tilt = t(150.0f);
    EXPECT_FLOAT_EQ(tilt[0] / scale, 0.5f);
    EXPECT_NEAR(tilt[200] / scale, 1.0, 1e-6);
    EXPECT_NEAR(tilt[n - 1] / scale, 0.5 + (n - 1.0) / n, 1e-6);

    const auto taper = t(75.0f);  // c = 300: point 300 kept, then a linear ramp to 1/100
    EXPECT_FLOAT_EQ(taper[300], scale);
    EXPECT_NEAR(taper[301] / scale, 0.99, 1e-6);
    EXPECT_NEAR(taper[n - 1] / scale, 0.01, 1e-6);

    const auto traf = t(205.0f);
    const double a = -kPi * 5.0 / 5000.0;
    for (size_t k : {0u, 10u, 200u, 399u}) {
        const double e = std::exp(a * k), f = std::exp(a * (double(n) - k));
        EXPECT_NEAR(traf[k] / scale, e / (e * e + f * f), 1e-5) << k;
    }
}

TEST(Apodization, FirstPointFactorLandsAfterTheFilterDelay) {
    const size_t n = 1024;
    const size_t f = firstPointIndex(-67.98f, n);
    EXPECT_EQ(f, 67u);
    const auto w =
        window(weighted(ft_flags::kFirstPoint, 0.5f, kWeightFirstPoint), n, n, 5000.0f, f);
    const float scale = 32.0f / n;
    EXPECT_FLOAT_EQ(w[67], 0.5f * scale);
    EXPECT_FLOAT_EQ(w[0], scale);
    EXPECT_FLOAT_EQ(w[68], scale);
    EXPECT_EQ(firstPointIndex(0.0f, n), 0u);
    EXPECT_EQ(firstPointIndex(-5000.0f, n), n - 1);  // clamped to the row
}

TEST(Apodization, ImaginaryPartsAreConjugatedThroughTheWindow) {
    FourierTransformStep s;
    EXPECT_FALSE(imaginaryNegated(s, false));
    EXPECT_TRUE(imaginaryNegated(s, true));
    s.shuffling = Shuffling::PhaseSensitive;
    EXPECT_FALSE(imaginaryNegated(s, true));  // the conjugate state counts only unshuffled
    s.flags = ft_flags::kConjugate;
    EXPECT_TRUE(imaginaryNegated(s, true));
    s.shuffling = Shuffling::None;
    EXPECT_FALSE(imaginaryNegated(s, true));  // both at once cancel

    std::vector<float> re = {1, 1, 1, 1, 2, 2, 2, 2}, im = re;
    ASSERT_TRUE(
        applyWeighting(s, WeightingInput{3, 16, 1000.0f, 0, false}, re.data(), im.data(), 2, 4));
    EXPECT_EQ(re, (std::vector<float>{2, 2, 2, 1, 4, 4, 4, 2}));
    EXPECT_EQ(im, (std::vector<float>{-2, -2, -2, 1, -4, -4, -4, 2}));  // beyond n untouched
}

TEST(Apodization, RefusedWindowLeavesTheRowsUntouched) {
    FourierTransformStep s;
    s.flags = ft_flags::kQuadrature;
    std::vector<float> re = {1, 2, 3, 4}, im = {5, 6, 7, 8};
    const size_t huge = std::numeric_limits<size_t>::max() / 2;
    EXPECT_FALSE(
        applyWeighting(s, WeightingInput{huge, 4, 1000.0f, 0, true}, re.data(), im.data(), 1, 4));
    EXPECT_EQ(re, (std::vector<float>{1, 2, 3, 4}));
    EXPECT_EQ(im, (std::vector<float>{5, 6, 7, 8}));
}

}  // namespace
}  // namespace zolt

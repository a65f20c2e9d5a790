#include "processing/polar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "test_data.h"

namespace zolt {
namespace {

uint32_t bitsOf(float f) {
    uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

// Converts the points to polar form, in pieces of `piece` points (pieces below eight points go
// through the point-by-point code), and counts the points whose modulus or phase differs in any
// bit from the float of the library's double sqrt and atan2.
size_t pointsUnlikeTheLibrary(std::vector<float> re, std::vector<float> im, size_t piece) {
    const auto re0 = re, im0 = im;
    for (size_t k = 0; k < re.size(); k += piece)
        togglePolar(re.data() + k, im.data() + k, std::min(piece, re.size() - k), true);
    size_t unlike = 0;
    for (size_t k = 0; k < re.size(); ++k) {
        const double a = re0[k], b = im0[k];
        const float modulus = static_cast<float>(std::sqrt(a * a + b * b));
        const float phase = static_cast<float>(std::atan2(b, a));
        const bool same =
            bitsOf(re[k]) == bitsOf(modulus) &&
            (bitsOf(im[k]) == bitsOf(phase) || (std::isnan(im[k]) && std::isnan(phase)));
        if (!same) {
            if (unlike < 5)
                ADD_FAILURE() << "point " << k << " (" << re0[k] << ", " << im0[k] << "): " << re[k]
                              << ", " << im[k] << " instead of " << modulus << ", " << phase;
            ++unlike;
        }
    }
    return unlike;
}

TEST(PolarToggle, GivesModulusAndPhaseAndTwiceReturnsTheSamples) {
    std::vector<float> re{3.0f, -1.0f, 0.0f, 1e-3f}, im{4.0f, 0.0f, -2.0f, 7.5f};
    const auto re0 = re, im0 = im;
    togglePolar(re.data(), im.data(), 4, true);
    EXPECT_FLOAT_EQ(re[0], 5.0f);
    EXPECT_FLOAT_EQ(im[0], float(std::atan2(4.0, 3.0)));
    EXPECT_FLOAT_EQ(im[1], float(std::numbers::pi));
    EXPECT_FLOAT_EQ(im[2], float(-std::numbers::pi / 2));
    togglePolar(re.data(), im.data(), 4, false);
    for (size_t k = 0; k < 4; ++k) {
        EXPECT_NEAR(re[k], re0[k], 1e-6) << k;
        EXPECT_NEAR(im[k], im0[k], 1e-6) << k;
    }
}

// Every point of every 1-D and 2-D Bruker set, transformed, and the real and imaginary planes
// of the 2-D ones as they stand after the transform, keep the library's bits.
TEST(PolarToggle, EveryTransformedPointOfTheTestDataHasTheLibrarysPhase) {
    size_t points = 0;
    for (const std::string name :
         {"aspirin-1h", "naphtoicAcid-1h", "strychnine-1h", "cyclosporin-1h", "t1rho-1h",
          "cyclosporin-cosy", "cyclosporin-hsqc", "cyclosporin-hmbc", "inversion-recovery",
          "cosy-nus", "hsqc-nus"}) {
        auto doc = testdata::openTransformed(name);
        ASSERT_TRUE(doc) << name;
        const auto& m = doc->matrix;
        ASSERT_EQ(m.re.size(), m.im.size()) << name;
        EXPECT_EQ(pointsUnlikeTheLibrary(m.re, m.im, m.re.size()), 0u) << name;
        points += m.re.size();
    }
    EXPECT_GT(points, size_t{4'000'000});
}

// Random points over the whole float range, with the cases that take the library's way: zeros
// of both signs, infinities, NaNs, subnormals, equal magnitudes (the octant border) and ratios
// at the border of the reduced range; both through the eight-point code and point by point.
TEST(PolarToggle, PhasesOverTheWholeFloatRangeAreTheLibrarys) {
    std::mt19937 rng(20261123);
    std::uniform_real_distribution<float> mantissa(-2.0f, 2.0f);
    std::uniform_int_distribution<int> exponent(-150, 127);
    std::vector<float> re, im;
    for (int k = 0; k < 2'000'000; ++k) {
        re.push_back(std::ldexp(mantissa(rng), exponent(rng) / 8));
        im.push_back(std::ldexp(mantissa(rng), k % 4 == 0 ? exponent(rng) : exponent(rng) / 8));
    }
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float tiny = std::numeric_limits<float>::denorm_min();
    const float special[] = {0.0f,  -0.0f,  inf,  -inf,  nan,   tiny,
                             -tiny, 1e-40f, 1.0f, -1.0f, 0.66f, 3.0e38f};
    for (float a : special)
        for (float b : special) {
            re.push_back(a);
            im.push_back(b);
        }
    for (int k = 0; k < 1000; ++k) {
        const float v = mantissa(rng);
        re.push_back(v), im.push_back(k % 2 ? v : -v);                   // |b| = |a|
        re.push_back(v), im.push_back(std::nextafter(0.66f * v, 0.0f));  // t near 0.66
    }
    EXPECT_EQ(pointsUnlikeTheLibrary(re, im, re.size()), 0u);
    EXPECT_EQ(pointsUnlikeTheLibrary(re, im, 7), 0u);
}

}  // namespace
}  // namespace zolt

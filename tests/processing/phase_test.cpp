#include "processing/phase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;

// A matrix with n2 points along f2 (stored contiguously) and n1 rows along f1, filled with
// reproducible values.
SpectrumMatrix makeMatrix(uint32_t n2, uint32_t n1 = 1, bool halves = false) {
    SpectrumMatrix m;
    m.dimensions = n1 > 1 ? 2 : 1;
    const int direct = n1 > 1 ? 2 : 1;
    m.contiguous = static_cast<uint8_t>(direct);
    m.dims[direct].points = n2;
    if (n1 > 1) m.dims[1].points = n1;
    m.dims[0].points = halves ? 2 : 1;
    const size_t total = m.pointCount();
    std::mt19937 gen(42);
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    m.re.resize(total);
    m.im.resize(total);
    for (size_t i = 0; i < total; ++i) {
        m.re[i] = u(gen);
        m.im[i] = u(gen);
    }
    return m;
}

TEST(ApplyPhase, HalfTurnNegatesAndNegligibleAnglesChangeNothing) {
    auto m = makeMatrix(256, 4);
    const auto before = m;
    applyPhase(m, 2, kPi, 0.0);
    for (size_t i = 0; i < m.re.size(); ++i) {
        EXPECT_EQ(m.re[i], -before.re[i]);
        EXPECT_EQ(m.im[i], -before.im[i]);
    }
    m = before;
    applyPhase(m, 2, 0.00001, 0.0);
    applyPhase(m, 2, 0.0, 0.0001);  // first order at the limit is ignored too
    EXPECT_EQ(m.re, before.re);
    EXPECT_EQ(m.im, before.im);
}

// The recurrence of the first order against a direct rotation by a + k b / n, along the
// contiguous axis of a long 1-D row (several turns) and across the rows of a plane.
TEST(ApplyPhase, FirstOrderRecurrenceMatchesDirectRotation) {
    struct Case {
        uint32_t n2, n1;
        double a, b;
    };
    for (const Case& c : {Case{65536, 1, 0.7, -25.0}, Case{8, 32, -0.4, 3.0}}) {
        auto m = makeMatrix(c.n2, c.n1);
        const auto before = m;
        const uint32_t n = c.n1 > 1 ? c.n1 : c.n2;
        applyPhase(m, 1, c.a, c.b);
        double worst = 0.0;
        for (size_t i = 0; i < m.re.size(); ++i) {
            const double phi = c.a + double(c.n1 > 1 ? i / c.n2 : i) * c.b / n;
            const double re = before.re[i] * std::cos(phi) - before.im[i] * std::sin(phi);
            const double im = before.re[i] * std::sin(phi) + before.im[i] * std::cos(phi);
            worst = std::max({worst, std::fabs(re - m.re[i]), std::fabs(im - m.im[i])});
        }
        EXPECT_LT(worst, 1e-5) << c.n2 << " x " << c.n1;
    }
}

TEST(ApplyPhase, HypercomplexHalvesPairAcrossHalvesForTheDirectAxis) {
    const uint32_t n2 = 16, n1 = 4;
    auto m = makeMatrix(n2, n1, true);
    const auto before = m;
    const size_t half = m.re.size() / 2;
    applyPhase(m, 2, 0.5 * kPi, 0.0);
    // A quarter turn: the first half takes minus the second, the second the first.
    for (size_t p = 0; p < half; ++p) {
        EXPECT_NEAR(m.re[p], -before.re[p + half], 1e-6);
        EXPECT_NEAR(m.re[p + half], before.re[p], 1e-6);
        EXPECT_NEAR(m.im[p], -before.im[p + half], 1e-6);
    }
    // Along f1 the pairs are re/im inside each half.
    auto f1 = before;
    applyPhase(f1, 1, 0.5 * kPi, 0.0);
    for (size_t i = 0; i < f1.re.size(); ++i) EXPECT_NEAR(f1.re[i], -before.im[i], 1e-6);
}

TEST(ApplyPhase, DamagedMatrixIsLeftAlone) {
    auto m = makeMatrix(64);
    m.re.resize(10);
    const auto before = m;
    applyPhase(m, 1, 1.0, 1.0);
    applyPhase(m, 0, 1.0, 1.0);
    applyPhase(m, 4, 1.0, 1.0);
    EXPECT_EQ(m.re, before.re);
    auto nan = makeMatrix(64);
    const auto nanBefore = nan;
    applyPhase(nan, 1, std::nan(""), 0.0);
    EXPECT_EQ(nan.re, nanBefore.re);
}

TEST(WrapPhase, BringsZeroOrderIntoOneTurn) {
    EXPECT_FLOAT_EQ(wrapPhase(3.0 + 0.5), static_cast<float>(3.5 - 2 * kPi));
    EXPECT_FLOAT_EQ(wrapPhase(-7.0), static_cast<float>(-7.0 + 2 * kPi));
    EXPECT_NEAR(wrapPhase(1e12), std::remainder(1e12, 2 * kPi), 1e-3);
    EXPECT_EQ(wrapPhase(INFINITY), 0.0f);
}

TEST(ChangePhase, StoresWrappedSumAndAppliesTheIncrement) {
    auto m = makeMatrix(128);
    m.dims[1].phase0 = 3.0f;
    m.dims[1].phase1 = 1.0f;
    const auto before = m;
    changePhase(m, 0, 1, 0.5, 2.0);
    EXPECT_FLOAT_EQ(m.dims[1].phase0, static_cast<float>(3.5 - 2 * kPi));
    EXPECT_FLOAT_EQ(m.dims[1].phase1, 3.0f);
    auto expected = before;
    applyPhase(expected, 1, 0.5, 2.0);
    EXPECT_EQ(m.re, expected.re);
}

TEST(ChangePhase, StoresButLeavesDataWhenTheIncrementCannotApply) {
    auto timeDomain = makeMatrix(128);
    const auto before = timeDomain;
    changePhase(timeDomain, 1, 1, 1.0, 0.0);  // still a time-domain axis
    EXPECT_FLOAT_EQ(timeDomain.dims[1].phase0, 1.0f);
    EXPECT_EQ(timeDomain.re, before.re);

    auto tiny = makeMatrix(128);
    changePhase(tiny, 0, 1, 5e-7, -5e-7);
    EXPECT_EQ(tiny.re, before.re);
    EXPECT_FLOAT_EQ(tiny.dims[1].phase0, 5e-7f);

    auto realOnly = makeMatrix(128);
    realOnly.im.clear();
    realOnly.state |= matrix_state::kRealOnly;
    changePhase(realOnly, 0, 1, 1.0, 0.0);
    EXPECT_EQ(realOnly.re, before.re);
}

TEST(ChangePhase, ComplexConjugateStateNegatesTheIncrement) {
    auto m = makeMatrix(128);
    m.state |= matrix_state::kComplexConjugate;
    const auto before = m;
    changePhase(m, 0, 1, 0.3, 1.5);
    EXPECT_FLOAT_EQ(m.dims[1].phase0, 0.3f);  // the record keeps the user's sign
    auto expected = before;
    applyPhase(expected, 1, -0.3, -1.5);
    EXPECT_EQ(m.re, expected.re);
    EXPECT_EQ(m.im, expected.im);
}

TEST(ChangePhase, MagnitudeMatrixReturnsToCartesianFirst) {
    SpectrumMatrix m;
    m.dimensions = 1;
    m.contiguous = 1;
    m.dims[1].points = 3;
    const std::vector<float> modulus = {2.0f, 1.0f, 0.5f}, angle = {0.0f, 1.5f, -2.0f};
    m.re = modulus;
    m.im = angle;
    m.state |= matrix_state::kMagnitude;
    changePhase(m, 0, 1, 0.25, 0.0);
    EXPECT_FALSE(m.state & matrix_state::kMagnitude);
    for (size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(m.re[k], modulus[k] * std::cos(angle[k] + 0.25), 1e-5);
        EXPECT_NEAR(m.im[k], modulus[k] * std::sin(angle[k] + 0.25), 1e-5);
    }
}

}  // namespace
}  // namespace zolt

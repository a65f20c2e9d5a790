#include "processing/auto_phase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include "processing/phase.h"
#include "test_data.h"

namespace zolt {
namespace {

struct Line {
    double centre, height, halfWidth;
};

// Complex Lorentzians (absorption real, dispersion imaginary) with noise from a fixed seed,
// then rotated by the phase error (e0 + k e1 / n).
struct Spectrum {
    std::vector<float> re, im, ideal;
};

Spectrum lorentzians(size_t n, const std::vector<Line>& lines, double e0, double e1,
                     double noise = 0.01, unsigned seed = 1) {
    Spectrum s;
    std::mt19937 gen(seed);
    std::normal_distribution<double> g(0.0, noise);
    for (size_t k = 0; k < n; ++k) {
        double a = 0.0, d = 0.0;
        for (const auto& l : lines) {
            const double u = (k - l.centre) / l.halfWidth;
            a += l.height / (1.0 + u * u);
            d += l.height * u / (1.0 + u * u);
        }
        a += g(gen);
        d += g(gen);
        const double phi = e0 + k * e1 / n;
        s.ideal.push_back(static_cast<float>(a));
        s.re.push_back(static_cast<float>(a * std::cos(phi) - d * std::sin(phi)));
        s.im.push_back(static_cast<float>(a * std::sin(phi) + d * std::cos(phi)));
    }
    return s;
}

std::vector<Line> typicalLines(size_t n) {
    return {{0.15 * n, 10.0, 4.0}, {0.3 * n, 4.0, 3.0},  {0.42 * n, 6.0, 5.0},
            {0.6 * n, 8.0, 3.0},   {0.75 * n, 3.0, 4.0}, {0.9 * n, 5.0, 3.0}};
}

using testdata::correlation;

// The real part after applying the estimated increment.
std::vector<float> corrected(const Spectrum& s, const AutoPhaseResult& r) {
    SpectrumMatrix m;
    m.contiguous = 1;
    m.dims[1].points = static_cast<uint32_t>(s.re.size());
    m.re = s.re;
    m.im = s.im;
    applyPhase(m, 1, r.delta0, r.delta1);
    return m.re;
}

TEST(AutoPhaseDefault, AllPositiveSpectrumStopsAtOnce) {
    auto s = lorentzians(4096, typicalLines(4096), 0.0, 0.0, 0.0);
    for (auto& v : s.re) v += 0.5f;
    const auto r = estimatePhase(s.re.data(), s.im.data(), s.re.size());
    EXPECT_EQ(r.iterations, 0);
    EXPECT_LE(r.evaluations, 1);  // only the third vertex is computed
    EXPECT_EQ(r.delta0, 0.0);
    EXPECT_EQ(r.delta1, 0.0);
}

TEST(AutoPhasePeaks, RecoversErrorsFromApproximatePeakPositions) {
    const size_t n = 8192;
    const auto lines = typicalLines(n);
    const auto s = lorentzians(n, lines, -2.0, 2.5);
    std::vector<size_t> peaks;
    for (const auto& l : lines) peaks.push_back(static_cast<size_t>(l.centre) + 30);
    const auto r = estimatePhase(s.re.data(), s.im.data(), n, peaks);
    const auto c = corrected(s, r);
    EXPECT_GT(correlation(c, s.ideal), 0.99);
    // The penalty keeps the lines upright rather than merely symmetric.
    EXPECT_GT(c[static_cast<size_t>(lines[0].centre)], 0.0f);
    EXPECT_LE(r.iterations, 400);  // four rounds
}

TEST(AutoPhasePeaks, PeaksTooCloseToTheEdgesAreDropped) {
    const size_t n = 4096;
    const auto s = lorentzians(n, {{50.0, 5.0, 3.0}, {4070.0, 5.0, 3.0}}, 1.0, 0.0);
    // Windows that do not fit: no peak is kept, the cost is zero and nothing changes.
    const auto r = estimatePhase(s.re.data(), s.im.data(), n, {50, 4070});
    EXPECT_EQ(r.delta0, 0.0);
    EXPECT_EQ(r.iterations, 0);
}

TEST(AutoPhaseAlternative, RecoversErrorsOnAFlatBaseline) {
    const size_t n = 16384;
    const auto s = lorentzians(n, typicalLines(n), 1.9, -1.0);
    const auto r = estimatePhase(s.re.data(), s.im.data(), n, {}, true);
    EXPECT_GT(correlation(corrected(s, r), s.ideal), 0.99);
    EXPECT_LE(r.cost, 0.01);
}

TEST(AutoPhaseMatrix, AppliesTheIncrementThroughTheStoredPhase) {
    const size_t n = 8192;
    const auto s = lorentzians(n, typicalLines(n), 1.0, 0.5);
    SpectrumMatrix m;
    m.contiguous = 1;
    m.dimensions = 1;
    m.dims[1].points = n;
    m.re = s.re;
    m.im = s.im;
    const auto r = autoPhase(m, 0);
    ASSERT_TRUE(r.has_value());
    EXPECT_GT(correlation(m.re, s.ideal), 0.99);
    EXPECT_FLOAT_EQ(m.dims[1].phase0, wrapPhase(r->delta0));
    EXPECT_FLOAT_EQ(m.dims[1].phase1, static_cast<float>(r->delta1));

    // Complex-conjugate state: the data as read are phased, whatever is stored.
    SpectrumMatrix conj = m;
    conj.re = s.re;
    conj.im = s.im;
    for (auto& v : conj.im) v = -v;
    conj.state |= matrix_state::kComplexConjugate;
    conj.dims[1].phase0 = conj.dims[1].phase1 = 0.0f;
    ASSERT_TRUE(autoPhase(conj, 0).has_value());
    EXPECT_GT(correlation(conj.re, s.ideal), 0.99);

    SpectrumMatrix realOnly;
    realOnly.dims[1].points = n;
    realOnly.re = s.re;
    realOnly.state = matrix_state::kRealOnly;
    EXPECT_FALSE(autoPhase(realOnly, 0).has_value());
    EXPECT_EQ(realOnly.re, s.re);
}

// A hypercomplex plane of Lorentzian cross peaks of both signs, f1 contiguous as the indirect
// transform leaves it: f1 turned by e1, f2 by e2 plus one radian across its width.
SpectrumMatrix hypercomplexPlane(size_t n1, size_t n2, double e1, double e2,
                                 std::vector<float>& ideal) {
    const double peaks[][3] = {{0.2, 0.3, 10}, {0.5, 0.6, -6}, {0.7, 0.2, 8},
                               {0.35, 0.8, 5}, {0.8, 0.7, -4}, {0.6, 0.45, 7}};
    SpectrumMatrix m;
    m.dimensions = 2;
    m.contiguous = 1;
    m.dims[0].points = 2;
    m.dims[1].points = static_cast<uint32_t>(n1);
    m.dims[2].points = static_cast<uint32_t>(n2);
    const size_t half = n1 * n2;
    m.re.assign(2 * half, 0.0f);
    m.im.assign(2 * half, 0.0f);
    ideal.assign(half, 0.0f);
    // A line at c with half-width 2, turned by phi: (absorption, dispersion) rotated.
    auto line = [](double u, double phi) {
        return std::complex<double>(1.0, u) / (1.0 + u * u) * std::polar(1.0, phi);
    };
    for (size_t j = 0; j < n2; ++j)
        for (size_t k = 0; k < n1; ++k) {
            const size_t i = j * n1 + k;
            for (const auto& p : peaks) {
                const double u1 = (k - p[0] * n1) / 2.0, u2 = (j - p[1] * n2) / 2.0;
                const auto c1 = line(u1, e1), c2 = line(u2, e2 + 1.0 * j / n2);
                m.re[i] += static_cast<float>(p[2] * c1.real() * c2.real());
                m.im[i] += static_cast<float>(p[2] * c1.imag() * c2.real());
                m.re[i + half] += static_cast<float>(p[2] * c1.real() * c2.imag());
                m.im[i + half] += static_cast<float>(p[2] * c1.imag() * c2.imag());
                ideal[i] += static_cast<float>(p[2] / (1 + u1 * u1) / (1 + u2 * u2));
            }
        }
    return m;
}

TEST(AutoPhase2D, EditedPlaneComesOutAbsorptiveAndUpright) {
    std::vector<float> ideal;
    auto m = hypercomplexPlane(256, 512, 1.1, -0.9, ideal);
    const auto r = autoPhase2D(m, 0);
    ASSERT_TRUE(r.has_value());
    std::vector<float> rr(m.re.begin(), m.re.begin() + ideal.size());
    EXPECT_GT(correlation(rr, ideal), 0.99);

    SpectrumMatrix plain;
    plain.dims[1].points = 64;
    plain.re.assign(64, 1.0f);
    plain.im.assign(64, 0.0f);
    EXPECT_FALSE(autoPhase2D(plain, 0).has_value());
}

}  // namespace
}  // namespace zolt

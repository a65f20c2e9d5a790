// Phase conventions against the spectrometer's own processing: the 1-D stored-phase rule, the
// echo / anti-echo HSQC after wft() wft() aph() abc(), and aph without hypercomplex halves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "app/application.h"
#include "app/recording_platform.h"
#include "io/bruker_reader.h"
#include "io/raw_loader.h"
#include "processing/ft_defaults.h"
#include "processing/ft_pipeline.h"
#include "processing/phase.h"
#include "test_data.h"

namespace zolt {
namespace {

SpectrumMatrix vendorSpectrum(const std::string& name) {
    BrukerReadOptions processed;
    processed.processed = true;
    const auto read = readBrukerFolder(testdata::bruker(name), processed);
    EXPECT_TRUE(read);
    auto matrix = read ? loadMatrix(read->source) : std::nullopt;
    EXPECT_TRUE(matrix);
    return matrix ? *matrix : SpectrumMatrix{};
}

// The real plane of a 1-D or 2-D matrix, addressed by (f1, f2) point.
struct RealPlane {
    const SpectrumMatrix& m;
    size_t s1 = 0, s2 = 1;
    explicit RealPlane(const SpectrumMatrix& matrix) : m(matrix) {
        size_t total = m.pointCount();
        if (hasHypercomplexHalves(m)) total /= 2;
        s1 = axisWalk(m, 1, total).inner;
        s2 = axisWalk(m, 2, total).inner;
    }
    float at(size_t i1, size_t i2) const { return m.re[i1 * s1 + i2 * s2]; }
    // The point of `other` at the ppm of point (i1, i2) of this plane.
    float sameSpot(const RealPlane& other, size_t i1, size_t i2) const {
        const auto j1 = pointOfPpm(other.m.dims[1], ppmOfPoint(m.dims[1], double(i1)));
        const auto j2 = pointOfPpm(other.m.dims[2], ppmOfPoint(m.dims[2], double(i2)));
        return other.at(static_cast<size_t>(j1), static_cast<size_t>(j2));
    }
};

double correlationOverPpm1D(const SpectrumMatrix& a, const SpectrumMatrix& b) {
    double sa = 0, sb = 0, saa = 0, sbb = 0, sab = 0, n = 0;
    for (size_t i = 0; i < a.dims[1].points; ++i) {
        const double ppm = ppmOfPoint(a.dims[1], double(i));
        if (ppm <= b.dims[1].lowestPpm || ppm >= b.dims[1].lowestPpm + b.dims[1].spectralWidth)
            continue;
        const double x = a.re[i], y = b.re[static_cast<size_t>(pointOfPpm(b.dims[1], ppm))];
        sa += x, sb += y, saa += x * x, sbb += y * y, sab += x * y, n += 1;
    }
    return (sab - sa * sb / n) / std::sqrt((saa - sa * sa / n) * (sbb - sb * sb / n));
}

// The spectrometer's procs phases of aspirin, converted by the stored-phase rule and applied by
// the pipeline (with its filter-delay compensation), give the spectrometer's own spectrum: the
// FFT sense, the quadrature choice and the sign of the first order agree with its software.
TEST(RealSpectraPhase, StoredVendorPhasesReproduceTheVendorProtonSpectrum) {
    const SpectrumMatrix vendor = vendorSpectrum("aspirin-1h-processed");
    for (const double sign : {1.0, -1.0}) {
        const auto read = readBrukerFolder(testdata::bruker("aspirin-1h"));
        ASSERT_TRUE(read);
        SpectrumDocument d;
        d.source = read->source;
        d.matrix = *loadMatrix(d.source);
        d.vendorProcessing = read->vendorProcessing;  // LB 0.3, SI 32768, as the 1r was made
        addDefaultFourierTransformSteps(d);
        d.matrix.dims[1].phase0 = static_cast<float>(sign * -107.786 * kDegreesToStoredRadians);
        d.matrix.dims[1].phase1 = static_cast<float>(11.02198 * kDegreesToStoredRadians);
        ASSERT_EQ(transformNextDimension(d).outcome, FtOutcome::Transformed);
        if (sign > 0)
            EXPECT_GT(correlationOverPpm1D(d.matrix, vendor), 0.9999);
        else
            EXPECT_LT(correlationOverPpm1D(d.matrix, vendor), -0.5);
    }
}

class HsqcPhase : public ::testing::Test {
protected:
    HsqcPhase() : app(platform), vendor(vendorSpectrum("cyclosporin-hsqc")) {}
    SpectrumDocument& open() {
        EXPECT_EQ(app.open(testdata::bruker("cyclosporin-hsqc")), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }

    struct CrossPeak {
        float height;
        size_t i1, i2;
    };
    // The strongest local maxima of |re|.
    static std::vector<CrossPeak> strongest(const SpectrumMatrix& m, size_t count) {
        const RealPlane p(m);
        std::vector<CrossPeak> peaks;
        const size_t n1 = m.dims[1].points, n2 = m.dims[2].points;
        for (size_t i1 = kHalf + 1; i1 + kHalf + 1 < n1; ++i1)
            for (size_t i2 = kHalf + 1; i2 + kHalf + 1 < n2; ++i2) {
                const float v = std::fabs(p.at(i1, i2));
                bool top = v > 0.0f;
                for (int a = -1; a <= 1 && top; ++a)
                    for (int b = -1; b <= 1 && top; ++b)
                        if ((a || b) && std::fabs(p.at(i1 + a, i2 + b)) >= v) top = false;
                if (top) peaks.push_back({v, i1, i2});
            }
        std::sort(peaks.begin(), peaks.end(), [](auto& a, auto& b) { return a.height > b.height; });
        peaks.resize(std::min(count, peaks.size()));
        return peaks;
    }
    // sum |left - right| / sum |left + right| over the points around (i1, i2) along one axis:
    // near 0 for an absorptive line, above 1 for a dispersive one.
    static double asymmetry(const RealPlane& p, size_t i1, size_t i2, int axis) {
        double difference = 0.0, sum = 0.0;
        for (size_t j = 1; j <= kHalf; ++j) {
            const double l = axis == 2 ? p.at(i1, i2 - j) : p.at(i1 - j, i2);
            const double r = axis == 2 ? p.at(i1, i2 + j) : p.at(i1 + j, i2);
            difference += std::fabs(l - r);
            sum += std::fabs(l + r);
        }
        return difference / sum;
    }
    // The deepest value of opposite sign within the window along both axes, over the peak.
    static double oppositeLobe(const RealPlane& p, size_t i1, size_t i2) {
        const double centre = p.at(i1, i2);
        double worst = 0.0;
        for (size_t j = 0; j <= 2 * kHalf; ++j) {
            worst = std::max(worst, -p.at(i1, i2 - kHalf + j) / centre);
            worst = std::max(worst, -p.at(i1 - kHalf + j, i2) / centre);
        }
        return worst;
    }
    // About the line width at 1024 points per axis: wider windows meet the neighbouring
    // N-methyl lines, in the spectrometer's own spectrum too.
    static constexpr size_t kHalf = 4;

    testing::RecordingPlatform platform;
    Application app;
    SpectrumMatrix vendor;
};

// Echo / anti-echo without hypercomplex halves: f2 is phased by its own transform only, so it
// is right or never. The strongest cross peaks must be absorptive on both axes, no more
// asymmetric than the same peaks of the spectrometer's 2rr, and of the same sign (CH and CH3
// up, CH2 down, as there).
TEST_F(HsqcPhase, StrongestCrossPeaksAreAbsorptiveAfterWftAphAbc) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("wft() wft() aph() abc()"));
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_FALSE(hasHypercomplexHalves(d.matrix));
    const RealPlane ours(d.matrix), theirs(vendor);
    double mean2 = 0.0, mean1 = 0.0;
    const auto peaks = strongest(d.matrix, 10);
    ASSERT_EQ(peaks.size(), 10u);
    for (const auto& p : peaks) {
        const auto j1 = static_cast<size_t>(
            pointOfPpm(vendor.dims[1], ppmOfPoint(d.matrix.dims[1], double(p.i1))));
        const auto j2 = static_cast<size_t>(
            pointOfPpm(vendor.dims[2], ppmOfPoint(d.matrix.dims[2], double(p.i2))));
        const double a2 = asymmetry(ours, p.i1, p.i2, 2), a1 = asymmetry(ours, p.i1, p.i2, 1);
        EXPECT_LT(a2, asymmetry(theirs, j1, j2, 2) + 0.15) << p.i1 << "," << p.i2;
        EXPECT_LT(a1, asymmetry(theirs, j1, j2, 1) + 0.15) << p.i1 << "," << p.i2;
        EXPECT_LT(oppositeLobe(ours, p.i1, p.i2), 0.1) << p.i1 << "," << p.i2;
        EXPECT_EQ(ours.at(p.i1, p.i2) > 0, ours.sameSpot(theirs, p.i1, p.i2) > 0)
            << p.i1 << "," << p.i2;
        mean2 += a2 / 10.0;
        mean1 += a1 / 10.0;
    }
    EXPECT_LT(mean2, 0.3);
    EXPECT_LT(mean1, 0.2);
    // Edited: the CH2 groups (negative) are there too, and keep their sign.
    size_t negative = 0;
    for (const auto& p : strongest(d.matrix, 60))
        if (ours.at(p.i1, p.i2) < 0) {
            ++negative;
            EXPECT_LT(ours.sameSpot(theirs, p.i1, p.i2), 0.0f) << p.i1 << "," << p.i2;
        }
    EXPECT_GT(negative, 3u);
}

// Bruker's PHC0 of f2 refers to its own combination of echo and anti-echo, a quarter turn from
// ours: taken as it stands, every strong line is dispersive along f2.
TEST_F(HsqcPhase, TheVendorF2PhaseAsItStandsLeavesDispersion) {
    SpectrumDocument& d = open();
    d.matrix.dims[2].phase0 = wrapPhase(d.matrix.dims[2].phase0 - std::numbers::pi / 2);
    ASSERT_TRUE(run("wft() wft()"));
    const RealPlane ours(d.matrix);
    double mean2 = 0.0;
    for (const auto& p : strongest(d.matrix, 10)) mean2 += asymmetry(ours, p.i1, p.i2, 2) / 10.0;
    EXPECT_GT(mean2, 0.8);
}

// Without halves aph turns f1 only: an f1 error put in by hand is taken out again, f2 stays.
TEST_F(HsqcPhase, AphWithoutHalvesCorrectsF1AndLeavesF2) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("wft() wft() aph()"));
    const float f2Phase0 = d.matrix.dims[2].phase0, f2Phase1 = d.matrix.dims[2].phase1;
    const float phased = d.matrix.dims[1].phase0;
    ASSERT_TRUE(run("phase(50, 0, 1) aph()"));
    EXPECT_EQ(d.matrix.dims[2].phase0, f2Phase0);
    EXPECT_EQ(d.matrix.dims[2].phase1, f2Phase1);
    // Most of the 0.87 rad put in is gone, and the lines along f1 are symmetric again.
    EXPECT_LT(std::fabs(std::remainder(d.matrix.dims[1].phase0 - phased, 2 * std::numbers::pi)),
              0.2);
    const RealPlane ours(d.matrix);
    double mean1 = 0.0;
    for (const auto& p : strongest(d.matrix, 10)) mean1 += asymmetry(ours, p.i1, p.i2, 1) / 10.0;
    EXPECT_LT(mean1, 0.2);
    // A magnitude spectrum is left alone.
    ASSERT_TRUE(run("magn(true)"));
    const auto magnitude = d.matrix.re;
    ASSERT_TRUE(run("aph()"));
    EXPECT_EQ(d.matrix.re, magnitude);
}

}  // namespace
}  // namespace zolt

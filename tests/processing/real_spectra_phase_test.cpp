// Phase conventions against the spectrometer's own processing: the 1-D stored-phase rule, the
// echo / anti-echo HSQC after wft() wft() aph() abc(), and aph without hypercomplex halves.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "app/application.h"
#include "app/recording_platform.h"
#include "processing/ft_pipeline.h"
#include "processing/phase.h"
#include "test_data.h"

namespace zolt {
namespace {

// The spectrometer's procs phases of aspirin, converted by the stored-phase rule and applied by
// the pipeline (with its filter-delay compensation), give the spectrometer's own spectrum: the
// FFT sense, the quadrature choice and the sign of the first order agree with its software.
TEST(RealSpectraPhase, StoredVendorPhasesReproduceTheVendorProtonSpectrum) {
    const auto vendor = testdata::vendorSpectrum("aspirin-1h-processed");
    ASSERT_TRUE(vendor);
    for (const double sign : {1.0, -1.0}) {
        auto d = testdata::openExperiment("aspirin-1h");  // LB 0.3, SI 32768, as the 1r was made
        ASSERT_TRUE(d);
        d->matrix.dims[1].phase0 = static_cast<float>(sign * -107.786 * kDegreesToStoredRadians);
        d->matrix.dims[1].phase1 = static_cast<float>(11.02198 * kDegreesToStoredRadians);
        ASSERT_EQ(transformNextDimension(*d).outcome, FtOutcome::Transformed);
        if (sign > 0)
            EXPECT_GT(testdata::correlationOverPpm(d->matrix, *vendor), 0.9999);
        else
            EXPECT_LT(testdata::correlationOverPpm(d->matrix, *vendor), -0.5);
    }
}

// About the line width at 1024 points per axis: wider windows meet the neighbouring N-methyl
// lines, in the spectrometer's own spectrum too.
constexpr size_t kHalf = 4;

float at(const SpectrumMatrix& m, size_t y, size_t x) {
    return m.re[testdata::pointIndex(m, y, x)];
}
// The value of `other` at the ppm of point (y, x) of m.
float sameSpot(const SpectrumMatrix& m, const SpectrumMatrix& other, size_t y, size_t x) {
    return at(other, pointOfPpm(other.dims[1], ppmOfPoint(m.dims[1], double(y))),
              pointOfPpm(other.dims[2], ppmOfPoint(m.dims[2], double(x))));
}
// sum |left - right| / sum |left + right| over the points around (y, x) along f2 (axis 2) or
// f1: near 0 for an absorptive line, above 1 for a dispersive one.
double asymmetry(const SpectrumMatrix& m, size_t y, size_t x, int axis) {
    double difference = 0.0, sum = 0.0;
    for (size_t j = 1; j <= kHalf; ++j) {
        const double l = axis == 2 ? at(m, y, x - j) : at(m, y - j, x);
        const double r = axis == 2 ? at(m, y, x + j) : at(m, y + j, x);
        difference += std::fabs(l - r);
        sum += std::fabs(l + r);
    }
    return difference / sum;
}
// The deepest value of opposite sign within the window along both axes, over the peak.
double oppositeLobe(const SpectrumMatrix& m, size_t y, size_t x) {
    const double centre = at(m, y, x);
    double worst = 0.0;
    for (size_t j = 0; j <= 2 * kHalf; ++j) {
        worst = std::max(worst, -at(m, y, x - kHalf + j) / centre);
        worst = std::max(worst, -at(m, y - kHalf + j, x) / centre);
    }
    return worst;
}
std::vector<testdata::Peak> strongest(const SpectrumMatrix& m, size_t count) {
    return testdata::strongestPeaks(m, count, false, kHalf + 1);
}
double meanAsymmetry(const SpectrumMatrix& m, int axis) {
    double mean = 0.0;
    for (const auto& p : strongest(m, 10)) mean += asymmetry(m, p.y, p.x, axis) / 10.0;
    return mean;
}

class HsqcPhase : public ::testing::Test {
protected:
    HsqcPhase()
        : app(platform),
          vendor(testdata::vendorSpectrum("cyclosporin-hsqc").value_or(SpectrumMatrix{})) {}
    SpectrumDocument& open() {
        EXPECT_EQ(app.open(testdata::bruker("cyclosporin-hsqc")), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }

    testing::RecordingPlatform platform;
    Application app;
    SpectrumMatrix vendor;
};

// Echo / anti-echo without hypercomplex halves: f2 is phased by its own transform only, so it
// is right or never. The strongest cross peaks must be absorptive on both axes, no more
// asymmetric than the same peaks of the spectrometer's 2rr, and of the same sign (CH and CH3
// up, CH2 down, as there).
TEST_F(HsqcPhase, StrongestCrossPeaksAreAbsorptiveAfterWftAphAbc) {
    ASSERT_FALSE(vendor.re.empty());
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("wft() wft() aph() abc()"));
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_FALSE(hasHypercomplexHalves(d.matrix));
    const SpectrumMatrix& ours = d.matrix;
    const auto peaks = strongest(ours, 10);
    ASSERT_EQ(peaks.size(), 10u);
    for (const auto& p : peaks) {
        const auto j1 = pointOfPpm(vendor.dims[1], p.yPpm), j2 = pointOfPpm(vendor.dims[2], p.xPpm);
        EXPECT_LT(asymmetry(ours, p.y, p.x, 2), asymmetry(vendor, j1, j2, 2) + 0.15) << p.y;
        EXPECT_LT(asymmetry(ours, p.y, p.x, 1), asymmetry(vendor, j1, j2, 1) + 0.15) << p.y;
        EXPECT_LT(oppositeLobe(ours, p.y, p.x), 0.1) << p.y << "," << p.x;
        EXPECT_EQ(at(ours, p.y, p.x) > 0, sameSpot(ours, vendor, p.y, p.x) > 0) << p.y;
    }
    EXPECT_LT(meanAsymmetry(ours, 2), 0.3);
    EXPECT_LT(meanAsymmetry(ours, 1), 0.2);
    // Edited: the CH2 groups (negative) are there too, and keep their sign.
    size_t negative = 0;
    for (const auto& p : strongest(ours, 60))
        if (at(ours, p.y, p.x) < 0) {
            ++negative;
            EXPECT_LT(sameSpot(ours, vendor, p.y, p.x), 0.0f) << p.y << "," << p.x;
        }
    EXPECT_GT(negative, 3u);
}

// Bruker's PHC0 of f2 refers to its own combination of echo and anti-echo, a quarter turn from
// ours: taken as it stands, every strong line is dispersive along f2.
TEST_F(HsqcPhase, TheVendorF2PhaseAsItStandsLeavesDispersion) {
    SpectrumDocument& d = open();
    d.matrix.dims[2].phase0 = wrapPhase(d.matrix.dims[2].phase0 - std::numbers::pi / 2);
    ASSERT_TRUE(run("wft() wft()"));
    EXPECT_GT(meanAsymmetry(d.matrix, 2), 0.8);
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
    EXPECT_LT(meanAsymmetry(d.matrix, 1), 0.2);
}

}  // namespace
}  // namespace zolt

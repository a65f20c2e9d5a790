#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "app/application.h"
#include "app/recording_platform.h"
#include "processing/baseline.h"
#include "processing/ft_step.h"
#include "processing/phase.h"
#include "test_data.h"

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;

class PhaseBaselineCommands : public ::testing::Test {
protected:
    PhaseBaselineCommands() : app(platform) {}
    SpectrumDocument& open(const std::string& name) {
        EXPECT_EQ(app.open(testdata::bruker(name)), 1);
        return *app.frontDocument();
    }
    // The spectrometer's phases cleared: wft() and aph() must find the phase themselves.
    SpectrumDocument& openUnphased(const std::string& name) {
        SpectrumDocument& d = open(name);
        d.matrix.dims[1].phase0 = d.matrix.dims[1].phase1 = 0.0f;
        return d;
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    const BaseplaneStep* lastBaseplane(const SpectrumDocument& d) {
        for (auto it = d.processing.steps.rbegin(); it != d.processing.steps.rend(); ++it)
            if (const auto* s = std::get_if<BaseplaneStep>(&it->data)) return s;
        return nullptr;
    }
    testing::RecordingPlatform platform;
    Application app;
};

using testdata::negativeShare;

TEST_F(PhaseBaselineCommands, PhaseAddsDegreesToTheStoredPhaseAndRotatesTheData) {
    SpectrumDocument& d = open("cyclosporin-1h");
    ASSERT_TRUE(run("wft()"));
    const SpectrumMatrix before = d.matrix;
    ASSERT_TRUE(run("phase(90)"));
    EXPECT_FLOAT_EQ(d.matrix.dims[1].phase0, wrapPhase(before.dims[1].phase0 + kPi / 2));
    EXPECT_FLOAT_EQ(d.matrix.dims[1].phase1, before.dims[1].phase1);
    for (size_t k : {size_t{0}, size_t{1000}, d.matrix.re.size() - 1})
        EXPECT_NEAR(d.matrix.re[k], -before.im[k], 1e-3 * std::fabs(before.im[k]) + 1e-3);
    ASSERT_TRUE(run("phase(-90, 0, 1) phase(0, 0)"));
    EXPECT_NEAR(d.matrix.dims[1].phase0, before.dims[1].phase0, 1e-6);
    // A first order in degrees across the whole axis.
    ASSERT_TRUE(run("phase(0, 180)"));
    EXPECT_NEAR(d.matrix.dims[1].phase1, before.dims[1].phase1 + kPi, 1e-5);
    EXPECT_FALSE(run("phase('a lot')"));
    EXPECT_NE(app.scriptHost().messageLine().find("number expected, got string"),
              std::string::npos);
}

TEST_F(PhaseBaselineCommands, PhrowRotatesOneRowInRadiansAndKeepsTheStoredPhase) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("wft()"));
    const SpectrumMatrix before = d.matrix;
    ASSERT_TRUE(run("phrow(0, math.pi)"));
    EXPECT_EQ(d.matrix.dims[1].phase0, before.dims[1].phase0);
    for (size_t k = 0; k < d.matrix.re.size(); k += 997) {
        EXPECT_FLOAT_EQ(d.matrix.re[k], -before.re[k]);
        EXPECT_FLOAT_EQ(d.matrix.im[k], -before.im[k]);
    }
    // Rows that do not exist leave the data alone.
    const auto phased = d.matrix.re;
    ASSERT_TRUE(run("phrow(1, 1) phrow(-1, 1) phrow(0/0, 1)"));
    EXPECT_EQ(d.matrix.re, phased);
}

TEST_F(PhaseBaselineCommands, PolyClampsItsArgumentsAndRecordsTheStep) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("poly()"));  // still a FID: nothing to correct
    EXPECT_EQ(lastBaseplane(d), nullptr);
    for (auto [chunk, order, width] :
         {std::tuple{"wft() poly(9, 500)", 7, 128}, std::tuple{"poly(-3, 0.5)", 0, 1},
          std::tuple{"poly()", 7, 64}}) {
        ASSERT_TRUE(run(chunk));
        ASSERT_NE(lastBaseplane(d), nullptr) << chunk;
        EXPECT_EQ(lastBaseplane(d)->order, order) << chunk;
        EXPECT_EQ(lastBaseplane(d)->movingAverage, width) << chunk;
        EXPECT_NE(lastBaseplane(d)->function, 0);
    }
    EXPECT_TRUE(platform.boxes.empty());
}

// bline hands its order over unclamped: 64*15 + 8 + 1024/16 = 1032 >= 1024 points.
TEST_F(PhaseBaselineCommands, TooHighAnOrderIsRefusedWithItsMessage) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("fill(1024) wft()"));
    const auto before = d.matrix.re;
    const size_t steps = d.processing.steps.size();
    ASSERT_TRUE(run("bline(15, 64) bline(-1, 64)"));
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "Insufficient number of points");
    EXPECT_EQ(platform.boxes[0].text, "Try reducing the order of the polynomial");
    EXPECT_EQ(d.matrix.re, before);
    EXPECT_EQ(d.processing.steps.size(), steps);
    ASSERT_TRUE(run("poly(15, 64)"));  // clamped to 7, which fits
    EXPECT_EQ(platform.boxes.size(), 1u);
    EXPECT_NE(d.matrix.re, before);
}

TEST_F(PhaseBaselineCommands, AutomaticAndStraightBaselinesWaitForTheTransform) {
    SpectrumDocument& d = open("strychnine-1h");
    const auto fid = d.matrix.re;
    ASSERT_TRUE(run("abc() straight() aph()"));
    EXPECT_EQ(d.matrix.re, fid);
    EXPECT_EQ(lastBaseplane(d), nullptr);
    ASSERT_TRUE(run("wft() abc()"));
    ASSERT_NE(lastBaseplane(d), nullptr);
    ASSERT_TRUE(run("straight()"));
    // The line through the means of both ends: each end now averages to zero.
    const size_t n = d.matrix.re.size(), q = n / 20;
    double left = 0.0, right = 0.0;
    for (size_t i = 0; i < q; ++i) left += d.matrix.re[i], right += d.matrix.re[n - 1 - i];
    EXPECT_NEAR(left / q, 0.0, 1e-3 * std::fabs(*std::max_element(fid.begin(), fid.end())));
    EXPECT_NEAR(right / q, 0.0, 1e-3 * std::fabs(*std::max_element(fid.begin(), fid.end())));
}

TEST_F(PhaseBaselineCommands, AphLeavesMagnitudeSpectraAlone) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("wft() magn(true)"));
    const auto magnitude = d.matrix.re;
    const float phase0 = d.matrix.dims[1].phase0;
    ASSERT_TRUE(run("aph() aph(true)"));
    EXPECT_EQ(d.matrix.re, magnitude);
    EXPECT_EQ(d.matrix.dims[1].phase0, phase0);
}

// The first two costs of the search come from the data: a spectrum already phased is
// already at its best, and a second aph changes nothing.
TEST_F(PhaseBaselineCommands, AphOnAPhasedSpectrumKeepsItsPhase) {
    SpectrumDocument& d = open("cyclosporin-1h");
    ASSERT_TRUE(run("wft()"));
    ASSERT_LT(negativeShare(d.matrix.re), 0.001);
    const auto phased = d.matrix.re;
    const float phase0 = d.matrix.dims[1].phase0, phase1 = d.matrix.dims[1].phase1;
    ASSERT_TRUE(run("aph()"));
    EXPECT_EQ(d.matrix.dims[1].phase0, phase0);
    EXPECT_EQ(d.matrix.dims[1].phase1, phase1);
    EXPECT_EQ(d.matrix.re, phased);
}

// Naphthoic acid was acquired for 0.47 s over 35 ppm: wft() takes the spectrometer's 0.5 Hz
// broadening and 131072 points, which tames the truncation ringing (6.8 % negative without
// them). Broad humps under its lines, several ppm wide, pass the detector as baseline; the
// polynomial must go under them (3.2 % negative when it bends into them).
TEST_F(PhaseBaselineCommands, ProtonSpectraEndWithLittleNegativeArea) {
    for (const char* name : {"aspirin-1h", "strychnine-1h", "cyclosporin-1h", "naphtoicAcid-1h"}) {
        SpectrumDocument& d = openUnphased(name);
        ASSERT_TRUE(run("wft() aph() poly(7, 64)"));
        EXPECT_LT(negativeShare(d.matrix.re), 0.02) << name;
        EXPECT_TRUE(platform.boxes.empty());
    }
}

TEST_F(PhaseBaselineCommands, AspirinMatchesTheVendorProcessedSpectrum) {
    const auto vendor = testdata::vendorSpectrum("aspirin-1h-processed");
    ASSERT_TRUE(vendor);
    SpectrumDocument& d = openUnphased("aspirin-1h");
    ASSERT_TRUE(run("fill(32768) weight(0.3) wft() aph()"));
    EXPECT_GE(testdata::correlationOverPpm(d.matrix, *vendor), 0.99);
    ASSERT_TRUE(run("phase(90)"));
    EXPECT_LT(testdata::correlationOverPpm(d.matrix, *vendor), 0.5);
}

}  // namespace
}  // namespace zolt

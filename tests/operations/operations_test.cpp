// The operations behind the script commands, called as a menu command calls them.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "app/application.h"
#include "app/recording_platform.h"
#include "operations/baseline_operations.h"
#include "operations/data_operations.h"
#include "operations/document_operations.h"
#include "operations/phase_operations.h"
#include "operations/transform_operations.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

class Operations : public ::testing::Test {
protected:
    Operations() : app(platform) {}
    SpectrumDocument& open(const std::string& name) {
        EXPECT_EQ(app.open(testdata::bruker(name)), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    void expectSamePoints(const SpectrumDocument& menu, const SpectrumDocument& script) {
        EXPECT_EQ(menu.matrix.re, script.matrix.re);
        EXPECT_EQ(menu.matrix.im, script.matrix.im);
        for (int f = 1; f <= 3; ++f) {
            EXPECT_EQ(menu.matrix.dims[f].points, script.matrix.dims[f].points) << f;
            EXPECT_EQ(menu.matrix.dims[f].phase0, script.matrix.dims[f].phase0) << f;
            EXPECT_EQ(menu.matrix.dims[f].phase1, script.matrix.dims[f].phase1) << f;
        }
        EXPECT_EQ(menu.processing.steps.size(), script.processing.steps.size());
    }
    testing::RecordingPlatform platform;
    Application app;
};

// Two documents of the same data set: one through the operations, one through the commands
// (the script acts on the front document only).
TEST_F(Operations, AMenuCommandAndItsScriptTwinGiveTheSamePoints) {
    SpectrumDocument& menu = open("aspirin-1h");
    SpectrumDocument& script = open("aspirin-1h");
    setFillSize(menu, 32768, false);
    setWeighting(menu, {0.3f});
    EXPECT_TRUE(weightAndTransform(menu, {}).applied);
    EXPECT_TRUE(automaticPhase(menu, false).applied);
    EXPECT_TRUE(polynomialBaseline(menu, 7, 64).applied);
    ASSERT_TRUE(run("fill(32768) weight(0.3) wft() aph() poly(7, 64)"));
    expectSamePoints(menu, script);

    SpectrumDocument& menu2 = open("cyclosporin-hsqc");
    SpectrumDocument& script2 = open("cyclosporin-hsqc");
    weightAndTransform(menu2, {});
    weightAndTransform(menu2, {});
    automaticPhase(menu2, false);
    automaticBaseline(menu2);
    ASSERT_TRUE(run("wft() wft() aph() abc()"));
    expectSamePoints(menu2, script2);
    EXPECT_TRUE(platform.boxes.empty());
}

// The window a truncation of 300 gives: with both bells present it is their length (three
// times the points), alone the Traficante enhancement of 300 - 200 = 100 Hz. The dialog's
// ceiling of 250 would give 2.5 times the points and 50 Hz.
TEST_F(Operations, WeightKeepsATruncationAboveTheDialogsRangeAndTheTransformUsesIt) {
    for (const bool bells : {true, false}) {
        SpectrumDocument& d = open("aspirin-1h");
        const std::vector<float> fid = d.matrix.re;
        const size_t n = fid.size();
        ASSERT_TRUE(run(bells ? "fill(131072) weight(0, 0, 0, 0, 300) wft(true, false)"
                              : "fill(131072) weight(nil, nil, nil, nil, 300) wft(true, false)"));
        const FourierTransformStep& step = *findFourierTransformStep(d.processing, 1);
        EXPECT_EQ(step.weights[kWeightTruncation], 300.0f);
        ASSERT_EQ(d.matrix.re.size(), 131072u);  // weighted and zero-filled, not transformed
        const DimensionRecord& axis = d.matrix.dims[1];
        const double sw = static_cast<float>(axis.spectralWidth * axis.carrier);
        const double a = -std::numbers::pi * 100.0 / sw;
        const double scale = 32.0f / static_cast<float>(n);
        // The enhancement grows as exp(|a| k) towards the middle: compare where floats hold it.
        for (size_t k = 1; k < 1000; k += 37) {
            double w = scale;
            if ((step.flags & ft_flags::kQuadrature) && k % 2 == 1) w = -w;
            if (bells) {
                w *= std::pow(std::sin(k * std::numbers::pi / (3.0 * n)), 3);
            } else {
                const double e = std::exp(a * k), e2n = std::exp(2.0 * a * n);
                w *= e / (e * e + e2n / (e * e));
            }
            const double expected = fid[k] * w;
            EXPECT_NEAR(d.matrix.re[k], expected, 1e-4 * std::fabs(expected) + 1e-6)
                << (bells ? "bells" : "alone") << " at " << k;
        }
    }
}

// Values no dialog would let through reach the window as they are; the workflow still ends.
TEST_F(Operations, NonFiniteWeightsNeitherCrashNorHang) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("weight(0/0, 1/0, -1/0, 1e30, -1/0, 0/0) wft() aph() poly(7, 64) abc()"));
    EXPECT_EQ(d.source.highestTIndex, 0);
    EXPECT_TRUE(std::isnan(findFourierTransformStep(d.processing, 1)->weights[0]));
}

// A table whose x and y do not multiply to its length becomes one row; axes without a width
// or carrier still get a scale, those of the data set it came from are kept.
TEST_F(Operations, PastedValuesBecomeASpectrumOnTheAxesTheyCameFrom) {
    SpectrumDocument& source = open("aspirin-1h");
    const PlaneValues plane = currentPlane(source);
    ASSERT_EQ(plane.values.size(), source.matrix.re.size());
    SpectrumDocument fresh;
    fillFromValues(fresh, plane.values, 3, 5, source.matrix.dims);
    EXPECT_EQ(fresh.matrix.dims[1].points, plane.values.size());
    EXPECT_EQ(fresh.matrix.dims[1].spectralWidth, source.matrix.dims[1].spectralWidth);
    EXPECT_TRUE(fresh.matrix.realOnly());
    EXPECT_EQ(fresh.source.highestTIndex, 0);
    SpectrumDocument bare;
    fillFromValues(bare, {1, 2, 3, 4, 5, 6}, 3, 2);
    EXPECT_EQ(bare.matrix.xIndex, 2);
    EXPECT_EQ(bare.matrix.dims[2].points, 3u);
    EXPECT_EQ(bare.matrix.dims[1].points, 2u);
    EXPECT_EQ(bare.matrix.dims[1].spectralWidth, 10.0f);
    std::vector<float> wrongSize(7, 1.0f);
    EXPECT_FALSE(replaceRealParts(source, wrongSize));
    EXPECT_EQ(wrongSize.size(), 7u);  // refused values stay with the caller
}

// Only the row of 1-D data along its horizontal axis is cut or padded; a 2-D matrix keeps its
// points whatever size is asked, and processing waits for the frequency domain.
TEST_F(Operations, AxisChangesResizeOnly1DDataAndProcessingWaitsForTheTransform) {
    SpectrumDocument& cosy = open("cyclosporin-cosy");
    const size_t points = cosy.matrix.re.size();
    AxisChanges start;
    start.lowestPpm = -1.0f;
    EXPECT_TRUE(changeAxis(cosy, 2, start, 100u).applied);
    EXPECT_EQ(cosy.matrix.re.size(), points);
    EXPECT_EQ(cosy.matrix.dims[2].lowestPpm, -1.0f);
    EXPECT_FALSE(changeAxis(cosy, 4, start, std::nullopt).applied);
    EXPECT_FALSE(automaticBaseline(cosy).applied);
    EXPECT_FALSE(automaticPhase(cosy, false).applied);
    EXPECT_FALSE(straightBaseline(cosy).applied);

    SpectrumDocument fid;
    makeEmptyFid(fid, 0, {});  // clamped to one point
    EXPECT_EQ(fid.matrix.re.size(), 1u);
    EXPECT_TRUE(changeAxis(fid, 1, {}, 5000000u).applied);
    EXPECT_EQ(fid.matrix.re.size(), kMaxFidPoints);
    EXPECT_EQ(fid.matrix.im.size(), kMaxFidPoints);
    EXPECT_FALSE(polynomialBaseline(fid, 7, 64).applied);
}

}  // namespace
}  // namespace zolt

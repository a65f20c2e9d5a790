#include "processing/ft_step.h"

#include <gtest/gtest.h>

#include <cmath>

#include "processing/ft_defaults.h"
#include "processing/ft_pipeline.h"
#include "processing/phase.h"
#include "test_data.h"

namespace zolt {
namespace {

TEST(FtStep, FtSizesRoundUpToThePowersOfTwoOffered) {
    EXPECT_EQ(roundFtSize(1000), 1024u);
    EXPECT_EQ(roundFtSize(1024), 1024u);
    EXPECT_EQ(roundFtSize(1025), 2048u);
    EXPECT_EQ(roundFtSize(0), 32u);
    EXPECT_EQ(roundFtSize(10'000'000), 1u << 20);
    EXPECT_EQ(roundFtSize(10'000'000, 524288), 524288u);  // the fill command's ceiling
    EXPECT_EQ(roundFtSize(uint64_t{1} << 40), 1u << 20);
}

TEST(FtStep, DialogClampsBringEveryFieldIntoRange) {
    FourierTransformStep s;
    s.weights = {200.0f, -151.0f, 149.0f, std::nanf(""), 0.0f, 4.0f};
    s.maxIstIterations = 5000;
    s.ftSize = 3000;
    clampFourierTransformStep(s);
    EXPECT_EQ(s.weights, (std::array<float, 6>{150.0f, -150.0f, 149.0f, 0.0f, 1.0f, 3.0f}));
    EXPECT_EQ(s.maxIstIterations, 2000);
    EXPECT_EQ(s.ftSize, 4096u);
    s.weights[kWeightTruncation] = 300.0f;
    s.weights[kWeightFirstPoint] = -1.0f;
    s.maxIstIterations = 0;
    clampFourierTransformStep(s);
    EXPECT_EQ(s.weights[kWeightTruncation], 250.0f);
    EXPECT_EQ(s.weights[kWeightFirstPoint], 0.0f);
    EXPECT_EQ(s.maxIstIterations, 0);  // no reconstruction stays off
    s.maxIstIterations = -4;
    clampFourierTransformStep(s);
    EXPECT_EQ(s.maxIstIterations, 1);
}

// Naphthoic acid keeps the spectrometer's 0.5 Hz broadening and 131072 points: a step made on
// demand (by a setting command) must be the one the opener makes, not a bare default.
TEST(FtStep, AStepMadeOnDemandCarriesTheSpectrometersWindow) {
    auto doc = testdata::openExperiment("naphtoicAcid-1h");
    ASSERT_TRUE(doc);
    const FourierTransformStep opened = *findFourierTransformStep(doc->processing, 1);
    EXPECT_EQ(opened.ftSize, 131072u);
    ASSERT_TRUE(opened.flags & ft_flags::kExponential);
    EXPECT_FLOAT_EQ(opened.weights[kWeightExponential], 0.5f);

    doc->processing.steps.clear();
    FourierTransformStep& made = fourierTransformStep(*doc, 1);
    EXPECT_EQ(made.flags, opened.flags);
    EXPECT_EQ(made.weights, opened.weights);
    EXPECT_EQ(made.ftSize, opened.ftSize);
    EXPECT_EQ(&fourierTransformStep(*doc, 1), &made);  // found, not made twice
    addDefaultFourierTransformSteps(*doc);
    EXPECT_EQ(doc->processing.steps.size(), 1u);
}

// todo() may name an axis a 1-D spectrum does not have; a setting aimed at it still finds a
// (blank) step, and the opener's defaults never add one there.
TEST(FtStep, AnAxisWithoutDefaultsGetsABlankStepOnlyWhenAsked) {
    auto doc = testdata::openExperiment("aspirin-1h");
    ASSERT_TRUE(doc);
    doc->source.highestTIndex = 2;
    addDefaultFourierTransformSteps(*doc);
    EXPECT_EQ(findFourierTransformStep(doc->processing, 2), nullptr);
    const size_t steps = doc->processing.steps.size();
    EXPECT_EQ(fourierTransformStep(*doc, 2).ftSize, 0u);
    EXPECT_EQ(doc->processing.steps.size(), steps + 1);
    EXPECT_NE(findFourierTransformStep(doc->processing, 2), nullptr);
}

// The transform applies the stored phase plus the filter delay's first order, but the record
// keeps what was stored: phase 1 without the delay, phase 0 wrapped.
TEST(FtStep, TheTransformKeepsTheStoredPhaseInTheRecord) {
    auto doc = testdata::openExperiment("cyclosporin-1h");
    ASSERT_TRUE(doc);
    ASSERT_LT(doc->matrix.dims[1].timeShift, -1.0f);
    doc->matrix.dims[1].phase0 = 7.0f;
    doc->matrix.dims[1].phase1 = 0.25f;
    auto plain = testdata::openExperiment("cyclosporin-1h");
    plain->matrix.dims[1].phase0 = 0.0f;
    plain->matrix.dims[1].phase1 = 0.0f;
    ASSERT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    ASSERT_EQ(transformNextDimension(*plain).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc->matrix.dims[1].phase0, wrapPhase(7.0));
    EXPECT_EQ(doc->matrix.dims[1].phase1, 0.25f);
    // Both carry the delay's compensation; they differ by exactly the stored phase.
    changePhase(plain->matrix, 0, 1, wrapPhase(7.0), 0.25);
    for (size_t k = 0; k < doc->matrix.re.size(); k += 4099)
        EXPECT_NEAR(doc->matrix.re[k], plain->matrix.re[k],
                    1e-3 * std::fabs(plain->matrix.re[k]) + 1e-2);
}

}  // namespace
}  // namespace zolt

// The processing log of real two-dimensional experiments, opened and transformed as the
// program does it, read to the character.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "app/document_opening.h"
#include "processing/apodization.h"
#include "processing/ft_defaults.h"
#include "processing/ft_pipeline.h"
#include "processing/processing_log.h"
#include "test_data.h"

namespace zolt {
namespace {

std::unique_ptr<SpectrumDocument> open(const std::string& name) {
    OpenFailure failure;
    auto doc = readDocument(testdata::bruker(name), Preferences{}, failure);
    EXPECT_TRUE(doc) << name << ": " << failure.caption << ": " << failure.text;
    return doc;
}

void transformBoth(SpectrumDocument& doc) {
    ASSERT_EQ(doc.source.highestTIndex, 2);
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc.source.highestTIndex, 0);
}

std::string logOf(const SpectrumDocument& doc) {
    return processingLog(doc.processing, [&](int d) { return int64_t{doc.matrix.dims[d].points}; });
}

// Axis fd transformed sets bit number 8 d: 0x100 for f1, 0x10000 for f2.
constexpr uint32_t kF1Transformed = 0x100, kF2Transformed = 0x10000;
constexpr uint32_t kBothTransformed = kF1Transformed | kF2Transformed;

TEST(ProcessingLogRealData, EchoAntiEchoHsqcNamesItsShufflingOnF1) {
    // f2: TD 1024 (512 complex points, AQ_mod DQD); f1: TD 256 read as 128 echo / anti-echo
    // pairs (FnMODE 6). Both axes take the spectrometer's processing: squared cosine bells
    // (WDW 4, SSB 2) and 1024 points (SI).
    auto doc = open("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    transformBoth(*doc);
    EXPECT_EQ(doc->processing.doneMask, kBothTransformed);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\nWeights along f1"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f1 using 1024 points\r\n"
              "[echo-antiecho]\r\n"
              "quadrature detection; "
              "\r\n\r\n\r\n");
}

TEST(ProcessingLogRealData, MagnitudeCosyListsConjugationAndMagnitudeOnF1) {
    // f2: TD 2048 (1024 complex points); f1: TD 128 of one phase-modulated signal (FnMODE QF),
    // shown in magnitude. Both axes take the spectrometer's sine bells (WDW 3, SSB 0) and its
    // 1024 points.
    auto doc = open("cyclosporin-cosy");
    ASSERT_TRUE(doc);
    transformBoth(*doc);
    EXPECT_EQ(doc->processing.doneMask, kBothTransformed);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\nWeights along f1"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\n\r\nFourier Transform along f1 using 1024 points\r\n"
              "quadrature detection; conjugation; magnitude representation; "
              "\r\n\r\n\r\n");
}

TEST(ProcessingLogRealData, WeightsChosenBeforeTheTransformPrecedeEachAxis) {
    // What a user adds for a COSY to the spectrometer's sine bells: broadening on f2 and a
    // squared, shifted bell with a cut and a halved first point on f1; f2 zero-filled to 2048.
    auto doc = open("cyclosporin-cosy");
    ASSERT_TRUE(doc);
    using namespace ft_flags;
    FourierTransformStep* f2 = findFourierTransformStep(doc->processing, 2);
    FourierTransformStep* f1 = findFourierTransformStep(doc->processing, 1);
    ASSERT_TRUE(f2 && f1);
    f2->ftSize = 2048;
    f2->flags |= kSineBell | kExponential;
    f2->weights[kWeightSineBell] = 0.0f;
    f2->weights[kWeightExponential] = 0.25f;
    f1->flags |= kSquaredSineBell | kTruncation | kFirstPoint;
    f1->weights[kWeightSquaredSine] = 30.0f;
    f1->weights[kWeightTruncation] = 87.5f;
    f1->weights[kWeightFirstPoint] = 0.5f;
    transformBoth(*doc);
    EXPECT_EQ(doc->matrix.dims[2].points, 2048u);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nexponential broadening = 0.25 Hz"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 2048 points\r\n"
              "quadrature detection; "
              "\r\n\r\nWeights along f1"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\nsquared sine bell shifted by 30.0 degrees"
              "\r\ncut after 87.5%"
              "\r\nfirst point multiplied by 0.5"
              "\r\n\r\nFourier Transform along f1 using 1024 points\r\n"
              "quadrature detection; conjugation; magnitude representation; "
              "\r\n\r\n\r\n");
}

TEST(ProcessingLogRealData, OnlyTheTransformedAxisIsLogged) {
    auto doc = open("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    EXPECT_EQ(logOf(*doc), "====  Processing Parameters  ====\r\n\r\n\r\n");
    ASSERT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc->processing.doneMask, kF2Transformed);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\n\r\n");
}

}  // namespace
}  // namespace zolt

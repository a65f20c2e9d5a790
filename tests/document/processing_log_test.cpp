#include "document/processing_log.h"

#include <gtest/gtest.h>

#include <string>

#include "test_data.h"

namespace zolt {
namespace {

using namespace ft_flags;
using done_mask::predicted;
using done_mask::suppressed;
using done_mask::transformed;

ProcessingStep step(int dimension, StepData data) {
    ProcessingStep s;
    s.dimension = static_cast<uint8_t>(dimension);
    s.data = std::move(data);
    return s;
}

int64_t points(int d) {
    return d == 2 ? 1024 : 512;
}

// A phase-sensitive 2-D spectrum: sine bells on both axes, forward prediction along f1,
// a restricted Whittaker baseline along f2 and a polynomial one along f1.
ProcessingRecord twoDimensional() {
    FourierTransformStep f2{.ftSize = 1024,
                            .flags = kQuadrature | kApplyWeights | kSineBell | kFirstPoint};
    f2.weights[kWeightSineBell] = 90.0f;
    f2.weights[kWeightFirstPoint] = 0.5f;
    FourierTransformStep f1{
        .ftSize = 512,
        .flags = kQuadrature | kApplyWeights | kSquaredSineBell | kLinearPrediction | kHypercomplex,
        .shuffling = Shuffling::PhaseSensitive};
    f1.weights[kWeightSquaredSine] = 90.0f;
    const LinearPredictionStep lp{{32, 0, 0}, {128, 0, 0}, {129, 0, 0}, {256, 0, 0}, 1};
    const BaseplaneStep whittaker{.fromPpm = 10.0f,
                                  .toPpm = -0.5f,
                                  .function = 0,
                                  .order = 3,
                                  .restricted = 1,
                                  .movingAverage = 64};
    const BaseplaneStep polynomial{.function = 1, .order = 7, .movingAverage = 32};
    ProcessingRecord r;
    r.steps = {step(2, f2),        step(1, lp),         step(1, f1),
               step(2, whittaker), step(1, polynomial), step(2, PolynomialStep{1, {0.5, -0.0126}})};
    r.doneMask = transformed(1) | transformed(2) | predicted(1) | done_mask::kSymmetrizeSquare |
                 done_mask::kTilting;
    return r;
}

TEST(ProcessingLog, TwoDimensionalRecordReadsToTheCharacter) {
    EXPECT_EQ(processingLog(twoDimensional(), points),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsine bell shifted by 90.0 degrees"
              "\r\nfirst point multiplied by 0.5"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\nLinear Prediction (SVD) along f1"
              "\r\npoints from no. 129 to no. 256 predicted using 128 exp. points and assuming "
              "32 signals"
              "\r\n\r\nWeights along f1"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f1 using 512 points\r\n"
              "[phase sensitive]\r\n"
              "quadrature detection; LP filling; "
              "\r\n\r\nAutomatic Polynomial Baseline Correction along f1 of order 7 and moving "
              "average filter 32"
              "\r\n\r\nBaseline Correction along f2 by a Whittaker Smoother with lambda = 256 "
              "and moving average filter = 64"
              "\r\nrestricted from 10.000 to -0.500 ppm"
              "\r\n\r\nPolynomial Baseline Correction with the following coefficients :\r\n"
              "0.500 ; -0.013 ; "
              "\r\n\r\nsymmetrization of the square matrix"
              "\r\n\r\ntilting"
              "\r\n\r\n\r\n");
}

TEST(ProcessingLog, DoneMaskDecidesWhichBlocksAppear) {
    ProcessingRecord r = twoDimensional();
    r.doneMask = 0;
    const std::string bare = processingLog(r, points);
    // Baseline steps are listed whatever the mask says; transforms and predictions are not.
    EXPECT_EQ(bare.find("Fourier"), std::string::npos);
    EXPECT_EQ(bare.find("Prediction"), std::string::npos);
    EXPECT_NE(bare.find("Whittaker"), std::string::npos);

    ProcessingRecord empty;
    empty.doneMask = transformed(1) | suppressed(2) | done_mask::kDirectCovariance |
                     done_mask::kIndirectCovariance | done_mask::kT1NoiseRemoval |
                     done_mask::kSymmetrizeRectangular;
    EXPECT_EQ(processingLog(empty, points),
              "====  Processing Parameters  ===="
              "\r\n\r\nremoval of t-1 noise"
              "\r\n\r\nsymmetrization of the rectangular matrix"
              "\r\n\r\ndirect covariance"
              "\r\n\r\nindirect covariance"
              "\r\n\r\n\r\n");
}

TEST(ProcessingLog, WeightsNeedBothApplyAndAPresentParameter) {
    FourierTransformStep ft;
    ft.ftSize = 65536;
    ft.flags = kApplyWeights;
    ft.weights[kWeightExponential] = 1.0f;  // not present
    ProcessingRecord r{{step(1, ft)}, transformed(1)};
    const std::string noParameter = processingLog(r, points);
    EXPECT_EQ(noParameter.find("Weights"), std::string::npos);

    std::get<FourierTransformStep>(r.steps[0].data).flags = kExponential | kGaussian;
    EXPECT_EQ(processingLog(r, points).find("Weights"), std::string::npos);

    auto& all = std::get<FourierTransformStep>(r.steps[0].data);
    all.flags = kApplyWeights | kAnyWeighting | kQuadrature | kConjugate | kRealFt |
                kLinearPrediction | kMagnitude;
    all.weights = {0.3f, -1.5f, 45.0f, 60.0f, 87.5f, 0.45f};
    all.shuffling = Shuffling::EchoAntiEcho;
    all.maxIstIterations = 250;
    EXPECT_EQ(processingLog(r, points),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f1"
              "\r\nexponential broadening = 0.30 Hz"
              "\r\ngaussian multiplication = -1.50 Hz"
              "\r\nsine bell shifted by 45.0 degrees"
              "\r\nsquared sine bell shifted by 60.0 degrees"
              "\r\ncut after 87.5%"
              "\r\nfirst point multiplied by 0.4"  // 0.45f lies below 0.45
              "\r\n\r\niterative soft thresholding with up to 250 iterations"
              "\r\n\r\nFourier Transform along f1 using 65536 points\r\n"
              "[echo-antiecho]\r\n"
              "quadrature detection; conjugation; real FT; LP filling; magnitude representation; "
              "\r\n\r\n\r\n");
}

TEST(ProcessingLog, SuppressionAndDosyBlocks) {
    ProcessingRecord r;
    r.steps = {step(2, HighPassFilterStep{{4.7f, 0.0f}, 5}),
               step(1, MonoExponentialFitStep{1e-11f, 1e-8f, 25.0f, 0.5f, 8.5f, 16, 3, 2, true}),
               step(1, QrDosyStep{{2.1e-10f, 5e-10f}, 30.7f, 0.2f, 9.8f, 1, 7, 5}),
               step(3, LinearPredictionStep{{4, 0, 8}, {16, 0, 32}, {1, 0, 3}, {2, 0, 4}, 3})};
    r.doneMask = suppressed(2) | predicted(3) | done_mask::kDosyMonoExponential;
    EXPECT_EQ(processingLog(r, points),
              "====  Processing Parameters  ===="
              "\r\n\r\nLinear Prediction (Burg) along f3"
              "\r\npoints from no. 1 to no. 2 predicted using 16 exp. points and assuming 4 "
              "signals"
              "\r\npoints from no. 3 to no. 4 predicted using 32 exp. points and assuming 8 "
              "signals"
              "\r\n\r\nSignal(s) Suppressed along f2 at ppm = 4.700 ; 0.000 ; "
              "\r\nselectivity = 5"
              "\r\n\r\nDOSY monoexponential model:"
              "\r\nD from 1.000e-11 to 1.000e-08"
              "\r\nfrom 0.500 to 8.500 ppm"
              "\r\nacceptable signal / noise = 25.000"
              "\r\nrows = 16; smoothing = 2; Max width = 3 points"
              "\r\n\r\nDOSY multi-exponential decomposition:\r\nD = 2.10000e-10 ; 5.00000e-10 ; "
              "\r\nfrom 0.200 to 9.800 ppm"
              "\r\nacceptable signal / noise = 30"
              "\r\nsmoothing = 1"
              "\r\nIgnore components under 5% of the max"
              "\r\n\r\n\r\n");

    // Without its bit the monoexponential block is left out; QR-DOSY has no bit of its own.
    r.doneMask = 0;
    const std::string log = processingLog(r, points);
    EXPECT_EQ(log.find("monoexponential"), std::string::npos);
    EXPECT_NE(log.find("multi-exponential"), std::string::npos);
}

// ---- real two-dimensional experiments, opened and transformed as the program does it ----

std::string logOf(const SpectrumDocument& doc) {
    return processingLog(doc.processing, [&](int d) { return int64_t{doc.matrix.dims[d].points}; });
}

// Axis fd transformed sets bit number 8 d: 0x100 for f1, 0x10000 for f2.
constexpr uint32_t kBothTransformed = 0x100 | 0x10000;

TEST(ProcessingLogRealData, EchoAntiEchoHsqcNamesItsShufflingOnF1) {
    // f2: TD 1024 (512 complex points, AQ_mod DQD); f1: TD 256 read as 128 echo / anti-echo
    // pairs (FnMODE 6). Both axes take the spectrometer's processing: squared cosine bells
    // (WDW 4, SSB 2) and 1024 points (SI).
    const auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
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
    const auto doc = testdata::openTransformed("cyclosporin-cosy");
    ASSERT_TRUE(doc);
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

}  // namespace
}  // namespace zolt

#include "processing/ft_pipeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "app/document_opening.h"
#include "processing/ft_step.h"
#include "processing/linear_prediction.h"
#include "test_data.h"

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;

DimensionRecord axis(uint32_t n, float widthPpm = 10.0f, float carrier = 500.0f) {
    DimensionRecord d;
    d.points = n;
    d.spectralWidth = widthPpm;
    d.lowestPpm = -1.0f;
    d.carrier = carrier;
    setAtom(d, "H");
    d.isotope = 1;
    return d;
}

FourierTransformStep& stepOf(SpectrumDocument& doc, int f, uint32_t size, uint16_t flags,
                             Shuffling shuffling = Shuffling::None) {
    FourierTransformStep s;
    s.ftSize = size;
    s.flags = flags;
    s.shuffling = shuffling;
    doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(f), s});
    return std::get<FourierTransformStep>(doc.processing.steps.back().data);
}

// A 1-D FID of n complex points: point m is value(m).
template <class Fn>
SpectrumDocument fid1D(size_t n, Fn value) {
    SpectrumDocument doc;
    doc.source.dims[1] = axis(static_cast<uint32_t>(n));
    doc.source.highestTIndex = 1;
    doc.matrix.dims = doc.source.dims;
    doc.matrix.contiguous = 1;
    doc.matrix.re.resize(n);
    doc.matrix.im.resize(n);
    for (size_t m = 0; m < n; ++m) {
        const std::complex<double> v = value(m);
        doc.matrix.re[m] = static_cast<float>(v.real());
        doc.matrix.im[m] = static_cast<float>(v.imag());
    }
    return doc;
}

// A 2-D matrix whose f2 is already transformed (cols points) and whose f1 holds rows time
// points: point (row, col) is re2D + i im2D.
float re2D(uint32_t r, uint32_t c) {
    return r * 100.0f + c + 1.0f;
}
float im2D(uint32_t r, uint32_t c) {
    return -(r * 7.0f + c);
}

SpectrumDocument indirect2D(uint32_t rows, uint32_t cols) {
    SpectrumDocument doc;
    doc.source.dims[2] = axis(cols);
    doc.source.dims[1] = axis(rows, 40.0f, 125.0f);
    doc.source.highestTIndex = 1;
    doc.matrix.dims = doc.source.dims;
    doc.matrix.contiguous = 2;
    for (uint32_t r = 0; r < rows; ++r)
        for (uint32_t c = 0; c < cols; ++c) {
            doc.matrix.re.push_back(re2D(r, c));
            doc.matrix.im.push_back(im2D(r, c));
        }
    return doc;
}

size_t tallestModulus(const SpectrumMatrix& m) {
    size_t peak = 0;
    for (size_t k = 1; k < m.re.size(); ++k)
        if (std::hypot(m.re[k], m.im[k]) > std::hypot(m.re[peak], m.im[peak])) peak = k;
    return peak;
}

TEST(FtPipeline, LongDataAreCutBeforeWeightingAndShortDataZeroFilled) {
    auto ramp = [](size_t m) { return std::complex<double>(1.0 + m % 7, -(m % 5 + 0.5)); };
    auto longer = fid1D(65536, ramp);
    stepOf(longer, 1, 32768, ft_flags::kStopBeforeTransform);
    const auto cut = transformNextDimension(longer);
    EXPECT_EQ(cut.outcome, FtOutcome::StoppedBeforeTransform);
    EXPECT_FALSE(cut.proceeds());
    ASSERT_EQ(longer.matrix.re.size(), 32768u);
    EXPECT_EQ(longer.matrix.dims[1].points, 32768u);
    const float scale = 32.0f / 65536.0f;  // the scale keeps the points the transform began with
    for (size_t m : {0u, 1u, 32767u}) {
        EXPECT_FLOAT_EQ(longer.matrix.re[m], static_cast<float>(ramp(m).real()) * scale);
        EXPECT_FLOAT_EQ(longer.matrix.im[m], static_cast<float>(ramp(m).imag()) * scale);
    }
    EXPECT_EQ(longer.source.highestTIndex, 1);  // still a time-domain axis

    auto shorter = fid1D(65536, ramp);
    stepOf(shorter, 1, 131072, ft_flags::kStopBeforeTransform);
    transformNextDimension(shorter);
    ASSERT_EQ(shorter.matrix.re.size(), 131072u);
    EXPECT_FLOAT_EQ(shorter.matrix.re[65535], static_cast<float>(ramp(65535).real()) * scale);
    for (size_t m = 65536; m < 131072; ++m) ASSERT_EQ(shorter.matrix.re[m], 0.0f) << m;
    EXPECT_EQ(shorter.matrix.workRow.size(), 131072u);
}

TEST(FtPipeline, PhaseSensitivePairsBecomeHalfAsManyComplexPoints) {
    auto doc = indirect2D(512, 4);
    stepOf(doc, 1, 1024, ft_flags::kStopBeforeTransform, Shuffling::PhaseSensitive);
    transformNextDimension(doc);
    const auto& m = doc.matrix;
    EXPECT_EQ(m.contiguous, 1);
    EXPECT_EQ(m.dims[1].points, 1024u);
    ASSERT_EQ(m.re.size(), 4u * 1024u);
    const float scale = 32.0f / 512.0f;
    for (uint32_t c = 0; c < 4; ++c) {
        for (uint32_t k : {0u, 1u, 255u}) {
            EXPECT_FLOAT_EQ(m.re[c * 1024 + k], re2D(2 * k, c) * scale);
            EXPECT_FLOAT_EQ(m.im[c * 1024 + k], re2D(2 * k + 1, c) * scale);
        }
        for (uint32_t k = 256; k < 1024; ++k) ASSERT_EQ(m.re[c * 1024 + k], 0.0f);
    }
}

TEST(FtPipeline, SizesBelow32LeaveTheAxisUntransformedWithoutPhase) {
    auto doc = fid1D(64, [](size_t m) { return std::complex<double>(m, 1.0); });
    doc.matrix.dims[1].phase0 = 1.0f;
    doc.matrix.dims[1].phase1 = 2.0f;
    const auto before = doc.matrix.re;
    stepOf(doc, 1, 16, ft_flags::kQuadrature);
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::LeftUntransformed);
    EXPECT_EQ(doc.matrix.dims[1].phase0, 0.0f);
    EXPECT_EQ(doc.matrix.dims[1].phase1, 0.0f);
    EXPECT_EQ(doc.matrix.re, before);
    EXPECT_EQ(doc.source.highestTIndex, 0);
}

TEST(FtPipeline, TooLargeASpectrumIsRefusedWithTheDataUntouched) {
    SpectrumDocument doc;
    doc.source.dims[2] = axis(64);
    doc.source.dims[1] = axis(1024);
    doc.source.highestTIndex = 2;
    doc.matrix.dims = doc.source.dims;
    doc.matrix.contiguous = 2;
    doc.matrix.re.assign(64 * 1024, 1.5f);
    doc.matrix.im.assign(64 * 1024, -0.5f);
    stepOf(doc, 2, 1u << 20, ft_flags::kQuadrature);  // 2^20 x 1024 floats per array
    const auto result = transformNextDimension(doc);
    EXPECT_EQ(result.outcome, FtOutcome::TooLarge);
    ASSERT_TRUE(result.message);
    EXPECT_EQ(result.message->caption, "The size of this spectrum can't be handled");
    EXPECT_EQ(result.message->text, "Try reducing the size of the spectrum");
    EXPECT_EQ(doc.matrix.re, std::vector<float>(64 * 1024, 1.5f));
    EXPECT_EQ(doc.matrix.im, std::vector<float>(64 * 1024, -0.5f));
    EXPECT_EQ(doc.matrix.dims[2].points, 64u);
    EXPECT_EQ(doc.source.highestTIndex, 2);
}

TEST(FtPipeline, DcOffsetIsTakenFromTheTailAndSparesTheFilterDelay) {
    auto doc = fid1D(1024, [](size_t m) { return std::complex<double>(m < 960 ? 5.0 : 2.0, 1.0); });
    doc.matrix.dims[1].timeShift = -67.98f;
    stepOf(doc, 1, 1024, ft_flags::kStopBeforeTransform | ft_flags::kSubtractDc);
    transformNextDimension(doc);
    const float scale = 32.0f / 1024.0f;
    EXPECT_FLOAT_EQ(doc.matrix.re[66], 5.0f * scale);  // before the first point: untouched
    EXPECT_FLOAT_EQ(doc.matrix.re[67], 3.0f * scale);  // the mean of the last 64 points is 2
    EXPECT_FLOAT_EQ(doc.matrix.re[1000], 0.0f);
    EXPECT_FLOAT_EQ(doc.matrix.im[500], 0.0f);

    auto indirect = indirect2D(64, 4);
    auto& step = stepOf(indirect, 1, 64, ft_flags::kStopBeforeTransform | ft_flags::kSubtractDc);
    transformNextDimension(indirect);
    EXPECT_FALSE(step.flags & ft_flags::kSubtractDc);  // only ever acts on the direct axis
    EXPECT_FLOAT_EQ(indirect.matrix.re[1], re2D(1, 0) * 0.5f);
}

TEST(FtPipeline, RealTransformRunsUpwardUnlessConjugated) {
    // 2n real samples of a cosine at 100 / 2n of the sampling rate, packed in n pairs.
    const size_t n = 512;
    auto cosine = [](size_t j) { return std::cos(2 * kPi * 100.0 * double(j) / 1024.0); };
    auto packed = [&](size_t m) { return std::complex<double>(cosine(2 * m), cosine(2 * m + 1)); };
    for (bool conjugate : {false, true}) {
        auto doc = fid1D(n, packed);
        stepOf(doc, 1, n, ft_flags::kRealFt | (conjugate ? ft_flags::kConjugate : 0));
        transformNextDimension(doc);
        EXPECT_EQ(tallestModulus(doc.matrix), conjugate ? n - 100 : 100u);
    }
}

TEST(FtPipeline, DeletingLeadingPointsClearsTheTimeShift) {
    auto doc = fid1D(64, [](size_t m) { return std::complex<double>(m, 0.0); });
    doc.matrix.dims[1].timeShift = -3.2f;
    auto& step = stepOf(doc, 1, 64, ft_flags::kStopBeforeTransform);
    step.deleteFirst = 3;
    transformNextDimension(doc);
    EXPECT_EQ(doc.matrix.dims[1].timeShift, 0.0f);
    EXPECT_FLOAT_EQ(doc.matrix.re[0], 3.0f * 0.5f);
    EXPECT_EQ(doc.matrix.re[61], 0.0f);
}

TEST(FtPipeline, PredictionContinuesADecayingSignal) {
    auto signal = [](size_t m) {
        return std::polar(std::exp(-0.004 * m), 0.7 * m) +
               std::polar(0.5 * std::exp(-0.01 * m), -1.9 * m);
    };
    EXPECT_EQ(predictionOrder(256), 16u);
    EXPECT_EQ(predictionOrder(4096), 24u);
    EXPECT_EQ(predictionOrder(15), 0u);
    auto doc = fid1D(256, signal);
    stepOf(doc, 1, 512, ft_flags::kStopBeforeTransform | ft_flags::kLinearPrediction);
    transformNextDimension(doc);
    const double scale = 32.0 / 256.0;
    for (size_t m : {256u, 300u, 511u}) {
        EXPECT_NEAR(doc.matrix.re[m], signal(m).real() * scale, 1e-3) << m;
        EXPECT_NEAR(doc.matrix.im[m], signal(m).imag() * scale, 1e-3) << m;
    }
}

// The sampled increments land on the full grid where the list puts them; the rest stays 0.
TEST(FtPipeline, NusRowsGoWhereTheSamplingListPutsThem) {
    const auto dir = testdata::freshTempDir("nus");
    std::ofstream(dir + "/nuslist") << "3\n1\n";
    auto doc = indirect2D(4, 32);
    doc.source.rawPath = dir + "/ser";
    doc.matrix.dims[1].pointsAfterNus = 8;
    stepOf(doc, 1, 32, ft_flags::kStopBeforeTransform);
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::StoppedBeforeTransform);
    const float scale = 32.0f / 8.0f;
    for (uint32_t c : {0u, 31u}) {
        const float* row = doc.matrix.re.data() + c * 32;
        EXPECT_FLOAT_EQ(row[6], re2D(0, c) * scale);
        EXPECT_FLOAT_EQ(row[7], re2D(1, c) * scale);
        EXPECT_FLOAT_EQ(row[2], re2D(2, c) * scale);
        EXPECT_FLOAT_EQ(row[3], re2D(3, c) * scale);
        for (int k : {0, 1, 4, 5, 8, 31}) EXPECT_EQ(row[k], 0.0f) << k;
    }
    std::filesystem::remove_all(dir);
}

TEST(FtPipeline, NusListsOnlyHoldIncrementNumbers) {
    const auto dir = testdata::freshTempDir("nuslist");
    std::ofstream(dir + "/good") << "0\n85\n 294\n";
    std::ofstream(dir + "/bad") << "0\n-3\n";
    std::ofstream(dir + "/empty") << "";
    EXPECT_EQ(readNusList(dir + "/good"), (std::vector<uint32_t>{0, 85, 294}));
    EXPECT_FALSE(readNusList(dir + "/bad"));
    EXPECT_FALSE(readNusList(dir + "/empty"));
    EXPECT_FALSE(readNusList(dir + "/absent"));
    std::filesystem::remove_all(dir);
}

// The two refusals of the NUS entry, with their exact caption and text, leave the data as they
// were. Two pairs of sampled rows of 32 points on a grid of 2^25 rows: 2^30 floats per array.
TEST(FtPipeline, FullGridBeyondTheLimitIsRefusedAsInsufficientMemory) {
    const std::string dir = testdata::freshTempDir("nus-memory");
    std::ofstream(dir + "/nuslist") << "0\n16777215\n";
    auto doc = indirect2D(4, 32);
    doc.source.rawPath = dir + "/ser";
    doc.matrix.dims[1].pointsAfterNus = 1u << 25;
    stepOf(doc, 1, 32, ft_flags::kQuadrature);
    const SpectrumMatrix before = doc.matrix;

    const FtResult result = transformNextDimension(doc);
    std::filesystem::remove_all(dir);
    EXPECT_EQ(result.outcome, FtOutcome::NusNoMemory);
    ASSERT_TRUE(result.message);
    EXPECT_EQ(result.message->caption, "Insufficient Memory");
    EXPECT_EQ(result.message->text,
              "Could not allocate the expanded matrix for NUS reconstruction. Try reducing the "
              "Zero Filling or closing other spectra.");
    EXPECT_EQ(doc.matrix.re, before.re);
    EXPECT_EQ(doc.matrix.im, before.im);
    EXPECT_EQ(doc.matrix.dims[1].points, 4u);
    EXPECT_EQ(doc.source.highestTIndex, 1);
}

// ---- real spectrometer data ----

TEST(FtPipeline, RealHsqcWithoutItsSamplingListStaysInTheTimeDomain) {
    const std::string original = testdata::bruker("hsqc-nus");
    const std::string dir = testdata::freshTempDir("nus-missing");
    for (const char* file : {"acqus", "acqu2s", "pulseprogram", "ser"})
        std::filesystem::copy_file(original + "/" + file, dir + "/" + file);
    Message failure;
    auto doc = readDocument(dir, Preferences{}, failure);
    ASSERT_TRUE(doc) << failure.text;
    ASSERT_EQ(doc->matrix.dims[1].pointsAfterNus, 1024u);
    ASSERT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    const SpectrumMatrix before = doc->matrix;

    const FtResult missing = transformNextDimension(*doc);
    EXPECT_EQ(missing.outcome, FtOutcome::NusListMissing);
    ASSERT_TRUE(missing.message);
    EXPECT_EQ(missing.message->caption, "Missing NUS Metadata");
    EXPECT_EQ(missing.message->text,
              "The file 'nuslist' is missing or unreadable. This file is required to map the "
              "experimental points onto the full grid.");
    EXPECT_EQ(doc->matrix.re, before.re);
    EXPECT_EQ(doc->matrix.im, before.im);
    EXPECT_EQ(doc->matrix.dims[1].points, 256u);
    EXPECT_EQ(doc->source.highestTIndex, 1);

    // With the list beside the data the same document goes on to the full grid.
    std::filesystem::copy_file(original + "/nuslist", dir + "/nuslist");
    EXPECT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc->matrix.dims[1].points, findFourierTransformStep(doc->processing, 1)->ftSize);
    EXPECT_EQ(doc->source.highestTIndex, 0);
    std::filesystem::remove_all(dir);
}

bool nearAny(double ppm, const std::vector<double>& list, double tolerance) {
    return std::any_of(list.begin(), list.end(),
                       [&](double p) { return std::abs(p - ppm) <= tolerance; });
}

TEST(FtPipeline, CyclosporinCrossPeaksSitOnTheProtonLines) {
    const auto proton = testdata::openTransformed("cyclosporin-1h");
    ASSERT_TRUE(proton);
    std::vector<double> lines;
    const auto tops = testdata::strongestPeaks(proton->matrix, 1000, true);
    for (const auto& p : tops)
        if (p.height > 0.02 * tops[0].height) lines.push_back(p.xPpm);
    ASSERT_GT(lines.size(), 20u);

    const auto hsqc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(hsqc);
    EXPECT_EQ(hsqc->matrix.dims[0].points, 2u);  // echo / anti-echo kept hypercomplex
    EXPECT_TRUE(hsqc->matrix.state & matrix_state::kF2Phaseable);
    for (const auto& p : testdata::strongestPeaks(hsqc->matrix, 12, true)) {
        EXPECT_TRUE(nearAny(p.xPpm, lines, 0.03)) << p.xPpm << " / " << p.yPpm;
        EXPECT_GT(p.yPpm, 10.0);  // aliphatic carbons of the peptide: N-methyls, side chains
        EXPECT_LT(p.yPpm, 65.0);
        if (p.xPpm > 2.6 && p.xPpm < 3.6) {
            EXPECT_GT(p.yPpm, 28.0) << p.xPpm;  // N-CH3
        }
        if (p.xPpm < 1.4) {
            EXPECT_LT(p.yPpm, 27.0) << p.xPpm;  // C-CH3
        }
    }

    const auto cosy = testdata::openTransformed("cyclosporin-cosy");
    ASSERT_TRUE(cosy);
    EXPECT_TRUE(cosy->matrix.state & matrix_state::kMagnitude);
    size_t diagonal = 0;
    for (const auto& p : testdata::strongestPeaks(cosy->matrix, 20, true)) {
        EXPECT_TRUE(nearAny(p.xPpm, lines, 0.03)) << p.xPpm;
        EXPECT_TRUE(nearAny(p.yPpm, lines, 0.1)) << p.yPpm;  // f1 has 10x coarser points
        diagonal += std::abs(p.yPpm - p.xPpm) < 0.1;
    }
    EXPECT_GE(diagonal, 10u);  // the tallest COSY peaks lie on the diagonal, not its mirror
}

}  // namespace
}  // namespace zolt

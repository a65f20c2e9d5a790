#include "processing/ft_pipeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <optional>
#include <vector>

#include "io/bruker_parameters.h"
#include "io/bruker_reader.h"
#include "io/raw_loader.h"
#include "processing/ft_defaults.h"
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
// points: point (row, col) has real row*100 + col + 1 and imaginary -(row*7 + col).
SpectrumDocument indirect2D(uint32_t rows, uint32_t cols) {
    SpectrumDocument doc;
    doc.source.dims[2] = axis(cols);
    doc.source.dims[1] = axis(rows, 40.0f, 125.0f);
    doc.source.highestTIndex = 1;
    doc.matrix.dims = doc.source.dims;
    doc.matrix.contiguous = 2;
    for (uint32_t r = 0; r < rows; ++r)
        for (uint32_t c = 0; c < cols; ++c) {
            doc.matrix.re.push_back(r * 100.0f + c + 1.0f);
            doc.matrix.im.push_back(-(r * 7.0f + c));
        }
    return doc;
}

float re2D(uint32_t r, uint32_t c) {
    return r * 100.0f + c + 1.0f;
}
float im2D(uint32_t r, uint32_t c) {
    return -(r * 7.0f + c);
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

TEST(FtPipeline, EchoAntiEchoPairsAddAndSubtractIntoTwoHalves) {
    auto doc = indirect2D(64, 4);
    stepOf(doc, 1, 64, ft_flags::kStopBeforeTransform | ft_flags::kHypercomplex,
           Shuffling::EchoAntiEcho);
    transformNextDimension(doc);
    const auto& m = doc.matrix;
    EXPECT_EQ(m.dims[0].points, 2u);
    ASSERT_EQ(m.re.size(), 2u * 4u * 64u);
    const float scale = 32.0f / 64.0f;
    const size_t half = 4 * 64;
    for (uint32_t c = 0; c < 4; ++c)
        for (uint32_t k : {0u, 5u, 31u}) {
            const float reE = re2D(2 * k, c), reA = re2D(2 * k + 1, c);
            const float imE = im2D(2 * k, c), imA = im2D(2 * k + 1, c);
            EXPECT_FLOAT_EQ(m.re[c * 64 + k], (reE + reA) * scale);
            EXPECT_FLOAT_EQ(m.im[c * 64 + k], (imA - imE) * scale);
            EXPECT_FLOAT_EQ(m.re[half + c * 64 + k], (imA + imE) * scale);
            EXPECT_FLOAT_EQ(m.im[half + c * 64 + k], (reE - reA) * scale);
            EXPECT_EQ(m.re[half + c * 64 + 32 + k], 0.0f);
        }
}

TEST(FtPipeline, HypercomplexTransformMarksTheSecondAxisPhaseable) {
    auto doc = indirect2D(128, 4);
    stepOf(doc, 1, 128, ft_flags::kQuadrature | ft_flags::kHypercomplex, Shuffling::PhaseSensitive);
    const auto result = transformNextDimension(doc);
    EXPECT_EQ(result.outcome, FtOutcome::Transformed);
    EXPECT_TRUE(doc.matrix.state & matrix_state::kF2Phaseable);
    EXPECT_EQ(doc.source.highestTIndex, 0);
    EXPECT_TRUE(doc.processing.doneMask & done_mask::transformed(1));
    EXPECT_EQ(doc.matrix.re.size(), 2u * 4u * 128u);
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

TEST(FtPipeline, QuadratureSignalAboveTheCarrierLandsLeftOfCentre) {
    const size_t n = 1024;
    // A quarter of the width above the carrier, slowly decaying.
    auto doc = fid1D(n, [](size_t m) {
        return std::polar(std::exp(-0.002 * m), 2 * kPi * 0.25 * static_cast<double>(m));
    });
    stepOf(doc, 1, 2048, ft_flags::kQuadrature);
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    const auto& re = doc.matrix.re;
    const size_t peak = std::max_element(re.begin(), re.end()) - re.begin();
    EXPECT_EQ(peak, 512u);  // 2048/2 - 2048/4
    EXPECT_GT(re[peak], 0.0f);
}

TEST(FtPipeline, FilterDelayIsCompensatedByTheFirstOrderPhase) {
    const size_t n = 2048, delay = 68;
    auto doc = fid1D(n, [&](size_t m) {
        if (m < delay) return std::complex<double>(0.0, 0.0);
        const double t = static_cast<double>(m - delay);
        return std::polar(std::exp(-0.003 * t), 2 * kPi * 0.125 * t);
    });
    doc.matrix.dims[1].timeShift = -68.0f;
    stepOf(doc, 1, 4096, ft_flags::kQuadrature);
    transformNextDimension(doc);
    const auto& m = doc.matrix;
    size_t peak = 0;
    for (size_t k = 1; k < 4096; ++k)
        if (std::hypot(m.re[k], m.im[k]) > std::hypot(m.re[peak], m.im[peak])) peak = k;
    EXPECT_NEAR(m.re[peak], std::hypot(m.re[peak], m.im[peak]), 1e-2 * m.re[peak]);
    EXPECT_EQ(peak, 1536u);
    EXPECT_EQ(m.dims[1].timeShift, -68.0f);  // kept: the data carry it as a first order
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
        const auto& m = doc.matrix;
        size_t peak = 0;
        for (size_t k = 1; k < n; ++k)
            if (std::hypot(m.re[k], m.im[k]) > std::hypot(m.re[peak], m.im[peak])) peak = k;
        EXPECT_EQ(peak, conjugate ? n - 100 : 100u);
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

TEST(FtPipeline, NusRowsNeedTheirSamplingList) {
    const auto dir = testdata::freshTempDir("nus");
    auto doc = indirect2D(4, 32);
    doc.source.rawPath = dir + "/ser";
    doc.matrix.dims[1].pointsAfterNus = 8;
    stepOf(doc, 1, 32, ft_flags::kStopBeforeTransform);
    const auto before = doc.matrix.re;
    const auto missing = transformNextDimension(doc);
    EXPECT_EQ(missing.outcome, FtOutcome::NusListMissing);
    ASSERT_TRUE(missing.message);
    EXPECT_EQ(missing.message->caption, "Missing NUS Metadata");
    EXPECT_EQ(missing.message->text,
              "The file 'nuslist' is missing or unreadable. This file is required to map the "
              "experimental points onto the full grid.");
    EXPECT_EQ(doc.matrix.re, before);

    std::ofstream(dir + "/nuslist") << "3\n1\n";
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::StoppedBeforeTransform);
    const auto& m = doc.matrix;
    const float scale = 32.0f / 8.0f;
    for (uint32_t c : {0u, 31u}) {
        const float* row = m.re.data() + c * 32;
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

// ---- real spectrometer data ----

std::optional<SpectrumDocument> openFid(const std::string& name) {
    auto read = readBrukerFolder(testdata::bruker(name));
    if (!read) return std::nullopt;
    auto matrix = loadMatrix(read->source);
    if (!matrix) return std::nullopt;
    SpectrumDocument doc;
    doc.source = read->source;
    doc.matrix = std::move(*matrix);
    addDefaultFourierTransformSteps(doc);
    return doc;
}

double procsValue(const std::string& procs, const char* key) {
    return findParameter(procs, ParameterKey{key, ParameterKind::Real}).real;
}

// The vendor's processed 1-D spectrum as modulus per point, with its ppm scale.
struct VendorSpectrum {
    std::vector<double> modulus;
    double firstPpm = 0.0, stepPpm = 0.0;
};

VendorSpectrum vendorSpectrum(const std::string& folder) {
    const std::string procs = testdata::readFile(folder + "/pdata/1/procs");
    const auto si = static_cast<size_t>(procsValue(procs, "##$SI="));
    const std::string re = testdata::readFile(folder + "/pdata/1/1r");
    const std::string im = testdata::readFile(folder + "/pdata/1/1i");
    VendorSpectrum v;
    if (re.size() < si * 4 || im.size() < si * 4) return v;  // little-endian 32-bit integers
    for (size_t j = 0; j < si; ++j) {
        int32_t a, b;
        std::memcpy(&a, re.data() + 4 * j, 4);
        std::memcpy(&b, im.data() + 4 * j, 4);
        v.modulus.push_back(std::hypot(double(a), double(b)));
    }
    v.firstPpm = procsValue(procs, "##$OFFSET=");
    v.stepPpm = procsValue(procs, "##$SW_p=") / procsValue(procs, "##$SF=") / double(si);
    return v;
}

// Our modulus at a ppm value, interpolated between the two nearest point centres.
double modulusAtPpm(const SpectrumMatrix& m, int f, double ppm) {
    const auto& d = m.dims[f];
    const double x = (1.0 - (ppm - d.lowestPpm) / d.spectralWidth) * d.points - 0.5;
    if (x < 0.0 || x >= d.points - 1.0) return -1.0;
    const auto i = static_cast<size_t>(x);
    const double t = x - i;
    auto mod = [&](size_t k) { return std::hypot(m.re[k], m.im[k]); };
    return mod(i) * (1.0 - t) + mod(i + 1) * t;
}

TEST(FtPipeline, AspirinMatchesTheVendorSpectrum) {
    auto doc = openFid("aspirin-1h");
    ASSERT_TRUE(doc);
    auto* step = findFourierTransformStep(doc->processing, 1);
    ASSERT_TRUE(step);
    step->ftSize = 32768;
    step->flags |= ft_flags::kApplyWeights | ft_flags::kExponential;
    step->weights[kWeightExponential] = 0.3f;
    ASSERT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    ASSERT_EQ(doc->matrix.dims[1].points, 32768u);
    EXPECT_EQ(doc->source.highestTIndex, 0);

    const auto vendor = vendorSpectrum(testdata::bruker("aspirin-1h-processed"));
    ASSERT_EQ(vendor.modulus.size(), 32768u);
    std::vector<double> ours, theirs;
    size_t tallestOurs = 0, tallestTheirs = 0;
    for (size_t j = 0; j < vendor.modulus.size(); ++j) {
        const double v = modulusAtPpm(doc->matrix, 1, vendor.firstPpm - j * vendor.stepPpm);
        if (v < 0.0) continue;  // outside our window
        if (v > (ours.empty() ? 0.0 : ours[tallestOurs])) tallestOurs = ours.size();
        if (vendor.modulus[j] > (theirs.empty() ? 0.0 : theirs[tallestTheirs]))
            tallestTheirs = theirs.size();
        ours.push_back(v);
        theirs.push_back(vendor.modulus[j]);
    }
    ASSERT_GT(ours.size(), 30000u);
    double ma = 0, mb = 0;
    for (size_t i = 0; i < ours.size(); ++i) ma += ours[i], mb += theirs[i];
    ma /= ours.size(), mb /= ours.size();
    double sab = 0, saa = 0, sbb = 0;
    for (size_t i = 0; i < ours.size(); ++i) {
        sab += (ours[i] - ma) * (theirs[i] - mb);
        saa += (ours[i] - ma) * (ours[i] - ma);
        sbb += (theirs[i] - mb) * (theirs[i] - mb);
    }
    EXPECT_GE(sab / std::sqrt(saa * sbb), 0.99);
    EXPECT_LE(std::abs(double(tallestOurs) - double(tallestTheirs)), 2.0);
    const double tallestPpm = vendor.firstPpm - tallestTheirs * vendor.stepPpm;
    EXPECT_NEAR(tallestPpm, 2.3, 0.1);  // the acetyl CH3
}

struct Peak2D {
    double f1Ppm, f2Ppm, height;
};

// Local maxima of the modulus of a 2-D spectrum whose f1 rows are contiguous (both axes
// transformed), tallest first.
std::vector<Peak2D> crossPeaks(const SpectrumMatrix& m, size_t count) {
    const size_t n1 = m.dims[1].points, n2 = m.dims[2].points;
    auto at = [&](size_t k1, size_t k2) {
        const size_t i = k2 * n1 + k1;
        return std::hypot(m.re[i], m.im[i]);
    };
    std::vector<Peak2D> peaks;
    for (size_t k2 = 1; k2 + 1 < n2; ++k2)
        for (size_t k1 = 1; k1 + 1 < n1; ++k1) {
            const double v = at(k1, k2);
            bool top = true;
            for (int a = -1; a <= 1 && top; ++a)
                for (int b = -1; b <= 1 && top; ++b)
                    if ((a || b) && at(k1 + a, k2 + b) > v) top = false;
            if (top) peaks.push_back({ppmOfPoint(m.dims[1], k1), ppmOfPoint(m.dims[2], k2), v});
        }
    std::sort(peaks.begin(), peaks.end(), [](auto& a, auto& b) { return a.height > b.height; });
    if (peaks.size() > count) peaks.resize(count);
    return peaks;
}

// Ppm of the local maxima of a transformed 1-D spectrum above a share of its tallest.
std::vector<double> peaks1D(const SpectrumMatrix& m, double share) {
    const size_t n = m.dims[1].points;
    std::vector<double> mod(n);
    for (size_t k = 0; k < n; ++k) mod[k] = std::hypot(m.re[k], m.im[k]);
    const double top = *std::max_element(mod.begin(), mod.end());
    std::vector<double> ppm;
    for (size_t k = 1; k + 1 < n; ++k)
        if (mod[k] > share * top && mod[k] >= mod[k - 1] && mod[k] >= mod[k + 1])
            ppm.push_back(ppmOfPoint(m.dims[1], k));
    return ppm;
}

bool nearAny(double ppm, const std::vector<double>& list, double tolerance) {
    return std::any_of(list.begin(), list.end(),
                       [&](double p) { return std::abs(p - ppm) <= tolerance; });
}

void transformBoth(SpectrumDocument& doc) {
    ASSERT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    ASSERT_EQ(doc.matrix.contiguous, 2);
    ASSERT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    ASSERT_EQ(doc.matrix.contiguous, 1);
    ASSERT_EQ(doc.source.highestTIndex, 0);
}

TEST(FtPipeline, CyclosporinCrossPeaksSitOnTheProtonLines) {
    auto proton = openFid("cyclosporin-1h");
    ASSERT_TRUE(proton);
    ASSERT_EQ(transformNextDimension(*proton).outcome, FtOutcome::Transformed);
    const auto lines = peaks1D(proton->matrix, 0.02);
    ASSERT_GT(lines.size(), 20u);

    auto hsqc = openFid("cyclosporin-hsqc");
    ASSERT_TRUE(hsqc);
    transformBoth(*hsqc);
    EXPECT_EQ(hsqc->matrix.dims[0].points, 2u);  // echo / anti-echo kept hypercomplex
    for (const auto& p : crossPeaks(hsqc->matrix, 12)) {
        EXPECT_TRUE(nearAny(p.f2Ppm, lines, 0.03)) << p.f2Ppm << " / " << p.f1Ppm;
        EXPECT_GT(p.f1Ppm, 10.0);  // aliphatic carbons of the peptide: N-methyls, side chains
        EXPECT_LT(p.f1Ppm, 65.0);
        if (p.f2Ppm > 2.6 && p.f2Ppm < 3.6) {
            EXPECT_GT(p.f1Ppm, 28.0) << p.f2Ppm;  // N-CH3
        }
        if (p.f2Ppm < 1.4) {
            EXPECT_LT(p.f1Ppm, 27.0) << p.f2Ppm;  // C-CH3
        }
    }

    auto cosy = openFid("cyclosporin-cosy");
    ASSERT_TRUE(cosy);
    transformBoth(*cosy);
    EXPECT_TRUE(cosy->matrix.state & matrix_state::kMagnitude);
    const auto peaks = crossPeaks(cosy->matrix, 20);
    size_t diagonal = 0;
    for (const auto& p : peaks) {
        EXPECT_TRUE(nearAny(p.f2Ppm, lines, 0.03)) << p.f2Ppm;
        EXPECT_TRUE(nearAny(p.f1Ppm, lines, 0.1)) << p.f1Ppm;  // f1 has 10x coarser points
        diagonal += std::abs(p.f1Ppm - p.f2Ppm) < 0.1;
    }
    EXPECT_GE(diagonal, 10u);  // the tallest COSY peaks lie on the diagonal, not its mirror
}

}  // namespace
}  // namespace zolt

#include "processing/baseline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "processing/baseline_detection.h"
#include "processing/carried_detection.h"
#include "processing/real_rows.h"
#include "processing/row_parallel.h"
#include "processing/whittaker.h"

namespace zolt {
namespace {

double lorentzian(double x, double centre, double halfWidth) {
    const double u = (x - centre) / halfWidth;
    return 1.0 / (1.0 + u * u);
}

// Peaks of height 100 on a curved baseline, with noise of sigma 0.2 from a fixed seed.
struct Synthetic {
    std::vector<float> row, baseline, peaks;
};

Synthetic curvedSpectrum(size_t n, unsigned seed = 7) {
    Synthetic s;
    std::mt19937 gen(seed);
    std::normal_distribution<double> noise(0.0, 0.2);
    const double centres[] = {0.12, 0.3, 0.33, 0.55, 0.8};
    for (size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(i) / n;
        double p = 0.0;
        for (double c : centres) p += 100.0 * lorentzian(x * n, c * n, 3.0);
        const double b = 8.0 + 6.0 * std::sin(3.0 * x) - 10.0 * (x - 0.4) * (x - 0.4);
        s.peaks.push_back(static_cast<float>(p));
        s.baseline.push_back(static_cast<float>(b));
        s.row.push_back(static_cast<float>(p + b + noise(gen)));
    }
    return s;
}

SpectrumDocument documentWithRows(const std::vector<float>& row, uint32_t rows = 1) {
    SpectrumDocument doc;
    auto& m = doc.matrix;
    const uint32_t n = static_cast<uint32_t>(row.size());
    m.dimensions = rows > 1 ? 2 : 1;
    const int direct = rows > 1 ? 2 : 1;
    m.contiguous = static_cast<uint8_t>(direct);
    m.dims[direct].points = n;
    if (rows > 1) m.dims[1].points = rows;
    for (uint32_t r = 0; r < rows; ++r) m.re.insert(m.re.end(), row.begin(), row.end());
    m.im.assign(m.re.size(), 0.0f);
    return doc;
}

BaseplaneStep polynomialSettings(int order, int width) {
    return {.function = 1, .order = uint8_t(order), .movingAverage = int16_t(width)};
}

// Largest deviation of the corrected row from the pure peaks, away from the peak tops.
double residual(const std::vector<float>& corrected, const Synthetic& s) {
    double worst = 0.0;
    for (size_t i = 0; i < corrected.size(); ++i)
        if (s.peaks[i] < 5.0) worst = std::max(worst, std::fabs(double{corrected[i]} - s.peaks[i]));
    return worst;
}

TEST(PolynomialBaseline, OrderNeedingMorePointsThanTheRowIsRefused) {
    std::vector<float> row(1024, 1.0f);
    auto doc = documentWithRows(row);
    const auto message = correctBaseline(doc, 1, polynomialSettings(15, 8));
    ASSERT_TRUE(message.has_value());
    EXPECT_EQ(message->caption, "Insufficient number of points");
    EXPECT_EQ(message->text, "Try reducing the order of the polynomial");
    EXPECT_EQ(doc.matrix.re, row);
    EXPECT_TRUE(doc.processing.steps.empty());
    EXPECT_EQ(polynomialFitPoints(1024, 15), 1032u);
    // One order less fits: 968 < 1024.
    EXPECT_FALSE(correctBaseline(doc, 1, polynomialSettings(14, 8)).has_value());
}

TEST(PolynomialBaseline, CurvedBaselineUnderPeaksIsRemovedAndRecorded) {
    const auto s = curvedSpectrum(8192);
    auto doc = documentWithRows(s.row);
    ASSERT_FALSE(correctBaseline(doc, 1, polynomialSettings(7, 64)).has_value());
    EXPECT_LT(residual(doc.matrix.re, s), 1.5);  // the baseline itself swings by 15
    const size_t top = static_cast<size_t>(0.55 * 8192);
    EXPECT_NEAR(doc.matrix.re[top], s.peaks[top], 1.5);
    ASSERT_EQ(doc.processing.steps.size(), 1u);
    EXPECT_EQ(doc.processing.steps[0].kind(), StepKind::Baseplane);
    EXPECT_EQ(doc.processing.steps[0].tag(), (1u << 16) | 4u);
    EXPECT_EQ(std::get<BaseplaneStep>(doc.processing.steps[0].data).order, 7);
}

// A hump 800 points wide is too gentle for the detector, which sees it as baseline; the fit
// must still pass under it rather than bend into it and push its surroundings negative.
TEST(PolynomialBaseline, BroadHumpIsKeptAsSignal) {
    const size_t n = 8192;
    auto s = curvedSpectrum(n);
    for (size_t i = 0; i < n; ++i) {
        const double u = (static_cast<double>(i) - 0.45 * n) / 600.0;
        s.peaks[i] += static_cast<float>(4.0 * std::exp(-u * u));
        s.row[i] += static_cast<float>(4.0 * std::exp(-u * u));
    }
    auto doc = documentWithRows(s.row);
    ASSERT_FALSE(correctBaseline(doc, 1, polynomialSettings(7, 64)).has_value());
    EXPECT_LT(residual(doc.matrix.re, s), 1.5);
    EXPECT_NEAR(doc.matrix.re[static_cast<size_t>(0.45 * n)], 4.0, 1.0);
}

TEST(PolynomialBaseline, FitRecoversAnExactPolynomial) {
    const size_t n = 2000;
    const std::vector<double> c = {0.5, -2.0, 3.0, 0.25, -1.5};
    std::vector<float> row(n);
    for (size_t i = 0; i < n; ++i)
        row[i] = static_cast<float>(evaluatePolynomial(c, normalisedAbscissa(i, n)));
    std::vector<uint8_t> mask(n, 0);
    const auto fitted = fitBaselinePolynomial(row.data(), mask.data(), n, 4);
    ASSERT_EQ(fitted.size(), 5u);
    for (size_t j = 0; j < c.size(); ++j) EXPECT_NEAR(fitted[j], c[j], 1e-4);
    // Too few baseline points for the coefficients: no fit.
    std::vector<uint8_t> signal(n, 1);
    signal[10] = signal[20] = 0;
    EXPECT_TRUE(fitBaselinePolynomial(row.data(), signal.data(), n, 4).empty());
}

TEST(PolynomialBaseline, FlatNoiseRowEndsAroundZero) {
    const size_t n = 4096;
    std::mt19937 gen(11);
    std::normal_distribution<double> noise(5.0, 1.0);
    std::vector<float> row(n);
    for (auto& v : row) v = static_cast<float>(noise(gen));
    std::vector<uint8_t> mask(n);
    double carried = 0.0;
    const size_t baseline = detectBaselinePoints(row.data(), n, 16, 0, mask.data(), carried);
    EXPECT_GT(baseline, n * 9 / 10);  // only the 3-sigma tail is marked
    EXPECT_GT(carried, 0.0);
    auto doc = documentWithRows(row);
    correctBaseline(doc, 1, polynomialSettings(3, 16));
    double mean = 0.0;
    for (float v : doc.matrix.re) mean += v;
    EXPECT_NEAR(mean / n, 0.0, 0.1);
}

TEST(BaselineDetection, MarksLinesWithTheirSurroundings) {
    const size_t n = 2048;
    std::mt19937 gen(3);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::vector<float> row(n);
    for (size_t i = 0; i < n; ++i)
        row[i] = static_cast<float>(50.0 * lorentzian(i, 700, 2.0) + noise(gen));
    std::vector<uint8_t> mask(n);
    double carried = 0.0;
    detectBaselinePoints(row.data(), n, 8, 0, mask.data(), carried);
    for (size_t i = 695; i <= 705; ++i) EXPECT_EQ(mask[i], 1) << i;  // the line itself
    EXPECT_EQ(mask[100], 0);
    EXPECT_EQ(mask[1500], 0);

    // The next row of the run marks at once what exceeds twice the carried threshold.
    std::vector<float> loud(n, 0.0f);
    loud[1000] = 1e4f;
    std::vector<uint8_t> next(n);
    double kept = carried;
    detectBaselinePoints(loud.data(), n, 8, autosampling_mode::kCarryThreshold, next.data(), kept);
    EXPECT_EQ(next[1000 - 8], 1);
    EXPECT_GE(kept, carried);
}

// Rows worked four at a time and the remainder one by one give each the differences of its own.
TEST(BaselineDetection, DifferencesOfSeveralRowsAreEachRowsOwn) {
    const size_t n = 300, rows = 6;
    const int w = 5;
    std::mt19937 gen(5);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::vector<float> data(rows * n);
    for (float& v : data) v = static_cast<float>(1e3 * noise(gen));
    const float* starts[rows];
    for (size_t r = 0; r < rows; ++r) starts[r] = data.data() + r * n;
    std::vector<double> together(rows * n, -1.0), alone(n, -1.0);
    movingDifferences(starts, rows, n, w, together.data());
    for (size_t r = 0; r < rows; ++r) {
        movingDifferences(starts + r, 1, n, w, alone.data());
        for (size_t i = 0; i < n; ++i) ASSERT_EQ(together[r * n + i], alone[i]) << r << " " << i;
    }
    EXPECT_EQ(alone[w], -1.0);  // no difference of its own at the ends
    EXPECT_EQ(alone[n - w], -1.0);
    EXPECT_NE(alone[w + 1], -1.0);
}

// The carried threshold rises at the last row of every group of rows the threads take (a louder
// row each time), and the first row of the next group is noisy enough that the threshold it
// was marked from ahead decides its marks: such rows are marked again, and the masks stay
// those of one run.
TEST(BaselineDetection, RowsMarkedAheadOnThreadsAreThoseOfOneRun) {
    SpectrumMatrix m;
    m.dims[1].points = 300;
    m.dims[2].points = 512;
    m.contiguous = 2;
    m.re.resize(300 * 512);
    std::mt19937 gen(11);
    std::normal_distribution<double> noise(0.0, 1.0);
    for (size_t r = 0; r < 300; ++r) {
        const double loud = std::pow(9.0, static_cast<double>(r / kRowGroup + 1));
        const double sigma = r % kRowGroup == kRowGroup - 1 ? loud
                             : r % kRowGroup == 0 && r > 0  ? loud / 27.0
                                                            : 1.0;
        for (size_t i = 0; i < 512; ++i) m.re[r * 512 + i] = static_cast<float>(sigma * noise(gen));
    }
    for (int f : {1, 2}) {
        const size_t n = m.dims[f].points, rows = m.re.size() / n;
        const auto masks = [&](size_t threads, std::vector<uint8_t>& detected) {
            setRowThreads(threads);
            std::vector<uint8_t> marks(rows * n, 9);
            detected.assign(rows, 0);
            detectBaselineRows(m, f, 2, n - 4, 3, marks, detected);
            setRowThreads(0);
            return marks;
        };
        std::vector<uint8_t> detectedOne, detectedSeveral;
        const auto one = masks(1, detectedOne);
        EXPECT_EQ(detectedOne, std::vector<uint8_t>(rows, 1));
        for (size_t threads : {2, 8}) {
            EXPECT_EQ(masks(threads, detectedSeveral), one) << f << " " << threads;
            EXPECT_EQ(detectedSeveral, detectedOne);
        }
    }
}

TEST(BaselineDetection, DegenerateRowsStayBaseline) {
    std::vector<float> shortRow(10, 1.0f);
    std::vector<uint8_t> mask(10, 7);
    double carried = 5.0;
    EXPECT_EQ(detectBaselinePoints(shortRow.data(), 10, 8, 0, mask.data(), carried), 10u);
    EXPECT_EQ(carried, 0.0);
    EXPECT_EQ(detectBaselinePoints(shortRow.data(), 0, 8, 0, mask.data(), carried), 0u);
    std::vector<float> zeros(5000, 0.0f);
    std::vector<uint8_t> m2(5000);
    EXPECT_EQ(detectSignal(zeros.data(), zeros.size(), m2.data()), 5000u);
}

TEST(WhittakerBaseline, CurvedBaselineIsBridgedUnderThePeaks) {
    const auto s = curvedSpectrum(8192, 9);
    auto doc = documentWithRows(s.row);
    BaseplaneStep settings = polynomialSettings(5, 64);
    settings.function = 0;
    ASSERT_FALSE(correctBaseline(doc, 1, settings).has_value());
    EXPECT_LT(residual(doc.matrix.re, s), 1.5);
    const size_t top = static_cast<size_t>(0.3 * 8192);
    EXPECT_NEAR(doc.matrix.re[top], s.peaks[top], 1.5);
}

TEST(WhittakerBaseline, NeedsTwoBaselinePoints) {
    std::vector<float> y(100, 3.0f), out(100, -1.0f);
    std::vector<uint8_t> mask(100, 1);
    mask[40] = 0;
    EXPECT_FALSE(whittakerSmooth(y.data(), mask.data(), 100, 1.0, out.data()));
    EXPECT_EQ(out[0], -1.0f);
    mask[60] = 0;
    ASSERT_TRUE(whittakerSmooth(y.data(), mask.data(), 100, 1.0, out.data()));
    for (float v : out) EXPECT_NEAR(v, 3.0f, 1e-4);  // a constant is followed exactly
}

TEST(BaseplaneCorrection, ColumnsAreCorrectedLikeRows) {
    const auto s = curvedSpectrum(2048, 5);
    // 2 rows along f2 of 2048 points, then the same data stored with f1 contiguous.
    auto rows = documentWithRows(s.row, 2);
    ASSERT_FALSE(correctBaseline(rows, 2, polynomialSettings(5, 32)).has_value());
    SpectrumDocument cols = documentWithRows(s.row, 2);
    std::swap(cols.matrix.dims[1], cols.matrix.dims[2]);  // now f1 has 2048 points
    cols.matrix.contiguous = 2;                           // f2 (2 points) varies fastest
    for (size_t i = 0; i < 2048; ++i)
        for (size_t r = 0; r < 2; ++r) cols.matrix.re[i * 2 + r] = s.row[i];
    ASSERT_FALSE(correctBaseline(cols, 1, polynomialSettings(5, 32)).has_value());
    for (size_t i = 0; i < 2048; ++i) EXPECT_FLOAT_EQ(cols.matrix.re[i * 2 + 1], rows.matrix.re[i]);

    // A plane: a ramp along f1 on top of the rows; both axes end up flat.
    const auto small = curvedSpectrum(256, 6);
    auto plane = documentWithRows(small.row, 128);
    for (size_t r = 0; r < 128; ++r)
        for (size_t i = 0; i < 256; ++i) plane.matrix.re[r * 256 + i] += 0.2f * r;
    auto refused = plane;
    ASSERT_FALSE(correctBaseplane(plane, polynomialSettings(1, 4)).has_value());
    ASSERT_EQ(plane.processing.steps.size(), 2u);
    EXPECT_EQ(plane.processing.steps[0].dimension, 2);
    EXPECT_EQ(plane.processing.steps[1].dimension, 1);
    for (size_t r = 0; r < 128; r += 9) EXPECT_NEAR(plane.matrix.re[r * 256 + 20], 0.0, 1.5) << r;
    // Order 2 asks for 136 + 8 points on the 128 rows of f1: that axis is left, f2 corrected.
    auto shortAxis = refused;
    ASSERT_FALSE(correctBaseplane(shortAxis, polynomialSettings(2, 4)).has_value());
    ASSERT_EQ(shortAxis.processing.steps.size(), 1u);
    EXPECT_EQ(shortAxis.processing.steps[0].dimension, 2);
    // Order 4 fits neither axis: nothing is touched.
    const auto before = refused.matrix.re;
    EXPECT_TRUE(correctBaseplane(refused, polynomialSettings(4, 4)).has_value());
    EXPECT_EQ(refused.matrix.re, before);
    EXPECT_TRUE(refused.processing.steps.empty());
}

TEST(StraightAndExplicitBaselines, RemoveWhatTheyDescribe) {
    std::vector<float> row(1000);
    for (size_t i = 0; i < row.size(); ++i) row[i] = 3.0f + 0.01f * i;
    row[500] = 50.0f;
    auto doc = documentWithRows(row);
    correctStraight(doc.matrix, 1);
    EXPECT_NEAR(doc.matrix.re[0], 0.0, 1e-4);
    EXPECT_NEAR(doc.matrix.re[999], 0.0, 1e-4);
    EXPECT_NEAR(doc.matrix.re[500], 50.0 - 8.0, 1e-3);

    auto poly = documentWithRows(std::vector<float>(100, 2.0f));
    applyPolynomialStep(poly, 1, PolynomialStep{1, {2.0, 1.0}});
    EXPECT_NEAR(poly.matrix.re[0], 1.0, 1e-6);    // x = -1 at the first point
    EXPECT_NEAR(poly.matrix.re[99], -1.0, 1e-6);  // x = +1 at the last
    ASSERT_EQ(poly.processing.steps.size(), 1u);
    EXPECT_EQ(poly.processing.steps[0].kind(), StepKind::Polynomial);
    applyPolynomialStep(poly, 1, PolynomialStep{-1, {}});
    EXPECT_EQ(poly.processing.steps.size(), 1u);
}

}  // namespace
}  // namespace zolt

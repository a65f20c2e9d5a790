// Integration on real spectra: the spectrometer's own integrals, the end-point correction, the
// automatic cut and the report table.
#include "analysis/integration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "analysis/auto_cut.h"
#include "analysis/integral_report.h"
#include "app/document_opening.h"
#include "operations/analysis_tables.h"
#include "operations/integral_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

std::unique_ptr<SpectrumDocument> openProcessed(const std::string& name) {
    Preferences prefs;
    prefs.flags |= pref_flags::kReadProcessedData;
    Message failure;
    return readDocument(testdata::bruker(name), prefs, failure);
}

struct VendorIntegral {
    double from, to, value;
};

// pdata/1/integrals.txt: "number from to integral" rows below a header.
std::vector<VendorIntegral> vendorIntegrals(const std::string& name) {
    std::istringstream text(testdata::readFile(testdata::bruker(name) + "/pdata/1/integrals.txt"));
    std::vector<VendorIntegral> rows;
    for (std::string line; std::getline(text, line);) {
        std::istringstream fields(line);
        int number;
        VendorIntegral v;
        if (fields >> number >> v.from >> v.to >> v.value) rows.push_back(v);
    }
    return rows;
}

IntegralRegion region1D(float a, float b, float endPoints = 0.0f) {
    IntegralRegion r;
    r.fields = {a, b, kOpenLimit, -kOpenLimit, kOpenLimit, endPoints};
    return r;
}

// Bruker's regions on Bruker's own spectrum: normalised to the region it reads as 1, every
// value agrees within 3 %.
TEST(Integration, AgreesWithTheSpectrometersIntegralsOfItsOwnSpectrum) {
    const std::string name = "aspirin-1h-processed";
    auto doc = openProcessed(name);
    ASSERT_TRUE(doc);
    ASSERT_EQ(doc->source.highestTIndex, 0);
    const auto rows = vendorIntegrals(name);
    ASSERT_EQ(rows.size(), 5u);
    for (const auto& row : rows) doc->integrals.push_back(region1D(float(row.from), float(row.to)));
    const std::vector<double> ours = rawIntegrals(*doc);
    const size_t unit = 1;  // the row that reads 1.00000
    ASSERT_EQ(rows[unit].value, 1.0);
    for (size_t k = 0; k < rows.size(); ++k)
        EXPECT_NEAR(ours[k] / ours[unit], rows[k].value, 0.03 * rows[k].value) << k + 1;
    // One region asked to read 3 makes the divisor a third of its integral.
    ASSERT_TRUE(setIntegralReading(*doc, unit, 3.0));
    EXPECT_FLOAT_EQ(doc->page.integralNormalization, float(ours[unit] / 3.0));
}

// Next to the first point only one point lies on the left, so three end-points become one:
// the line joins point 1 and the region's last point.
TEST(Integration, EndPointCountIsReducedToThePointsAvailable) {
    auto doc = openProcessed("aspirin-1h-processed");
    ASSERT_TRUE(doc);
    const DimensionRecord& axis = doc->matrix.dims[1];
    const std::vector<float>& y = doc->matrix.re;
    const IntegralRegion r = region1D(float(edgePpm(axis, 1)), float(edgePpm(axis, 41)), 3.0f);
    ASSERT_EQ(integralLimitIndex(axis, r.fields[0]), 1u);
    ASSERT_EQ(integralLimitIndex(axis, r.fields[1]), 41u);
    double s = 0.0;
    for (size_t i = 1; i < 41; ++i) s += y[i];
    const double expected = s - (double(y[1]) + y[40]) * 40 * 0.5;
    EXPECT_NEAR(integrateRegion(doc->matrix, {}, r), expected, 1e-9 * std::fabs(s));
    // Away from the edges all three count.
    const IntegralRegion inner = region1D(float(edgePpm(axis, 10)), float(edgePpm(axis, 20)), 3);
    const double left = double(y[8]) + y[9] + y[10], right = double(y[19]) + y[20] + y[21];
    s = 0.0;
    for (size_t i = 10; i < 20; ++i) s += y[i];
    EXPECT_NEAR(integrateRegion(doc->matrix, {}, inner), s - (left + right) * 10 * 0.5 / 3,
                1e-9 * std::fabs(s));
}

TEST(AutoCut, ATraceWithoutSignalYieldsNoRegionsAndKeepsTheDivisor) {
    auto doc = openProcessed("aspirin-1h-processed");
    ASSERT_TRUE(doc);
    doc->integrals.push_back(region1D(8.0f, 7.0f));
    doc->page.integralNormalization = 3.0f;
    std::fill(doc->matrix.re.begin(), doc->matrix.re.end(), 1000.0f);
    EXPECT_FALSE(automaticIntegration(*doc, {}).applied);
    EXPECT_EQ(doc->integrals.size(), 1u);
    EXPECT_EQ(doc->page.integralNormalization, 3.0f);
    EXPECT_TRUE(autoCutFragments(doc->matrix.re.data(), doc->matrix.dims[1], {}).empty());
}

// The cut finds the spectrometer's regions (each overlapped by one of ours), keeps every region
// at or above largest/ratio, and the scale fragments are the same runs before the integral
// filters.
TEST(AutoCut, FindsTheSpectrometersRegionsAndFiltersByRatio) {
    auto doc = openProcessed("aspirin-1h-processed");
    ASSERT_TRUE(doc);
    const DimensionRecord& axis = doc->matrix.dims[1];
    const AutoCutParameters p;
    const AutoCutResult cut = autoCutRegions(doc->matrix.re.data(), axis, p);
    ASSERT_FALSE(cut.regions.empty());
    double largest = 0.0;
    for (const IntegralRegion& r : cut.regions) {
        EXPECT_GT(r.fields[0], r.fields[1]);
        largest = std::max(largest, integrateRegion(doc->matrix, {}, r));
    }
    EXPECT_FLOAT_EQ(cut.divisor, float(largest / p.ratio));
    for (const IntegralRegion& r : cut.regions)
        EXPECT_GE(integrateRegion(doc->matrix, {}, r), cut.divisor * (1 - 1e-6));
    for (const auto& row : vendorIntegrals("aspirin-1h-processed")) {
        bool covered = false;
        for (const IntegralRegion& r : cut.regions)
            covered |= r.fields[1] < row.from && r.fields[0] > row.to;
        EXPECT_TRUE(covered) << row.from;
    }
    const auto fragments = autoCutFragments(doc->matrix.re.data(), axis, p);
    EXPECT_GE(fragments.size(), 2 * cut.regions.size());
    ASSERT_TRUE(fragmentScale(*doc, p).applied);
    EXPECT_EQ(doc->page.plots.front().horizontal.ppm, fragments);
}

// `exact` moves limits drawn too wide onto the signal and limits drawn too narrow out to it.
TEST(AutoCut, ExactFitsHandDrawnLimitsToTheSignal) {
    auto doc = openProcessed("aspirin-1h-processed");
    ASSERT_TRUE(doc);
    const DimensionRecord& axis = doc->matrix.dims[1];
    const AutoCutResult cut = autoCutRegions(doc->matrix.re.data(), axis, {0, 50, 0});
    ASSERT_FALSE(cut.regions.empty());
    // The region of the tallest integral: a run of many points.
    IntegralRegion found = cut.regions.front();
    for (const IntegralRegion& r : cut.regions)
        if (integrateRegion(doc->matrix, {}, r) > integrateRegion(doc->matrix, {}, found))
            found = r;
    const float width = found.fields[0] - found.fields[1], step = axis.spectralWidth / axis.points;
    ASSERT_GT(width, 10 * step);
    doc->integrals = {region1D(found.fields[0] + 2 * step, found.fields[1] - 2 * step),
                      region1D(found.fields[1] + 0.3f * width, found.fields[0] - 0.3f * width)};
    ASSERT_TRUE(improveIntegralLimits(*doc).applied);
    EXPECT_FLOAT_EQ(doc->integrals[0].fields[0], found.fields[0]);
    EXPECT_FLOAT_EQ(doc->integrals[0].fields[1], found.fields[1]);
    EXPECT_FLOAT_EQ(doc->integrals[1].fields[1], found.fields[0]);  // B was given high
    EXPECT_FLOAT_EQ(doc->integrals[1].fields[0], found.fields[1]);
}

// normi takes the smallest group for one nucleus and the triple for three.
TEST(Integration, UnitEstimateCountsGroupsAsWholeMultiples) {
    EXPECT_DOUBLE_EQ(integralUnit({2.0, 1e-6, -4.0, 6.0, 2.0, 100.0}), 2.0);
    EXPECT_NEAR(integralUnit({1.0, 1.02, 3.03, 0.98}), (1.0 + 1.02 + 3 * 3.03 + 0.98) / 12, 1e-12);
    EXPECT_EQ(integralUnit({1e-6, 0.0}), 0.0);
}

// A document of eight points whose sums are known; a second one twice as high with a divisor
// of 4 reads half.
class IntegralReport : public ::testing::Test {
protected:
    IntegralReport() {
        for (SpectrumDocument* d : {&a, &b}) {
            d->matrix.dims[1] = {.points = 8, .spectralWidth = 8.0f, .lowestPpm = 0.0f};
            d->matrix.dims[1].isotope = 1;
            setAtom(d->matrix.dims[1], "H");
            d->matrix.xIndex = 1;
        }
        a.matrix.re = {0, 1, 2, 3, 4, 5, 6, 7};
        b.matrix.re = {0, 2, 4, 6, 8, 10, 12, 14};
        a.windowName = "one";
        b.windowName = "two";
        b.page.integralNormalization = 4.0f;
        a.integrals = {region1D(8.0f, 6.0f), region1D(3.0f, 1.0f), region1D(2, 1)};
        a.integrals[2].fields[2] = 1.0f;  // a 2-D region: not listed for 1-D
    }
    SpectrumDocument a, b;
};

TEST_F(IntegralReport, TextsToTheByte) {
    EXPECT_EQ(integralTableText(a, true, false),
              " #\tppm\tintegral\r\n001\t7.000\t1.00000\r\n002\t2.000\t11.00000\r\n");
    EXPECT_EQ(integralTableText(a, false, true),
              " #,ppm,integral\r\n001,6.000..8.000,1.00000\r\n002,1.000..3.000,11.00000\r\n");
    EXPECT_EQ(integralReportText({&a, &b}, true, 2.0, false),
              " #\tppm\tone\ttwo\r\n001\t7.000\t2.00000\t1.00000\r\n"
              "002\t2.000\t22.00000\t11.00000\r\n");
    plist::Ref list(integralReportList({&a}, false, 1.0));
    ASSERT_EQ(list->items.size(), 2u);
    EXPECT_EQ(list->items[1]->items[0]->integer, 2);
    EXPECT_EQ(list->items[1]->items[1]->real, 1.0);
    EXPECT_EQ(list->items[1]->items[3]->real, 11.0);
}

TEST_F(IntegralReport, TwoDimensionalHeaderNamesEachAxis) {
    auto hsqc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(hsqc);
    IntegralRegion r;
    r.fields = {2.0f, 1.0f, 30.0f, 20.0f, kOpenLimit, 0.0f};
    hsqc->integrals = {r, region1D(2, 1)};
    const std::string text = integralTableText(*hsqc, true, false);
    EXPECT_EQ(text.substr(0, text.find("\r\n") + 2), " #\t1-H\t13-C\tintegral\r\n");
    EXPECT_EQ(text.substr(text.find("\r\n") + 2, 17), "001\t1.500\t25.000\t");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
}

}  // namespace
}  // namespace zolt

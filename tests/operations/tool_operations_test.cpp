// The operations behind the plot's tools and the Phase Correction dialog, on real data.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>

#include "operations/display_operations.h"
#include "operations/document_axes.h"
#include "operations/integral_operations.h"
#include "operations/peak_operations.h"
#include "operations/phase_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

class ToolOperations : public ::testing::Test {
protected:
    void SetUp() override {
        doc = testdata::openTransformed("aspirin-1h");
        ASSERT_TRUE(doc);
        // Half the automatic scale: the tallest line lies inside the plot, as the picker needs.
        amplifyScale(*doc, 0.5);
    }
    const DimensionRecord& axis() const { return doc->matrix.dims[horizontalAxis(*doc)]; }
    std::complex<float> point(size_t k) const { return {doc->matrix.re[k], doc->matrix.im[k]}; }
    std::unique_ptr<SpectrumDocument> doc;
};

TEST_F(ToolOperations, PickingRangesFindsWhatTheWholePickFindsThereAndKeepsTheRest) {
    ASSERT_TRUE(pickPeaks1D(*doc, 0.0, false, 4).applied);
    const std::vector<float> whole = doc->peaks.oneD;
    const auto inside = [&](double lo, double hi) {
        std::vector<float> kept;
        std::copy_if(whole.begin(), whole.end(), std::back_inserter(kept),
                     [&](float p) { return p >= lo && p <= hi; });
        return kept;
    };
    std::vector<float> expected = inside(2.0, 2.5);
    const std::vector<float> aromatic = inside(6.9, 8.2);
    expected.insert(expected.end(), aromatic.begin(), aromatic.end());
    ASSERT_GE(expected.size(), 5u);
    doc->peaks.oneD.clear();
    doc->flags = 0;
    ASSERT_TRUE(pickPeaksInRange(*doc, 8.2, 6.9, 4).applied);  // either order
    ASSERT_TRUE(pickPeaksInRange(*doc, 2.0, 2.5, 4).applied);
    EXPECT_EQ(doc->peaks.oneD, expected);
    EXPECT_TRUE(doc->flags & document_flags::kModified);
    EXPECT_FALSE(pickPeaksInRange(*doc, NAN, 2.5, 4).applied);
}

TEST_F(ToolOperations, AnIntegratorRegionKeepsItsLimitsHighFirstAndRefusesOtherKinds) {
    doc->integrals.clear();
    ASSERT_TRUE(addIntegralRegion(*doc, {7.0, 7.5}).applied);
    const IntegralRegion& r = doc->integrals.back();
    EXPECT_EQ(r.fields, (std::array<float, 6>{7.5f, 7.0f, 10000.0f, -10000.0f, 10000.0f, 0.0f}));
    EXPECT_TRUE(doc->flags & document_flags::kModified);
    EXPECT_GT(integralReading(*doc, 0)->front(), 0.0);
    EXPECT_FALSE(addIntegralRegion(*doc, {7.0, 7.5}, std::array<double, 2>{1.0, 2.0}).applied);
    EXPECT_FALSE(addIntegralRegion(*doc, {INFINITY, 7.5}).applied);
    EXPECT_FALSE(addIntegralRegion(*doc, {7.0, 9000.0}).applied);
    EXPECT_EQ(doc->integrals.size(), 1u);
}

// The zero order of a pivoted change is the change at the pivot: the first order turns the
// points on either side and leaves the pivot's own value.
TEST_F(ToolOperations, APivotedChangeLeavesThePivotPointAndRemovingItClearsTheStoredPhase) {
    const size_t n = axis().points, pivot = n / 3;
    const std::complex<float> atPivot = point(pivot), atEnd = point(n - 1);
    const PivotedPhase change{0.0, 90.0, double(pivot)};
    EXPECT_NEAR(zeroOrderAtFirstPoint(change, n), -30.0, 90.0 / double(n));
    ASSERT_TRUE(changeDocumentPhaseDegrees(*doc, zeroOrderAtFirstPoint(change, n), 90.0).applied);
    EXPECT_LT(std::abs(point(pivot) - atPivot), 1e-5f * std::abs(atPivot) + 1e-3f);
    EXPECT_GT(std::abs(point(n - 1) - atEnd), 0.5f * std::abs(atEnd));

    ASSERT_TRUE(automaticPhase(*doc, false).applied);
    const PivotedPhase back = removingPhase(axis(), double(pivot));
    changeDocumentPhaseDegrees(*doc, zeroOrderAtFirstPoint(back, n), back.firstDegrees);
    EXPECT_NEAR(axis().phase0, 0.0, 1e-5);
    EXPECT_NEAR(axis().phase1, 0.0, 1e-4);
}

}  // namespace
}  // namespace zolt

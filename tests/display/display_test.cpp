// Scales, levels and the plots' geometry, on records as a document holds them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "display/frequency_shift.h"
#include "display/insets.h"
#include "display/levels_colors.h"
#include "display/scale_ticks.h"
#include "display/vertical_scale.h"
#include "display/window_resize.h"

namespace zolt {
namespace {

struct TickCase {
    double d;
    double major;
    int minorPerMajor;
    const char* format;
};

class TickSteps : public ::testing::TestWithParam<TickCase> {};

void PrintTo(const TickCase& c, std::ostream* os) {
    *os << "d = " << c.d;
}

TEST_P(TickSteps, RoundTheRoughStepToOneTwoOrFive) {
    const TickCase c = GetParam();
    const ScaleTicks t = chooseTicks(10.0, 0.0, c.d);
    EXPECT_EQ(t.minorPerMajor, c.minorPerMajor);
    EXPECT_DOUBLE_EQ(-t.minorStep * t.minorPerMajor, c.major);
    EXPECT_EQ(t.format, c.format);
}

INSTANTIATE_TEST_SUITE_P(Examples, TickSteps,
                         ::testing::Values(TickCase{0.9, 1.0, 2, "%0.0f"},
                                           TickCase{0.3, 0.5, 5, "%#1.1f"},
                                           TickCase{2.2, 2.0, 2, "%0.0f"},
                                           TickCase{0.004, 0.005, 5, "%#1.3f"},
                                           TickCase{3e5, 5e5, 5, "%0.1e"}));

TEST(ScaleTicks, TenToZeroPpmLabelsEveryPpmWithOneMinorTickBetween) {
    const ScaleTicks t = chooseTicks(10.0, 0.0, 1.0);
    const std::vector<Tick> ticks = tickList(t);
    ASSERT_EQ(ticks.size(), 21u);  // the tick on the end, 0, is kept
    std::vector<std::string> labels;
    for (size_t i = 0; i < ticks.size(); ++i) {
        EXPECT_EQ(ticks[i].major, i % 2 == 0) << i;
        if (ticks[i].major) labels.push_back(tickLabel(t, ticks[i].value));
    }
    EXPECT_EQ(labels,
              (std::vector<std::string>{"10", "9", "8", "7", "6", "5", "4", "3", "2", "1", "0"}));
}

TEST(ScaleTicks, StartBetweenTicksBeginsAtTheNextMinorOneAndUpwardScalesWork) {
    const ScaleTicks down = chooseTicks(7.93, 7.01, 0.3);  // minor 0.1, majors every 0.5
    EXPECT_NEAR(down.first, 7.9, 1e-12);
    const std::vector<Tick> ticks = tickList(down);
    EXPECT_NEAR(ticks.back().value, 7.1, 1e-12);
    EXPECT_TRUE(ticks[4].major);  // 7.5
    EXPECT_EQ(tickLabel(down, ticks[4].value), "7.5");
    const ScaleTicks up = chooseTicks(0.0, 1.0, 0.3);
    EXPECT_NEAR(tickList(up).back().value, 1.0, 1e-12);  // an end on a tick is kept
    // A user's format is taken only when it prints one number.
    EXPECT_EQ(chooseTicks(10, 0, 1, "%.2f ppm").format, "%.2f ppm");
    EXPECT_EQ(chooseTicks(10, 0, 1, "%s").format, "%0.0f");
    EXPECT_TRUE(tickList(chooseTicks(1, 1, 0)).empty());  // a span of nothing
    EXPECT_TRUE(tickList(chooseTicks(1, 0, std::nan(""))).empty());
    EXPECT_EQ(tickList(chooseTicks(1e6, -1e6, 1e-3)).size(), 10000u);  // bounded
    EXPECT_TRUE(tickList(chooseTicks(1e300, -1e300, 1e-300)).empty());
}

TEST(VerticalScale, AmplificationClampsAndAFactorThatIsNoNumberChangesNothing) {
    DisplayParameters plot;
    plot.threshold = 100.0f;
    EXPECT_FLOAT_EQ(amplify(plot, 1.1), 100.0f / 1.1f);
    EXPECT_EQ(amplify(plot, 1e-30), kMaxThreshold);
    EXPECT_EQ(amplify(plot, 0.0), kMaxThreshold);
    EXPECT_EQ(amplify(plot, 1e30), kMinThreshold);
    EXPECT_EQ(amplify(plot, -2.0), kMinThreshold);
    plot.threshold = 100.0f;
    EXPECT_EQ(amplify(plot, std::nan("")), 100.0f);
}

TEST(VerticalScale, ContourLevelsMultiplySuccessivelyInFloats) {
    DisplayParameters plot;
    plot.threshold = 100.0f;
    plot.ratio = 1.4f;
    plot.positiveLevels = 3;
    plot.negativeLevels = 2;
    const ContourLevels plain = contourLevels(plot);
    const float m = 1.4f;
    EXPECT_EQ(plain.positive, (std::vector<float>{100.0f, 100.0f * m, 100.0f * m * m}));
    EXPECT_EQ(plain.negative, (std::vector<float>{-100.0f, -100.0f * m}));
    const ContourLevels stepped = contourLevels(plot, 2.0f);  // trunc(3 / 2) and trunc(2 / 2)
    EXPECT_EQ(stepped.positive.size(), 1u);
    EXPECT_EQ(stepped.negative.size(), 1u);
    EXPECT_EQ(contourLevels(plot, 0.0f).positive.size(), 30u);  // the step is at least 0.1
}

TEST(VerticalScale, AutomaticScaleFollowsTheExtremeTheLevelsShow) {
    SpectrumMatrix m;
    m.xIndex = 2;
    m.yIndex = 1;
    m.dims[2].points = 2;
    m.dims[1].points = 2;
    m.dims[2].isotope = 1;
    m.dims[1].isotope = 13;
    m.re = {4.0f, -64.0f, 32.0f, 1.0f, 1000.0f};  // the last value lies beyond the plane
    DisplayParameters plot;
    plot.hasVertical = true;
    plot.horizontal.fIndex = 2;
    plot.vertical.fIndex = 1;
    plot.positiveLevels = 20;
    plot.flags |= display_flags::kScaleSetByHand;
    setAutomaticScale(plot, m);
    EXPECT_EQ(plot.threshold, 2.0f);  // 32 / 16: two isotopes
    EXPECT_EQ(plot.positiveLevels, 10);
    EXPECT_FALSE(plot.flags & display_flags::kScaleSetByHand);
    plot.negativeLevels = 11;
    m.dims[1].isotope = 1;
    setAutomaticScale(plot, m);
    EXPECT_EQ(plot.threshold, 0.5f);  // |-64| / 128
    DisplayParameters oneD;
    oneD.box[3] = 206.0f;
    m.yIndex = 0;
    setAutomaticScale(oneD, m);
    EXPECT_EQ(oneD.threshold, 4.0f / 200.0f);  // the row shows 4 and -64; the box 206 - 6
}

DisplayParameters plotAt(std::array<float, 4> box, bool vertical) {
    DisplayParameters p;
    p.box = box;
    p.hasVertical = vertical;
    p.threshold = 10.0f;
    p.mainScale = 4.0f;
    p.auxiliaryScale = 8.0f;
    p.zeta = 2.0f;
    return p;
}

// The extremes of a plane are minmax_element's, also where its answer depends on the order
// of the comparisons (a NaN, zeros of both signs at an end) and in lengths off the vectors.
TEST(VerticalScale, ShownExtremesAreThoseOfTheValuesInOrder) {
    const float nan = std::nanf("");
    const std::vector<std::vector<float>> cases = {{3, -1, 4, 1, -5, 9, 2, 6, 5, -3, 5},
                                                   {0, 1, 2, 3, 4, 5, 6, -0.0f, 1, 2},
                                                   {-0.0f, -1, -2, -3, 0, -4, -5, -6, -7},
                                                   {1, 2, 3, nan, 5, 6, 7, 8, 9, -1},
                                                   {nan, 2, 3, 4, 5, 6, 7, 8},
                                                   {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, nan}};
    for (const auto& values : cases) {
        SpectrumMatrix m;
        m.dims[1].points = static_cast<uint32_t>(values.size());
        m.xIndex = 1;
        m.re = values;
        const auto [lo, hi] = std::minmax_element(values.begin(), values.end());
        const DataExtremes e = shownExtremes(m);
        EXPECT_EQ(std::memcmp(&e.minimum, &*lo, sizeof(float)), 0) << e.minimum;
        EXPECT_EQ(std::memcmp(&e.maximum, &*hi, sizeof(float)), 0) << e.maximum;
    }
}

TEST(WindowResize, MainPlotTakesTheChangeInsetsScaleWithTheWindow) {
    PageRecord page;
    page.plots = {plotAt({16, 20, 768, 480}, false), plotAt({100, 50, 200, 100}, true),
                  plotAt({400, 50, 200, 100}, false)};
    followResize(page, 800, 500, 400, 1000);
    EXPECT_EQ(page.plots[0].box, (std::array<float, 4>{16, 40, 368, 960}));
    EXPECT_EQ(page.plots[0].threshold, 5.0f);  // the spectrum keeps its height in the box
    EXPECT_EQ(page.plots[1].box, (std::array<float, 4>{50, 100, 100, 200}));
    EXPECT_EQ(page.plots[1].auxiliaryScale, 4.0f);
    EXPECT_EQ(page.plots[1].zeta, 2.0f);
    EXPECT_EQ(page.plots[2].mainScale, 8.0f);
    EXPECT_EQ(page.plots[2].auxiliaryScale, 16.0f);
    EXPECT_EQ(page.plots[2].zeta, 4.0f);
    EXPECT_EQ(page.plots[2].threshold, 5.0f);
    const PageRecord before = page;
    followResize(page, 400, 1000, 400, 1000);
    followResize(page, 0, 1000, 400, 10);
    EXPECT_EQ(page.plots[1].box, before.plots[1].box);
}

TEST(WindowResize, TenPixelsHighKeepsSixteenPixelPlots) {
    for (bool vertical : {false, true}) {
        PageRecord page;
        page.plots = {plotAt({64, 16, 720, 444}, vertical)};
        followResize(page, 800, 500, 10, 10);
        EXPECT_EQ(page.plots[0].box[2], kMinPlotPixels);
        EXPECT_EQ(page.plots[0].box[3], kMinPlotPixels);
    }
}

TEST(Insets, KeysRotateThePlotsAndRemovalFollowsTheMode) {
    PageRecord page;
    for (float z : {0.0f, 1.0f, 2.0f})
        page.plots.push_back(plotAt({0, 0, 16, 16}, false)), page.plots.back().zeta = z;
    const auto order = [&page] {
        std::vector<float> z;
        for (const auto& p : page.plots) z.push_back(p.zeta);
        return z;
    };
    pressInsetKey(page, '7');
    EXPECT_EQ(order(), (std::vector<float>{1, 2, 0}));
    EXPECT_EQ(page.insetMode, 1);
    pressInsetKey(page, '9');
    pressInsetKey(page, '9');
    EXPECT_EQ(order(), (std::vector<float>{2, 0, 1}));
    pressInsetKey(page, 'x');
    EXPECT_EQ(page.insetMode, 0);
    pressInsetKey(page, 'x');
    removeInsets(page);  // mode 1: the main plot goes
    EXPECT_EQ(order(), (std::vector<float>{0, 1}));
    EXPECT_EQ(page.insetMode, 1);
    removeInsets(page);
    EXPECT_EQ(order(), (std::vector<float>{1}));
    EXPECT_EQ(page.insetMode, 0);
    pressInsetKey(page, '7');
    EXPECT_EQ(page.insetMode, 0);  // no insets
    page.plots.push_back(page.plots[0]);
    removeInsets(page);  // mode 0: every inset goes
    EXPECT_EQ(page.plots.size(), 1u);
}

// A 2-D document: the main map shows f2 against f1, an inset the f1 trace, another a row.
TEST(FrequencyShift, ShiftingF2MovesItsLimitsItsObjectsAndTheZetaOfPlotsWithoutIt) {
    SpectrumDocument doc;
    doc.matrix.xIndex = 2;
    doc.matrix.yIndex = 1;
    doc.source.dims[2].lowestPpm = doc.matrix.dims[2].lowestPpm = -1.0f;
    DisplayParameters map;
    map.horizontal = {2, {1.0f, 9.0f}};
    map.hasVertical = true;
    map.vertical = {1, {10.0f, 150.0f}};
    DisplayParameters trace;
    trace.horizontal = {1, {10.0f, 150.0f}};
    trace.zeta = 7.0f;
    DisplayParameters split;
    split.horizontal = {2, {1.0f, 2.0f, 5.0f, 6.0f}};
    doc.page.plots = {map, trace, split};
    doc.peaks.twoD = {{7.0f, 130.0f}};
    doc.integrals.push_back({});
    doc.integrals[0].fields = {7.5f, 7.0f, 120.0f, 135.0f, kOpenLimit, 0.0f};
    doc.marks[0] = {3.0f};
    doc.marks[1] = {50.0f};

    const float d = 0.1f;
    moveFrequencyScale(doc, 2, d);
    EXPECT_EQ(doc.page.plots[0].horizontal.ppm, (std::vector<float>{1.0f + d, 9.0f + d}));
    EXPECT_EQ(doc.page.plots[0].vertical.ppm, (std::vector<float>{10.0f, 150.0f}));
    EXPECT_EQ(doc.page.plots[0].zeta, 0.0f);
    EXPECT_EQ(doc.page.plots[1].horizontal.ppm, (std::vector<float>{10.0f, 150.0f}));
    EXPECT_EQ(doc.page.plots[1].zeta, 7.0f + d);
    EXPECT_EQ(doc.page.plots[2].horizontal.ppm,
              (std::vector<float>{1.0f + d, 2.0f + d, 5.0f + d, 6.0f + d}));
    EXPECT_EQ(doc.source.dims[2].lowestPpm, -1.0f + d);
    EXPECT_EQ(doc.matrix.dims[2].lowestPpm, -1.0f + d);
    EXPECT_EQ(doc.peaks.twoD[0], (std::array<float, 2>{7.0f + d, 130.0f}));
    EXPECT_EQ(doc.integrals[0].fields,
              (std::array<float, 6>{7.5f + d, 7.0f + d, 120.0f, 135.0f, kOpenLimit, 0.0f}));
    EXPECT_EQ(doc.marks[0], (std::vector<float>{3.0f + d}));
    EXPECT_EQ(doc.marks[1], (std::vector<float>{50.0f}));
}

TEST(LevelsColors, ArrowsStepAndClampAndUndoRestoresWhatTheDialogOpenedWith) {
    EXPECT_EQ(stepLevelCount(126, 1), 127);
    EXPECT_EQ(stepLevelCount(127, 1), 127);
    EXPECT_EQ(stepLevelCount(0, -1), 0);
    EXPECT_EQ(stepLevelCount(-5, 1), 0);  // a damaged count comes back into range
    EXPECT_FLOAT_EQ(stepThreshold(100.0f, 1), 102.0f);
    EXPECT_FLOAT_EQ(stepThreshold(102.0f, -1), 100.0f);
    EXPECT_EQ(stepThreshold(kMaxThreshold, 1), kMaxThreshold);
    EXPECT_EQ(stepThreshold(kMinThreshold, -1), kMinThreshold);
    // With a vertical axis: steps of 0.02 within 1.15 ... 3; without: 0.005 within 0.01 ... 3.
    EXPECT_FLOAT_EQ(stepRatio(1.4f, 1, true), 1.42f);
    EXPECT_FLOAT_EQ(stepRatio(1.16f, -1, true), 1.15f);
    EXPECT_FLOAT_EQ(stepRatio(2.99f, 1, true), 3.0f);
    EXPECT_FLOAT_EQ(stepRatio(1.4f, -1, false), 1.395f);
    EXPECT_FLOAT_EQ(stepRatio(0.012f, -1, false), 0.01f);
    EXPECT_FLOAT_EQ(stepRatio(NAN, 1, true), 1.15f);

    PageRecord page;
    page.plots.resize(2);
    DisplayParameters& plot = page.plots[0];
    plot.flags = display_flags::kGrid | uint32_t(PlotMode::Contours);
    plot.positiveLevels = 12;
    const LevelsColorsState opened = levelsColorsState(page);
    choosePlotMode(plot, 6);
    EXPECT_EQ(plot.plotMode(), PlotMode::Mosaic);
    EXPECT_STREQ(kPlotModeNames[6], "Chessboard");
    choosePlotMode(plot, 7);  // not in the list
    EXPECT_EQ(plot.plotMode(), PlotMode::Mosaic);
    plot.positiveLevels = stepLevelCount(plot.positiveLevels, 1);
    plot.negativeLevels = stepLevelCount(plot.negativeLevels, 1);
    plot.threshold = stepThreshold(plot.threshold, -1);
    plot.ratio = stepRatio(plot.ratio, 1, true);
    page.color1 = {1, 2, 3};
    page.color2 = {4, 5, 6};
    restoreLevelsColors(page, opened);
    EXPECT_EQ(plot.flags, display_flags::kGrid | uint32_t(PlotMode::Contours));
    EXPECT_EQ(plot.positiveLevels, 12);
    EXPECT_EQ(plot.negativeLevels, 0);
    EXPECT_EQ(plot.threshold, 1.0f);
    EXPECT_EQ(plot.ratio, 1.4f);
    EXPECT_EQ(page.color1, (std::array<uint16_t, 3>{0, 0, 0}));
    EXPECT_EQ(page.color2, (std::array<uint16_t, 3>{0, 0, 0xffff}));
    PageRecord empty;
    restoreLevelsColors(empty, levelsColorsState(empty));  // no plots: nothing to read or change
    EXPECT_TRUE(empty.plots.empty());
}

}  // namespace
}  // namespace zolt

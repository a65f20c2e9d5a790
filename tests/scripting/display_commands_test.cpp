// The view commands on real data: scales, regions, referencing and marks.
#include <gtest/gtest.h>

#include <cfloat>

#include "app/application.h"
#include "app/recording_platform.h"
#include "display/default_display.h"
#include "test_data.h"

namespace zolt {
namespace {

class DisplayCommands : public ::testing::Test {
protected:
    SpectrumDocument& open(const std::string& name) {
        EXPECT_EQ(app.open(testdata::bruker(name)), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    std::string lastLogLine() {
        const std::string& log = app.scriptHost().log();
        return log.substr(log.rfind("\r\n") + 2);
    }
    DisplayParameters& main(SpectrumDocument& d) { return d.page.plots.at(0); }

    testing::RecordingPlatform platform;
    Application app{platform};
};

// The tallest point between lo and hi ppm.
double tallestPpm(const SpectrumDocument& d, double lo, double hi) {
    const DimensionRecord& r = d.matrix.dims[1];
    int64_t best = -1;
    for (int64_t i = pointOfPpm(r, hi); i <= pointOfPpm(r, lo); ++i)
        if (best < 0 || d.matrix.re[size_t(i)] > d.matrix.re[size_t(best)]) best = i;
    return ppmOfPoint(r, double(best));
}

TEST_F(DisplayCommands, ReferMovesTheTallestPeakNearChloroformToTheRequestedPpm) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("wft()"));
    const double before = tallestPpm(d, 7.16, 7.36);
    ASSERT_TRUE(run("refer(7.26)"));
    const double delta = 7.26 - before;
    EXPECT_NEAR(tallestPpm(d, 7.16 + delta, 7.36 + delta), 7.26, 1e-5);
    EXPECT_NEAR(main(d).horizontal.ppm[0], fullRange(d.matrix.dims[1])[0], 1e-6);
    ASSERT_TRUE(run("refer(7.26, 0.1)"));  // now in place: it stays
    EXPECT_NEAR(tallestPpm(d, 7.16, 7.36), 7.26, 1e-5);
    const float lowest = d.matrix.dims[1].lowestPpm;
    ASSERT_TRUE(run("refer(500)"));  // nothing there
    EXPECT_EQ(d.matrix.dims[1].lowestPpm, lowest);
}

TEST_F(DisplayCommands, ScaleIsAutomaticAfterTheTransformUntilSetByHand) {
    SpectrumDocument& d = open("aspirin-1h");
    const float fidScale = main(d).threshold;
    ASSERT_TRUE(run("wft()"));
    float maximum = -FLT_MAX;
    for (uint32_t i = 0; i < d.matrix.dims[1].points; ++i)
        maximum = std::max(maximum, d.matrix.re[i]);
    EXPECT_EQ(main(d).threshold, static_cast<float>(maximum / (main(d).box[3] - 6.0)));
    EXPECT_NE(main(d).threshold, fidScale);
    ASSERT_TRUE(run("print(amp(2) == amp())"));
    EXPECT_EQ(lastLogLine(), "true");
    ASSERT_TRUE(run("print(amp(1e-30))"));
    EXPECT_EQ(lastLogLine(), "99999997952");  // 1e11 as a float
    EXPECT_TRUE(main(d).flags & display_flags::kScaleSetByHand);
    ASSERT_TRUE(run("reload() wft()"));
    EXPECT_EQ(main(d).threshold, 1e11f);  // set by hand: kept
    ASSERT_TRUE(run("adj()"));
    EXPECT_FALSE(main(d).flags & display_flags::kScaleSetByHand);
}

TEST_F(DisplayCommands, RegionFullPaperMarksAndFlags) {
    SpectrumDocument& d = open("aspirin-1h");
    const std::vector<float> whole = main(d).horizontal.ppm;
    ASSERT_TRUE(run("region(9, 1.5) print(select('#', getmarks()))"));
    EXPECT_EQ(main(d).horizontal.ppm, (std::vector<float>{1.5f, 9.0f}));
    EXPECT_EQ(lastLogLine(), "0");
    ASSERT_TRUE(run("region(-1000, 1000)"));
    EXPECT_EQ(main(d).horizontal.ppm, whole);
    d.page.plots.push_back(main(d));
    ASSERT_TRUE(run("region(2, 3) full()"));
    EXPECT_EQ(d.page.plots.size(), 1u);
    EXPECT_EQ(main(d).horizontal.ppm, whole);

    ASSERT_TRUE(run("print(paper(400, 10))"));
    EXPECT_EQ(lastLogLine(), "400\t10");
    EXPECT_EQ(main(d).box[3], 16.0f);
    ASSERT_TRUE(run("print(paper())"));
    EXPECT_EQ(lastLogLine(), "400\t10");

    ASSERT_TRUE(run("mark(7.5, 'x', '2.5') mark('h', 3) print(getmarks())"));
    EXPECT_EQ(lastLogLine(), "7.5\t0\t2.5");
    ASSERT_TRUE(run("print(getmarks('H'))"));
    EXPECT_EQ(lastLogLine(), "3");

    ASSERT_TRUE(run("cw(true)"));
    EXPECT_EQ(d.flags, document_flags::kCustomWorkflow | document_flags::kModified);
    ASSERT_TRUE(run("cw()"));
    EXPECT_EQ(d.flags, document_flags::kModified);
    ASSERT_TRUE(run("bidi('W')"));  // a 1-D document keeps its fast plot
    EXPECT_EQ(main(d).plotMode(), PlotMode::Fast);
}

TEST_F(DisplayCommands, BidiChoosesTheModeOfATransformedMapFromItsFirstLetter) {
    SpectrumDocument& d = open("cyclosporin-hsqc");
    EXPECT_EQ(main(d).plotMode(), PlotMode::Contours);
    EXPECT_TRUE(main(d).hasVertical);
    ASSERT_TRUE(run("bidi('s')"));
    EXPECT_EQ(main(d).plotMode(), PlotMode::Contours);  // still an FID
    ASSERT_TRUE(run("wft() wft()"));
    for (const auto& [letter, mode] :
         {std::pair{"w", PlotMode::GradientContours}, std::pair{"Stacked", PlotMode::Stacked},
          std::pair{"z", PlotMode::WhiteWashed}, std::pair{"A", PlotMode::Arrayed},
          std::pair{"b", PlotMode::Mosaic}, std::pair{"x", PlotMode::Fast},
          std::pair{"C", PlotMode::Contours}}) {
        ASSERT_TRUE(run(std::string("bidi('") + letter + "')"));
        EXPECT_EQ(main(d).plotMode(), mode) << letter;
    }
    EXPECT_FALSE(run("bidi()"));
}

TEST_F(DisplayCommands, ColorAndFontSetThePageAndFontReportsIt) {
    SpectrumDocument& d = open("aspirin-1h");
    ASSERT_TRUE(run("print(font())"));
    EXPECT_EQ(lastLogLine(), "Verdana\t10");
    ASSERT_TRUE(run("print(font('DejaVu Serif', 300))"));  // the size stays within 1 ... 255
    EXPECT_EQ(lastLogLine(), "DejaVu Serif\t255");
    ASSERT_TRUE(run("print(font(nil, 9))"));
    EXPECT_EQ(lastLogLine(), "DejaVu Serif\t9");
    ASSERT_TRUE(run("color({ {65535, 0, -4}, {1, 2, 70000} })"));
    EXPECT_EQ(d.page.color1, (std::array<uint16_t, 3>{65535, 0, 0}));
    EXPECT_EQ(d.page.color2, (std::array<uint16_t, 3>{1, 2, 65535}));
    ASSERT_TRUE(run("color({ nil, {0, 0, 0} })"));  // the first colour is left as it is
    EXPECT_EQ(d.page.color1, (std::array<uint16_t, 3>{65535, 0, 0}));
    EXPECT_EQ(d.page.color2, (std::array<uint16_t, 3>{0, 0, 0}));
    EXPECT_TRUE(d.flags & document_flags::kModified);
    EXPECT_FALSE(run("color(3)"));
}

}  // namespace
}  // namespace zolt

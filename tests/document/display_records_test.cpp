// The page and display records in a document file: written in their order, read back exactly,
// and damaged values clamped.
#include "document/display_records.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "app/application.h"
#include "app/recording_platform.h"
#include "document/display_section.h"
#include "io/plist.h"
#include "operations/display_operations.h"
#include "operations/transform_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

void expectSamePlot(const DisplayParameters& a, const DisplayParameters& b) {
    EXPECT_EQ(a.box, b.box);
    EXPECT_EQ(a.mainScale, b.mainScale);
    EXPECT_EQ(a.auxiliaryScale, b.auxiliaryScale);
    EXPECT_EQ(a.threshold, b.threshold);
    EXPECT_EQ(a.ratio, b.ratio);
    EXPECT_EQ(a.zeta, b.zeta);
    EXPECT_EQ(a.flags & ~display_flags::kScaleSetByHand, b.flags);
    EXPECT_EQ(a.positiveLevels, b.positiveLevels);
    EXPECT_EQ(a.negativeLevels, b.negativeLevels);
    EXPECT_EQ(a.horizontal.fIndex, b.horizontal.fIndex);
    EXPECT_EQ(a.horizontal.ppm, b.horizontal.ppm);
    EXPECT_EQ(a.hasVertical, b.hasVertical);
}

TEST(DisplayRecordsFile, AspirinSavedTwiceIsByteIdenticalAndReopensWithItsRecords) {
    const std::string dir = testdata::freshTempDir("display") + "/aspirin-1h";
    fs::copy(testdata::bruker("aspirin-1h"), dir, fs::copy_options::recursive);
    testing::RecordingPlatform platform;
    PageRecord saved;
    std::string text;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        ASSERT_EQ(doc.page.plots.size(), 1u);
        weightAndTransform(doc, {});
        amplifyScale(doc, 1.7);
        showRegion(doc, {std::array<double, 2>{6.5, 8.25}});
        shiftScale(doc, 0.0123, 0);
        doc.page.plots.push_back(doc.page.plots[0]);  // an inset
        doc.page.plots[1].flags |= display_flags::kHzLabels | display_flags::kClip;
        doc.page.plots[1].box = {400.25f, 20.0f, 300.0f, 120.5f};
        doc.page.integralNormalization = 0.3f;
        doc.page.fontName = "Helvetica";
        saved = doc.page;
        ASSERT_TRUE(app.save(doc));
        text = testdata::readFile(dir + "/fid.zolt");
        ASSERT_TRUE(app.save(doc));
        EXPECT_EQ(testdata::readFile(dir + "/fid.zolt"), text);
    }
    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    const PageRecord& back = app.frontDocument()->page;
    ASSERT_EQ(back.plots.size(), 2u);
    for (size_t i = 0; i < 2; ++i) expectSamePlot(saved.plots[i], back.plots[i]);
    EXPECT_EQ(back.integralNormalization, 0.3f);
    EXPECT_EQ(back.fontName, "Helvetica");
    EXPECT_EQ(back.pageWidth, kDefaultClientWidth);
    ASSERT_TRUE(app.save(*app.frontDocument()));
    EXPECT_EQ(testdata::readFile(dir + "/fid.zolt"), text);
    EXPECT_TRUE(platform.boxes.empty());
}

TEST(DisplayRecordsFile, KeysComeInTheirOrder) {
    DisplayParameters map;
    map.flags = display_flags::kXAxis | display_flags::kYAxis | display_flags::kHzLabels |
                display_flags::kScaleOnLeft | display_flags::kFlatIntegrals |
                display_flags::kScaleSetByHand | 7;
    map.hasVertical = true;
    plist::Ref tree(displayParametersToTree(map));
    EXPECT_EQ(tree->keys, (std::vector<std::string>{"box origin xy size wh",
                                                    "main scale",
                                                    "auxiliary scale",
                                                    "threshold",
                                                    "ratio",
                                                    "hor. proj. ampl.",
                                                    "vert. proj. ampl.",
                                                    "zeta",
                                                    "plot mode",
                                                    "x axis",
                                                    "y axis",
                                                    "grid",
                                                    "same mm per ppm",
                                                    "scale on left",
                                                    "flat integrals",
                                                    "integrals as values",
                                                    "integrals as curves",
                                                    "frequencies",
                                                    "labels",
                                                    "notes",
                                                    "Hz Labels",
                                                    "positive levels",
                                                    "negative levels",
                                                    "limits"}));
    EXPECT_EQ(plist::lookUp(tree.get(), "plot mode")->text, "fast plot");  // mode 7
    EXPECT_EQ(plist::lookUp(tree.get(), "limits")->items.size(), 2u);
    EXPECT_FALSE(plist::lookUp(tree.get(), "grid")->boolean);

    SpectrumDocument doc;
    doc.page.plots = {map};
    plist::Ref window(windowStateToTree(doc));
    const std::vector<std::string>& keys = window->keys;
    const std::vector<std::string> pageKeys(keys.end() - 10, keys.end());
    EXPECT_EQ(pageKeys,
              (std::vector<std::string>{"page height", "page width", "font name", "font size",
                                        "scale unit", "integral digits", "integral normalization",
                                        "color 1st rgb", "color 2nd rgb", "the insets"}));
}

TEST(DisplayRecordsFile, DamagedValuesAreClampedAndMissingBooleansAreFalse) {
    const char* text =
        "<plist><dict><key>page height</key><integer>70000</integer>"
        "<key>scale unit</key><string>furlongs</string>"
        "<key>integral normalization</key><real>0</real>"
        "<key>color 1st rgb</key><array><integer>-4</integer></array>"
        "<key>the insets</key><array><string>no plot</string><dict>"
        "<key>threshold</key><real>-3</real><key>ratio</key><real>1e300</real>"
        "<key>box origin xy size wh</key><array><real>1e30</real></array>"
        "<key>positive levels</key><integer>1000</integer>"
        "<key>negative levels</key><integer>-5</integer>"
        "<key>plot mode</key><string>contour map</string><key>grid</key><true/>"
        "<key>limits</key><array><dict><key>f-index</key><integer>9</integer>"
        "<key>ppm</key><array><real>1</real><real>2</real><real>3</real></array></dict>"
        "<string>x</string></array></dict></array></dict></plist>";
    plist::Ref root(plist::read(text));
    ASSERT_TRUE(root);
    const PageRecord page = pageRecordFromTree(root.get());
    EXPECT_EQ(page.pageHeight, 65535);
    EXPECT_EQ(page.scaleUnit, ScaleUnit::Ppm);
    EXPECT_EQ(page.integralNormalization, 1.0f);
    EXPECT_EQ(page.color1[0], 0);
    ASSERT_EQ(page.plots.size(), 1u);
    const DisplayParameters& p = page.plots[0];
    EXPECT_EQ(p.threshold, 1e-06f);
    EXPECT_EQ(p.ratio, 3.0f);
    EXPECT_EQ(p.box[0], 1e6f);
    EXPECT_EQ(p.positiveLevels, 127);
    EXPECT_EQ(p.negativeLevels, 0);
    EXPECT_EQ(p.flags, display_flags::kGrid | 1u);  // "x axis" missing: false
    EXPECT_EQ(p.horizontal.fIndex, 3);
    EXPECT_EQ(p.horizontal.ppm, (std::vector<float>{1.0f, 2.0f}));
    EXPECT_TRUE(p.hasVertical);
    EXPECT_TRUE(p.vertical.ppm.empty());
}

}  // namespace
}  // namespace zolt

// The integration commands on the spectrometer's processed aspirin spectrum, the integral table
// on the clipboard, and the regions kept by the document file.
#include <gtest/gtest.h>

#include <filesystem>
#include <lua.hpp>

#include "analysis/integral_report.h"
#include "analysis/integration.h"
#include "app/application.h"
#include "app/integral_copy.h"
#include "app/recording_platform.h"
#include "operations/integral_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

Preferences processedData() {
    Preferences prefs;
    prefs.flags |= pref_flags::kReadProcessedData;
    return prefs;
}

class IntegralCommands : public ::testing::Test {
protected:
    IntegralCommands() : app(platform, processedData()) {}
    SpectrumDocument& open(const std::string& path = testdata::bruker("aspirin-1h-processed")) {
        EXPECT_EQ(app.open(path), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    // The numbers a chunk's expression gives, through a global table.
    std::vector<double> values(const std::string& expression) {
        EXPECT_TRUE(run("result = { " + expression + " }"));
        lua_State* L = app.scriptHost().state();
        lua_getglobal(L, "result");
        std::vector<double> out;
        for (int i = 1; i <= static_cast<int>(lua_objlen(L, -1)); ++i) {
            lua_rawgeti(L, -1, i);
            out.push_back(lua_tonumber(L, -1));
            lua_pop(L, 1);
        }
        lua_pop(L, 1);
        return out;
    }
    testing::RecordingPlatform platform;
    Application app;
};

void expectSameRegions(const SpectrumDocument& a, const SpectrumDocument& b) {
    ASSERT_EQ(a.integrals.size(), b.integrals.size());
    for (size_t k = 0; k < a.integrals.size(); ++k)
        EXPECT_EQ(a.integrals[k].fields, b.integrals[k].fields) << k;
    EXPECT_EQ(a.page.integralNormalization, b.page.integralNormalization);
}

// acut() is the cut with 10 points, 50 and 0.02 ppm; acut(0, -1, 1) clamps to 1, 2 and 0.
TEST_F(IntegralCommands, AcutDefaultsAndClamps) {
    SpectrumDocument& direct = open();
    SpectrumDocument& script = open();
    for (const auto& [chunk, p] : {std::pair{"acut()", AutoCutParameters{10, 50, 0.02f}},
                                   std::pair{"acut(0, -1, 1)", AutoCutParameters{1, 2, 0.0f}}}) {
        ASSERT_TRUE(automaticIntegration(direct, p).applied) << chunk;
        ASSERT_TRUE(run(chunk));
        ASSERT_FALSE(script.integrals.empty()) << chunk;
        expectSameRegions(direct, script);
    }
    EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(IntegralCommands, IntregReadsCountsAndSetsTheDivisor) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("acut()"));
    const auto count = values("intreg()");
    ASSERT_EQ(count, std::vector<double>{double(d.integrals.size())});
    const auto first = values("intreg(1)");
    ASSERT_EQ(first.size(), 3u);
    const double raw = integrateRegion(d.matrix, {}, d.integrals[0]);
    EXPECT_DOUBLE_EQ(first[0], raw / d.page.integralNormalization);
    EXPECT_EQ(first[1], d.integrals[0].fields[0]);
    EXPECT_EQ(first[2], d.integrals[0].fields[1]);
    EXPECT_TRUE(values("intreg(0)").empty());
    EXPECT_TRUE(values("intreg(" + std::to_string(d.integrals.size() + 1) + ")").empty());
    EXPECT_TRUE(values("intreg(1, 2)").empty());
    EXPECT_FLOAT_EQ(d.page.integralNormalization, float(raw / 2));
    EXPECT_NEAR(values("intreg(1)")[0], 2.0, 1e-6);
    // Every stored field below 10000: seven values in all.
    d.integrals[0].fields = {8, 7, 30, 20, 5, 6};
    EXPECT_EQ(values("intreg(1)").size(), 7u);
}

TEST_F(IntegralCommands, DelintNormiAndAbsint) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("acut(10, 0.02, 1000) intreg(1, 1)"));
    const std::vector<double> raw = rawIntegrals(d);
    size_t readingHalf = 0;
    for (double v : raw) readingHalf += v / d.page.integralNormalization >= 0.5;
    ASSERT_LT(readingHalf, raw.size());  // some go, some stay
    ASSERT_GT(readingHalf, 0u);
    d.flags = 0;
    ASSERT_TRUE(run("delint(0.5)"));
    EXPECT_EQ(d.integrals.size(), readingHalf);
    EXPECT_TRUE(d.flags & document_flags::kModified);

    ASSERT_TRUE(run("normi()"));
    EXPECT_FLOAT_EQ(d.page.integralNormalization, float(0.99 * integralUnit(rawIntegrals(d))));
    ASSERT_TRUE(run("absint()"));
    EXPECT_EQ(d.page.integralNormalization, 1.0f);
    ASSERT_TRUE(run("delint()"));
    EXPECT_TRUE(d.integrals.empty());
    ASSERT_TRUE(run("intreg(1, 3) normi()"));
    EXPECT_EQ(d.page.integralNormalization, 1.0f);
}

// With regions the baseline is an explicit polynomial fitted outside them; without, the
// automatic step as before.
TEST_F(IntegralCommands, PolyWithIntegralZonesFitsOutsideTheRegions) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("poly(3, 64, true)"));
    ASSERT_FALSE(d.processing.steps.empty());
    EXPECT_TRUE(std::holds_alternative<BaseplaneStep>(d.processing.steps.back().data));
    ASSERT_TRUE(run("acut() poly(3, 64, true) bline(2, 8, true)"));
    const auto* step = std::get_if<PolynomialStep>(&d.processing.steps.back().data);
    ASSERT_TRUE(step);
    EXPECT_EQ(step->order, 2);
    EXPECT_TRUE(std::holds_alternative<PolynomialStep>(d.processing.steps.end()[-2].data));
}

TEST_F(IntegralCommands, SavedRegionsAndDivisorComeBackExactly) {
    const std::string dir = testdata::freshTempDir("integrals") + "/aspirin";
    fs::copy(testdata::bruker("aspirin-1h-processed"), dir, fs::copy_options::recursive);
    SpectrumDocument& d = open(dir);
    ASSERT_TRUE(run("acut() exact() normi()"));
    ASSERT_FALSE(d.integrals.empty());
    d.integrals[0].fields[5] = 3.0f;
    ASSERT_TRUE(app.save(d));
    Application again(platform, processedData());
    ASSERT_EQ(again.open(d.documentPath), 1);
    expectSameRegions(d, *again.frontDocument());
}

// 1-D asks for midpoints or intervals; No gives the intervals. The list goes along.
TEST_F(IntegralCommands, CopyAsksForMidpointsAndPlacesTextAndList) {
    SpectrumDocument& d = open();
    ASSERT_TRUE(run("acut()"));
    platform.answer = MessageAnswer::No;
    app.preferences().flags |= pref_flags::kCommaSeparatedValues;
    copyIntegrals(app, {&d});
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "OK to report the midpoints?");
    EXPECT_EQ(platform.boxes[0].text, "yes = report the midpoints\r\nno = report the intervals");
    EXPECT_EQ(platform.boxes[0].buttons, MessageButtons::YesNo);
    EXPECT_EQ(platform.clipboard, integralReportText({&d}, false, 1.0, true));
    EXPECT_NE(platform.clipboard.find(".."), std::string::npos);
    EXPECT_NE(platform.clipboardList.find("<array>"), std::string::npos);
    EXPECT_EQ(platform.beeps, 1);
}

}  // namespace
}  // namespace zolt

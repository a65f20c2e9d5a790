#include "scripting/script_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <regex>

#include "app/application.h"
#include "app/recording_platform.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

class ScriptHostTest : public ::testing::Test {
protected:
    ScriptHostTest() : app(platform, preferencesWithFolder()) {}

    Preferences preferencesWithFolder() {
        Preferences p;
        p.scriptsFolder = folder;
        return p;
    }
    SpectrumDocument& openAspirin() {
        EXPECT_EQ(app.open(testdata::bruker("aspirin-1h")), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    std::string lastLogLine() {
        const std::string& log = app.scriptHost().log();
        return log.substr(log.rfind("\r\n") + 2);
    }
    FourierTransformStep& step(SpectrumDocument& d, int f) {
        return *findFourierTransformStep(d.processing, f);
    }
    void writeScript(const std::string& name, const std::string& text) {
        std::ofstream(folder + "/" + name) << text;
    }

    std::string folder = testdata::freshTempDir("scripts");
    testing::RecordingPlatform platform;
    Application app;
};

TEST_F(ScriptHostTest, FillRaisesToAPowerOfTwoWithinItsLimits) {
    SpectrumDocument& d = openAspirin();
    ASSERT_TRUE(run("fill(1000)"));
    EXPECT_EQ(step(d, 1).ftSize, 1024u);
    ASSERT_TRUE(run("fill(5)"));
    EXPECT_EQ(step(d, 1).ftSize, 32u);
    ASSERT_TRUE(run("fill(10^7, true)"));
    EXPECT_EQ(step(d, 1).ftSize, 524288u);
    EXPECT_TRUE(step(d, 1).flags & ft_flags::kLinearPrediction);
    ASSERT_TRUE(run("fill('65536')"));  // numeric strings count as numbers
    EXPECT_EQ(step(d, 1).ftSize, 65536u);
    EXPECT_FALSE(step(d, 1).flags & ft_flags::kLinearPrediction);
}

TEST_F(ScriptHostTest, GetfReadsTheAxisAndClampsTheDimension) {
    SpectrumDocument& d = openAspirin();
    ASSERT_TRUE(run("local t = getf('y') print(t.size, t.atom, t.mass, t.MHz > 0)"));
    EXPECT_EQ(lastLogLine(), std::to_string(d.matrix.dims[1].points) + "\tH\t1\ttrue");
    ASSERT_TRUE(run("print(getf(7).size, getf(-2).size, getf('z').size)"));
    EXPECT_EQ(lastLogLine(), "1\t" + std::to_string(d.matrix.dims[1].points) + "\t" +
                                 std::to_string(d.matrix.dims[1].points));
}

TEST_F(ScriptHostTest, QueriesDescribeTheFrontDocument) {
    SpectrumDocument& d = openAspirin();
    ASSERT_TRUE(run("print(numdim()) print(todo()) print(pathtofile() == nil, sys_slash())"));
    const std::string& log = app.scriptHost().log();
    EXPECT_NE(log.find("\r\n1\t1\r\n"), std::string::npos);
    EXPECT_EQ(lastLogLine(), "false\t/");
    ASSERT_TRUE(run("title('aspirin') print(title(), solvent())"));
    EXPECT_EQ(d.metadata.title, "aspirin");
    EXPECT_EQ(lastLogLine(), "aspirin\t" + d.metadata.solvent);
    ASSERT_TRUE(run("print(todo(2.6), todo(-4))"));
    EXPECT_EQ(lastLogLine(), "3\t0");
    ASSERT_TRUE(run("print(rkpp(), rkpp(true), rkpp(false))"));
    EXPECT_EQ(lastLogLine(), "false\ttrue\tfalse");
}

TEST_F(ScriptHostTest, OptionCommandsSetTheNextTransformStep) {
    SpectrumDocument& d = openAspirin();
    step(d, 1).flags = ft_flags::kMagnitude | ft_flags::kApplyWeights | ft_flags::kSineBell;
    ASSERT_TRUE(run("ft(true, false, 1, nil) weight(0.3, nil, 90) shuffle(7)"));
    const FourierTransformStep& s = step(d, 1);
    EXPECT_EQ(s.flags, ft_flags::kQuadrature | ft_flags::kRealFt | ft_flags::kMagnitude |
                           ft_flags::kApplyWeights | ft_flags::kExponential | ft_flags::kSineBell);
    EXPECT_FLOAT_EQ(s.weights[kWeightExponential], 0.3f);
    EXPECT_FLOAT_EQ(s.weights[kWeightGaussian], 0.0f);
    EXPECT_FLOAT_EQ(s.weights[kWeightSineBell], 90.0f);
    EXPECT_EQ(s.shuffling, Shuffling::EchoAntiEcho);
    // Taken as given: the ranges are the dialog's, not the command's.
    ASSERT_TRUE(run("weight(500, nil, -1e9, nil, 1000, 9)"));
    EXPECT_FLOAT_EQ(step(d, 1).weights[kWeightExponential], 500.0f);
    EXPECT_FLOAT_EQ(step(d, 1).weights[kWeightSineBell], -1e9f);
    EXPECT_FLOAT_EQ(step(d, 1).weights[kWeightTruncation], 1000.0f);
    EXPECT_FLOAT_EQ(step(d, 1).weights[kWeightFirstPoint], 9.0f);
    ASSERT_TRUE(run("weight() shuffle(-1)"));
    EXPECT_EQ(step(d, 1).flags & ft_flags::kAnyWeighting, 0);
    EXPECT_EQ(step(d, 1).shuffling, Shuffling::None);
    // A document already in the frequency domain is left alone.
    d.source.highestTIndex = 0;
    ASSERT_TRUE(run("fill(64) ft(false, true)"));
    EXPECT_NE(step(d, 1).ftSize, 64u);
    EXPECT_FALSE(step(d, 1).flags & ft_flags::kConjugate);
}

TEST_F(ScriptHostTest, AWrongArgumentStopsTheChunkAndKeepsWhatWasDone) {
    SpectrumDocument& d = openAspirin();
    EXPECT_FALSE(run("title('first') fill(2048) title({}) fill(64)"));
    const std::string expected =
        "[string \"input\"]:1: bad argument #1 to 'title' (string expected, got table)";
    EXPECT_EQ(lastLogLine(), expected);
    EXPECT_EQ(app.scriptHost().messageLine(), expected);
    EXPECT_EQ(d.metadata.title, "first");
    EXPECT_EQ(step(d, 1).ftSize, 2048u);
    EXPECT_FALSE(run("open()"));
    EXPECT_EQ(lastLogLine(),
              "[string \"input\"]:1: bad argument #1 to 'open' (string expected, got no value)");
    EXPECT_FALSE(run("fill('many')"));
    EXPECT_EQ(lastLogLine(),
              "[string \"input\"]:1: bad argument #1 to 'fill' (number expected, got string)");
    EXPECT_FALSE(run("x = = 1"));
    EXPECT_NE(lastLogLine().find("unexpected symbol"), std::string::npos);
    EXPECT_FALSE(run("error({})"));
    EXPECT_EQ(lastLogLine(), "(error object is a table value)");
}

TEST_F(ScriptHostTest, AnEmptyTargetListMakesEveryCommandASilentNoOp) {
    const char* chunk = R"(
        local function none(...) assert(select('#', ...) == 0) end
        none(numdim()) none(getf('x')) none(todo(1)) none(copy()) none(pathtofile())
        none(title()) none(solvent()) none(rkpp(true))
        fill(1000) ft(true) weight(1) shuffle(1) magn() hilbert() noneg() reload()
        resize({size = 8}) title('nobody')
        assert(#target() == 0) assert(forall() == false) next_window() shell()
    )";
    EXPECT_TRUE(run(chunk)) << app.scriptHost().log();
    EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(ScriptHostTest, TheLogDropsItsOldestBytesButNeverTheNewestLine) {
    ScriptHost& host = app.scriptHost();
    EXPECT_TRUE(std::regex_match(host.log(),
                                 std::regex(R"(\d{1,2}-\d{1,2}-\d{4}   \d{1,2}:\d{1,2}:\d{1,2})")))
        << host.log();
    const std::string line(1000, 'a');
    for (int i = 0; i < 16; ++i) host.appendLog(line);
    EXPECT_LE(host.log().size(), kLogLimit);
    const std::string newest = "newest " + std::string(3000, 'z');
    host.appendLog(newest);
    EXPECT_EQ(host.log().size(), kLogLimit);
    EXPECT_TRUE(host.log().ends_with("\r\n" + newest));
    // Everything older than the newest line was cut from the front, not from the middle.
    EXPECT_EQ(host.log().find_first_not_of("a\r\n"), host.log().size() - newest.size());
    host.appendLog(std::string(20000, 'b'));
    EXPECT_EQ(host.log().size(), kLogLimit);
    EXPECT_EQ(host.log().substr(0, 3), "\r\nb");
}

TEST_F(ScriptHostTest, PrintJoinsWithTabsAndEveryLineReachesTheListener) {
    std::vector<std::string> lines;
    app.setLogListener([&](std::string_view l) { lines.emplace_back(l); });
    ASSERT_TRUE(run("print(1, 'two', nil, true, 2.5)"));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "print(1, 'two', nil, true, 2.5)");
    EXPECT_EQ(lines[1], "1\ttwo\tnil\ttrue\t2.5");
    EXPECT_EQ(app.scriptHost().messageLine(), lines[1]);
    ASSERT_TRUE(run("copylog() print(#cliptext() > 0) cliptext('hello') print(cliptext())"));
    EXPECT_EQ(platform.clipboard, "hello");
    EXPECT_EQ(lines.back(), "hello");
    ASSERT_TRUE(run("clear()"));
    EXPECT_EQ(app.scriptHost().log(), "");
    EXPECT_TRUE(app.scriptHost().history().empty());
}

TEST_F(ScriptHostTest, TheHistoryKeepsTheNewest24) {
    ScriptHost& host = app.scriptHost();
    EXPECT_FALSE(host.historyUp(""));
    for (int i = 1; i <= 30; ++i) host.executeInput("x = " + std::to_string(i));
    ASSERT_EQ(host.history().size(), kHistoryLimit);
    EXPECT_EQ(host.history().front(), "x = 7");
    EXPECT_EQ(host.history().back(), "x = 30");
    // Up after typing keeps the typed line reachable with Down.
    EXPECT_EQ(host.historyUp("typed"), "x = 30");
    EXPECT_EQ(host.historyUp(""), "x = 29");
    EXPECT_EQ(host.historyDown(), "x = 30");
    EXPECT_EQ(host.historyDown(), "typed");
    EXPECT_FALSE(host.historyDown());
    EXPECT_FALSE(host.executeInput(""));
}

TEST_F(ScriptHostTest, TargetsFollowForallAndSkipSpinSystems) {
    SpectrumDocument& first = openAspirin();
    SpectrumDocument& second = openAspirin();
    auto spins = std::make_unique<SpectrumDocument>();
    spins->source.numberType = NumberType::SpinSystem;
    app.addDocument(std::move(spins));
    ASSERT_TRUE(run("print(#target()) print(forall(true), #target()) title('all')"));
    EXPECT_EQ(second.metadata.title, "all");  // the front document, the first target
    EXPECT_NE(first.metadata.title, "all");
    ASSERT_TRUE(run("print(#target()) fill(64)"));
    EXPECT_EQ(app.scriptHost().log().find("\r\n1\r\ntrue\t2\r\n") != std::string::npos, true);
    EXPECT_EQ(step(first, 1).ftSize, 64u);
    EXPECT_EQ(step(second, 1).ftSize, 64u);
    ASSERT_TRUE(run("local t = target() target(t[2]) fill(128) print(#target())"));
    EXPECT_EQ(lastLogLine(), "1");
    EXPECT_EQ(step(first, 1).ftSize, 128u);
    EXPECT_EQ(step(second, 1).ftSize, 64u);
    ASSERT_TRUE(run("next_window() print(forall())"));
    EXPECT_EQ(lastLogLine(), "false");
    EXPECT_EQ(app.frontDocument(), &first);
    EXPECT_FALSE(run("target(5)"));
}

TEST_F(ScriptHostTest, ScriptsRunFromTheScriptsFolder) {
    writeScript("Lua.init", "greeting = 'hello from init'");
    writeScript("twice.lua", "return 2 * (...or 21), 'x'");
    writeScript("broken.lua", "error('broken script')");
    ASSERT_TRUE(run("print(greeting) print(run('twice'))"));
    EXPECT_EQ(lastLogLine(), "42\tx");
    EXPECT_NE(app.scriptHost().log().find("hello from init"), std::string::npos);
    EXPECT_FALSE(run("run('broken') print('not reached')"));
    EXPECT_EQ(lastLogLine(), folder + "/broken.lua:1: broken script");
    EXPECT_TRUE(app.scriptHost().runScript("twice"));
    EXPECT_FALSE(app.scriptHost().runScript("missing"));
    EXPECT_FALSE(run("run('missing')"));
    EXPECT_NE(lastLogLine().find("cannot open"), std::string::npos);
}

TEST_F(ScriptHostTest, CopyPasteAndNonegWorkOnTheRealParts) {
    SpectrumDocument& d = openAspirin();
    const size_t n = d.matrix.re.size();
    ASSERT_TRUE(run("local t = copy() print(#t, t.x, t.y, t.z)"));
    EXPECT_EQ(lastLogLine(), std::to_string(n) + "\t" + std::to_string(n) + "\t1\t1");
    ASSERT_TRUE(run("local t = copy() for i = 1, #t do t[i] = i - 3 end paste(t) noneg()"));
    EXPECT_TRUE(d.matrix.realOnly());
    EXPECT_EQ(d.matrix.re[0], 0.0f);
    EXPECT_EQ(d.matrix.re[3], 1.0f);
    ASSERT_TRUE(run("paste({1, 2, 3, 4, 5, 6, x = 3, y = 2}) print(numdim()) print(#target())"));
    ASSERT_EQ(app.documentList().size(), 2u);
    const SpectrumMatrix& m = app.frontDocument()->matrix;
    EXPECT_EQ(m.re, (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(m.dims[m.xIndex].points, 3u);
    EXPECT_EQ(m.dims[m.yIndex].points, 2u);
}

TEST_F(ScriptHostTest, SetfidMakesAZeroFidThatResizeReshapes) {
    ASSERT_TRUE(run("setfid({size = 2048, width = 12, MHz = 500.13, atom = 'C', mass = 13})"));
    SpectrumDocument& d = *app.frontDocument();
    EXPECT_EQ(d.matrix.re.size(), 2048u);
    ASSERT_TRUE(run("local t = getf() print(t.size, t.width, t.atom, t.mass, numdim())"));
    EXPECT_EQ(lastLogLine(), "2048\t12\tC\t13\t1\t1");
    ASSERT_TRUE(run("resize({size = 100, start = -2}) print(getf().size, getf().start)"));
    EXPECT_EQ(d.matrix.re.size(), 100u);
    EXPECT_EQ(d.matrix.im.size(), 100u);
    EXPECT_EQ(lastLogLine(), "100\t-2");
}

TEST_F(ScriptHostTest, MagnitudeTogglesOnlyWhereItDiffers) {
    SpectrumDocument& d = openAspirin();
    const std::vector<float> re = d.matrix.re, im = d.matrix.im;
    ASSERT_TRUE(run("magn() magn(true)"));  // the second call finds nothing to change
    EXPECT_TRUE(d.matrix.state & matrix_state::kMagnitude);
    EXPECT_FLOAT_EQ(d.matrix.re[100], std::hypot(re[100], im[100]));
    ASSERT_TRUE(run("magn(false)"));
    EXPECT_FALSE(d.matrix.state & matrix_state::kMagnitude);
    EXPECT_NEAR(d.matrix.re[100], re[100], 1e-3 * std::abs(re[100]) + 1e-3);
    EXPECT_NEAR(d.matrix.im[100], im[100], 1e-3 * std::abs(im[100]) + 1e-3);
}

TEST_F(ScriptHostTest, HilbertGivesARealSpectrumItsImaginaryPart) {
    ASSERT_TRUE(run("local t = {} for i = 1, 64 do t[i] = math.cos(i) end paste(t) magn(true)"));
    SpectrumMatrix& m = app.frontDocument()->matrix;
    EXPECT_TRUE(m.realOnly());
    EXPECT_FALSE(m.state & matrix_state::kMagnitude);  // nothing to take the modulus of
    ASSERT_TRUE(run("hilbert()"));
    EXPECT_FALSE(m.realOnly());
    ASSERT_EQ(m.im.size(), 64u);
    double energy = 0;
    for (float v : m.im) energy += double(v) * v;
    EXPECT_GT(energy, 1.0);
}

TEST_F(ScriptHostTest, WftTransformsTheNextDimensionAndPhasesProtonSpectra) {
    SpectrumDocument& d = openAspirin();
    ASSERT_TRUE(run("fill(32768) weight(0.3) wft(true, false) print(todo())"));
    EXPECT_EQ(lastLogLine(), "1");  // weighted and zero-filled only
    EXPECT_FALSE(step(d, 1).flags & ft_flags::kStopBeforeTransform);
    ASSERT_EQ(app.open(testdata::bruker("aspirin-1h")), 1);
    SpectrumDocument& fresh = *app.frontDocument();
    ASSERT_TRUE(run("fill(32768) wft() print(todo(), getf().size)"));
    EXPECT_EQ(lastLogLine(), "0\t32768");
    EXPECT_TRUE(step(fresh, 1).flags & ft_flags::kApplyWeights);
    EXPECT_NE(fresh.matrix.dims[1].phase0, 0.0f);  // the automatic phase ran
    ASSERT_TRUE(run("wft() print(todo())"));       // nothing left to transform
    EXPECT_EQ(lastLogLine(), "0");

    ASSERT_EQ(app.open(testdata::bruker("cyclosporin-cosy")), 1);
    ASSERT_TRUE(run("wft(true, true) print(todo()) wft(true, true, true) print(numdim())"));
    EXPECT_EQ(lastLogLine(), "2\t0");
    EXPECT_NE(app.scriptHost().log().find("\r\n1\r\n2\t0"), std::string::npos);
    EXPECT_TRUE(platform.boxes.empty());
}

}  // namespace
}  // namespace zolt

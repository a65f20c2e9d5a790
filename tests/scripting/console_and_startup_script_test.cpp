// The default start-up script as compiled in and as written out, and the console's keys.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "app/recording_platform.h"
#include "scripting/console_input.h"
#include "scripting/startup_script.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

TEST(StartupScript, TheDefaultIsTheSourceFileByteForByte) {
    const fs::path source = fs::path(__FILE__).parent_path() / "../../src/scripting/autoexec.lua";
    const std::string text = testdata::readFile(source.string());
    ASSERT_GT(text.size(), 1000u);
    EXPECT_EQ(defaultStartupScript(), text);
}

TEST(StartupScript, EnsuringWritesItOnceAndRecreatesItWhenDeleted) {
    const std::string root = testdata::freshTempDir("ensure");
    const std::string folder = root + "/Documents/Zolt scripts";
    const std::string script = folder + "/autoexec.lua";
    ASSERT_TRUE(ensureStartupScriptIn(folder));  // parents created
    EXPECT_EQ(testdata::readFile(script), defaultStartupScript());
    std::ofstream(script) << "print('mine')";
    ASSERT_TRUE(ensureStartupScriptIn(folder));  // the user's own script stays
    EXPECT_EQ(testdata::readFile(script), "print('mine')");
    fs::remove(script);
    ASSERT_TRUE(ensureStartupScriptIn(folder));
    EXPECT_EQ(testdata::readFile(script), defaultStartupScript());
    // No folder, or a file where the folder should be.
    EXPECT_FALSE(ensureStartupScriptIn(""));
    EXPECT_FALSE(ensureStartupScriptIn(script));
}

class ConsoleTest : public ::testing::Test {
protected:
    void type(const std::string& line) {
        host.setInputLine(line);
        pressConsoleKey(host, ConsoleKey::Enter);
    }
    std::string press(ConsoleKey key) {
        pressConsoleKey(host, key);
        return host.inputLine();
    }

    static Preferences withOwnScriptsFolder() {
        Preferences p;
        p.scriptsFolder = testdata::freshTempDir("console-scripts");
        return p;
    }

    testing::RecordingPlatform platform;
    Application app{platform, withOwnScriptsFolder()};
    ScriptHost& host = app.scriptHost();
};

TEST_F(ConsoleTest, UpAndDownWalkTheHistoryAndKeepATypedLine) {
    EXPECT_EQ(press(ConsoleKey::Up), "");  // empty history: nothing
    EXPECT_EQ(press(ConsoleKey::Down), "");
    type("x = 1");
    type("x = x + 1");
    EXPECT_EQ(host.inputLine(), "");
    EXPECT_EQ(host.log().substr(host.log().size() - 18), "\r\nx = 1\r\nx = x + 1");
    host.setInputLine("print(x)");  // typed, not run
    EXPECT_EQ(press(ConsoleKey::Up), "x = x + 1");
    EXPECT_EQ(press(ConsoleKey::Up), "x = 1");
    EXPECT_EQ(press(ConsoleKey::Up), "x = 1");  // at the oldest entry
    EXPECT_EQ(press(ConsoleKey::Down), "x = x + 1");
    EXPECT_EQ(press(ConsoleKey::Down), "print(x)");
    EXPECT_EQ(press(ConsoleKey::Down), "print(x)");  // nothing after it
    pressConsoleKey(host, ConsoleKey::Enter);
    EXPECT_EQ(host.messageLine(), "2");
}

TEST_F(ConsoleTest, TheHistoryKeepsThe24NewestLines) {
    for (int i = 1; i <= 30; ++i) type("y = " + std::to_string(i));
    ASSERT_EQ(host.history().size(), 24u);
    EXPECT_EQ(host.history().front(), "y = 7");
    EXPECT_EQ(press(ConsoleKey::Up), "y = 30");
    type("");  // an empty line is not run and not kept
    EXPECT_EQ(host.history().back(), "y = 30");
}

TEST_F(ConsoleTest, PageKeysCopyTheMessageLineAndEscapeAndArrowsAmplify) {
    EXPECT_EQ(press(ConsoleKey::PageUp), "--");
    type("function amp(x) print('amp', x) end");  // records what the keys ask for
    type("error('no such peak', 0)");
    EXPECT_EQ(host.messageLine(), "no such peak");
    EXPECT_EQ(press(ConsoleKey::PageDown), "no such peak");
    host.setInputLine("kept");
    pressConsoleKey(host, ConsoleKey::Escape);
    EXPECT_EQ(host.messageLine(), "amp\tnil");
    EXPECT_EQ(host.inputLine(), "kept");
    stepAmplification(host, -1);
    EXPECT_EQ(host.messageLine(), "amp\t1.1");
    stepAmplification(host, 1);
    EXPECT_EQ(host.messageLine(), "amp\t0.9");
    EXPECT_EQ(host.history().size(), 2u);  // the keys and arrows leave no history
}

}  // namespace
}  // namespace zolt

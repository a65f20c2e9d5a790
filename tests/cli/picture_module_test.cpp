// zolt-cli maps Qt's GUI libraries only when something draws, and the commands that draw nothing
// work without the picture module.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cli/cli_run.h"
#include "test_data.h"

namespace zolt {
namespace {

TEST(PictureModule, IsLoadedOnlyWhenSomethingDraws) {
    const std::string svg = testdata::freshTempDir("cli-module") + "/a.svg";
    const std::string mapped =
        "local function gui() return io.open('/proc/self/maps'):read('*a'):find('libQt6Gui') ~= "
        "nil end ";
    const auto r = testdata::runCli(
        {"run", "-e",
         mapped + "local before = gui() ft() picture('" + svg + "') print(before, gui())",
         testdata::bruker("aspirin-1h")});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "false\ttrue\n");
}

TEST(PictureModule, MissingOrBrokenModuleStopsTheDrawingCommandsAlone) {
    const std::string dir = testdata::freshTempDir("cli-alone");
    const std::string cli = dir + "/zolt-cli", module = dir + "/zolt-cli-pictures.so";
    std::filesystem::copy_file(testdata::cliPath(), cli);
    const std::string aspirin = testdata::bruker("aspirin-1h");
    for (const bool broken : {false, true}) {
        if (broken) std::ofstream(module) << "not a module\n";
        const std::string reason = broken ? module + ": file too short"
                                          : module +
                                                ": cannot open shared object file: No such "
                                                "file or directory";
        const std::string message = "zolt-cli: cannot load the picture module: " + reason + "\n";
        const auto plot = testdata::runCliAt(cli, {"plot", "--out", dir + "/a.png", aspirin});
        EXPECT_EQ(plot.status, 1);
        EXPECT_EQ(plot.err, message);
        const auto picture =
            testdata::runCliAt(cli, {"run", "-e", "ft() picture('" + dir + "/a.svg')", aspirin});
        EXPECT_EQ(picture.status, 1);
        EXPECT_EQ(picture.err.substr(0, message.size()), message);
        const auto processing =
            testdata::runCliAt(cli, {"run", "-e", "ft() print(1 + 1)", aspirin});
        EXPECT_EQ(processing.status, 0) << processing.err;
        EXPECT_EQ(processing.out, "2\n");
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/a.png") ||
                 std::filesystem::exists(dir + "/a.svg"));
}

}  // namespace
}  // namespace zolt

// zolt-cli plot on real data: the chunks run before the picture is written, picture() writes
// more on the way, and a malformed command line writes nothing.
#include <gtest/gtest.h>

#include "cli/cli_run.h"
#include "test_data.h"

namespace zolt {
namespace {

TEST(PlotCommand, WritesThePicturesOfAProcessedSpectrum) {
    const std::string dir = testdata::freshTempDir("cli-plot");
    const std::string svg = dir + "/a.svg";
    const auto r =
        testdata::runCli({"plot", "-e", "ft() picture('" + svg + "', 'SVG ')", "--out",
                          dir + "/a.png", "--size", "640x400", testdata::bruker("aspirin-1h")});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(testdata::readFile(dir + "/a.png").substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_NE(testdata::readFile(svg).find("<svg"), std::string::npos);
    // Scripts run by `run` draw as well, without a screen.
    const auto run = testdata::runCli(
        {"run", "-e", "ft() picture('" + dir + "/r.pdf')", testdata::bruker("aspirin-1h")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(testdata::readFile(dir + "/r.pdf").substr(0, 5), "%PDF-");

    for (const std::vector<std::string>& bad :
         {std::vector<std::string>{"plot", "--out", dir + "/b.png"},
          {"plot", "--size", "640", "--out", dir + "/b.png", testdata::bruker("aspirin-1h")},
          {"plot", "--levels", "200,0", "--out", dir + "/b.png", testdata::bruker("aspirin-1h")}}) {
        EXPECT_EQ(testdata::runCli(bad).status, 2);
    }
    const auto unknown =
        testdata::runCli({"plot", "--out", dir + "/c.xyz", testdata::bruker("aspirin-1h")});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.err.find("zolt-cli plot: cannot write " + dir + "/c.xyz\n"),
              std::string::npos);
}

}  // namespace
}  // namespace zolt

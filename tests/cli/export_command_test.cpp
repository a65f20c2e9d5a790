// zolt-cli export --jcamp on real data: a data set as its FID, a saved document as the
// spectrum its processing makes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "app/document_opening.h"
#include "io/jcamp/jcamp_writer.h"
#include "operations/export_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

int runCli(const std::string& arguments) {
    const std::string command =
        "'" + testdata::cliPath() + "' " + arguments + " >/dev/null 2>&1 </dev/null";
    const int rc = std::system(command.c_str());
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
}

TEST(ExportCommand, WritesTheFidOfADataSetAndTheSpectrumOfASavedDocument) {
    const std::string dir = testdata::freshTempDir("cli-export");
    const std::string set = dir + "/aspirin";
    fs::copy(testdata::bruker("aspirin-1h"), set, fs::copy_options::recursive);

    ASSERT_EQ(runCli("export --jcamp '" + dir + "/fid.dx' '" + set + "'"), 0);
    Message failure;
    const auto doc = readDocument(set, Preferences{}, failure);
    ASSERT_TRUE(doc);
    const std::string fid = testdata::readFile(dir + "/fid.dx");
    EXPECT_TRUE(exportJcamp(*doc, dir + "/same.dx"));
    EXPECT_EQ(fid, testdata::readFile(dir + "/same.dx"));
    EXPECT_NE(fid.find("##DATA TYPE= NMR FID\r\n"), std::string::npos);

    // Transformed and saved beside the data: the document file says how to process it.
    ASSERT_EQ(runCli("run -e 'wft()' --save '" + set + "'"), 0);
    ASSERT_EQ(runCli("export --jcamp '" + dir + "/spectrum.dx' '" + set + "'"), 0);
    const std::string spectrum = testdata::readFile(dir + "/spectrum.dx");
    EXPECT_NE(spectrum.find("##DATA TYPE= NMR SPECTRUM\r\n"), std::string::npos);

    EXPECT_EQ(runCli("export --jcamp '" + dir + "/x.dx' '" + dir + "/missing'"), 1);
    EXPECT_EQ(runCli("export '" + dir + "/x.dx' '" + set + "'"), 2);
    EXPECT_FALSE(fs::exists(dir + "/x.dx"));
    fs::remove_all(dir);
}

}  // namespace
}  // namespace zolt

// zolt-cli process over a tree of copied test sets, and zolt-cli run --auto, each with a home
// folder of its own so that the user's scripts and settings are never touched.
#include "cli/process_command.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "scripting/startup_script.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string out, err;
};

std::string quoted(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

Outcome cli(const std::string& home, const std::vector<std::string>& args) {
    std::string command = "HOME=" + quoted(home) + " XDG_CONFIG_HOME=" + quoted(home + "/config") +
                          " " + quoted(testdata::cliPath());
    for (const auto& a : args) command += " " + quoted(a);
    command += " >" + quoted(home + "/out") + " 2>" + quoted(home + "/err") + " </dev/null";
    Outcome o;
    const int raw = std::system(command.c_str());
    o.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    o.out = testdata::readFile(home + "/out");
    o.err = testdata::readFile(home + "/err");
    return o;
}

// A home whose scripts folder holds the given start-up script.
std::string homeWithStartupScript(const std::string& text) {
    const std::string home = testdata::freshTempDir("cli-home");
    fs::create_directories(home + "/Documents/Zolt scripts");
    std::ofstream(home + "/Documents/Zolt scripts/autoexec.lua") << text;
    return home;
}

class ProcessCommand : public ::testing::Test {
protected:
    // tree/aspirin-1h/1, tree/naphtoicAcid-1h/1 and tree/broken/1, an aspirin whose FID is
    // empty.
    ProcessCommand() {
        for (const std::string folder : {"aspirin-1h", "naphtoicAcid-1h", "broken"}) {
            fs::create_directories(tree + "/" + folder);
            const std::string set = folder == "broken" ? "aspirin-1h" : folder;
            fs::copy(testdata::bruker(set), tree + "/" + folder + "/1",
                     fs::copy_options::recursive);
        }
        fs::resize_file(tree + "/broken/1/fid", 0);
    }
    std::string root = testdata::freshTempDir("process");
    std::string tree = root + "/tree";
};

TEST_F(ProcessCommand, EveryDataSetIsProcessedSavedAndTabulatedPastAFailure) {
    const std::string home = homeWithStartupScript("print('start-up script') wft()");
    const std::string script = root + "/size.lua";
    std::ofstream(script) << "fill(4096) wft() print(getf().size)";
    const Outcome r = cli(home, {"process", "--script", script, "--out", root + "/out", tree});
    EXPECT_EQ(r.status, 1);
    // The same lines in any directory order; the broken set's message box on standard error.
    EXPECT_EQ(r.out,
              "4096\n4096\n2 of 3 data sets processed\nfailed: tree/broken/1: Failed to Read the "
              "file: Error found while trying to read data-points\n");
    EXPECT_EQ(r.err, "Failed to Read the file: Error found while trying to read data-points\n");
    for (const char* set : {"aspirin-1h", "naphtoicAcid-1h"}) {
        SCOPED_TRACE(set);
        EXPECT_TRUE(fs::exists(tree + "/" + set + "/1/fid.zolt"));
        for (const char* table : {"peaks.txt", "integrals.txt"}) {
            EXPECT_TRUE(fs::exists(root + "/out/tree/" + set + "/1/" + table));
            EXPECT_FALSE(fs::exists(tree + "/" + set + "/1/" + table));
        }
    }
    EXPECT_FALSE(fs::exists(tree + "/broken/1/fid.zolt"));
    EXPECT_FALSE(fs::exists(root + "/out/tree/broken"));

    // The start-up script of the scripts folder by default, tables beside the data; a saved
    // document is opened again as itself.
    const Outcome again = cli(home, {"process", tree + "/aspirin-1h/1/", tree + "/missing"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.out, "start-up script\n1 of 1 data sets processed\nfailed: " + tree +
                             "/missing: This file or folder does not exist\n");
    EXPECT_TRUE(fs::exists(tree + "/aspirin-1h/1/peaks.txt"));
    EXPECT_TRUE(fs::exists(tree + "/aspirin-1h/1/integrals.txt"));

    // A script error fails the data set, which is not saved again.
    const std::string stop = root + "/stop.lua";
    std::ofstream(stop) << "wft() error('no peaks here', 0)";
    const std::string saved = testdata::readFile(tree + "/naphtoicAcid-1h/1/fid.zolt");
    const Outcome failing = cli(home, {"process", "--script", stop, tree + "/naphtoicAcid-1h"});
    EXPECT_EQ(failing.status, 1);
    EXPECT_EQ(failing.out,
              "no peaks here\n0 of 1 data sets processed\nfailed: naphtoicAcid-1h/1: no peaks "
              "here\n");
    EXPECT_EQ(testdata::readFile(tree + "/naphtoicAcid-1h/1/fid.zolt"), saved);
}

TEST_F(ProcessCommand, MalformedCommandLinesAndAFolderWithoutDataSets) {
    const std::string home = homeWithStartupScript("");
    EXPECT_EQ(cli(home, {"process"}).status, 2);
    EXPECT_EQ(cli(home, {"process", "--out"}).status, 2);
    EXPECT_EQ(cli(home, {"process", "--bogus", tree}).status, 2);
    const Outcome help = cli(home, {"process", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out, kProcessUsage);
    fs::create_directories(root + "/empty");
    const Outcome empty = cli(home, {"process", root + "/empty"});
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(empty.out, "0 of 0 data sets processed\nfailed: " + root +
                             "/empty: Complete Failure: no file was recognized: Hint: try "
                             "starting from an outer or an inner folder\n");
    const Outcome unreadable = cli(home, {"process", "--script", root + "/none.lua", tree});
    EXPECT_EQ(unreadable.status, 1);
    EXPECT_EQ(unreadable.err, "zolt-cli process: cannot read " + root + "/none.lua\n");
}

TEST(RunAuto, OnlyAutoRunsTheStartupScriptAndWritesTheDefaultWhenMissing) {
    const std::string home = homeWithStartupScript("print('auto', numdim())");
    const std::string set = testdata::bruker("aspirin-1h");
    const Outcome plain = cli(home, {"run", "-e", "print(numdim())", set});
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_EQ(plain.out, "1\t1\n");
    const Outcome automatic = cli(home, {"run", "--auto", "-e", "print(numdim())", set});
    EXPECT_EQ(automatic.status, 0) << automatic.err;
    EXPECT_EQ(automatic.out, "auto\t1\t1\n1\t1\n");

    const std::string empty = testdata::freshTempDir("cli-home");
    EXPECT_EQ(cli(empty, {"run", "-e", "print(1)"}).status, 0);
    EXPECT_FALSE(fs::exists(empty + "/Documents"));
    EXPECT_EQ(cli(empty, {"run", "--auto", "-e", "print(1)"}).status, 0);
    EXPECT_EQ(testdata::readFile(empty + "/Documents/Zolt scripts/autoexec.lua"),
              defaultStartupScript());
}

}  // namespace
}  // namespace zolt

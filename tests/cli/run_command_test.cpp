#include "cli/run_command.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

#include "test_data.h"

namespace zolt {
namespace {

struct Outcome {
    int status = -1;
    std::string out, err;
};

std::string quoted(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

// Runs zolt-cli run with a home folder of its own, so that no user settings are read or written.
Outcome runCli(const std::vector<std::string>& args) {
    static const std::string home = testdata::freshTempDir("run-home");
    const std::string dir = testdata::freshTempDir("run-out");
    std::string command = "HOME=" + quoted(home) + " XDG_CONFIG_HOME=" + quoted(home + "/config") +
                          " " + quoted(testdata::cliPath()) + " run";
    for (const auto& a : args) command += " " + quoted(a);
    command += " >" + quoted(dir + "/out") + " 2>" + quoted(dir + "/err") + " </dev/null";
    Outcome o;
    const int raw = std::system(command.c_str());
    o.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    o.out = testdata::readFile(dir + "/out");
    o.err = testdata::readFile(dir + "/err");
    return o;
}

TEST(RunCommand, TransformsAndCopiesTheFrontDocument) {
    auto r = runCli({"-e", "fill(32768) weight(0.3) wft() magn(true) local t = copy() print(#t)",
                     testdata::bruker("aspirin-1h")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "32768\n");
}

TEST(RunCommand, AScriptWithForallProcessesEveryOpenedDataSet) {
    const std::string dir = testdata::freshTempDir("run-script");
    const std::string script = dir + "/each.lua";
    std::ofstream(script) << "forall(true)\n"
                             "fill(256)\n"
                             "wft()\n"
                             "local t = target()\n"
                             "for i = 1, #t do target(t[i]) print(numdim()) end\n";
    auto r = runCli({script, testdata::bruker("cyclosporin-cosy"),
                     testdata::bruker("cyclosporin-hsqc"), testdata::bruker("cyclosporin-hmbc")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2\t1\n2\t1\n2\t1\n");
}

TEST(RunCommand, ErrorsGiveANonZeroStatus) {
    auto r = runCli({"-e", "print('before') title({}) print('after')"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out,
              "before\n[string \"input\"]:1: bad argument #1 to 'title' (string expected, got "
              "table)\n");

    const std::string missing = testdata::freshTempDir("run-missing") + "/nothing.dat";
    std::ofstream(missing) << "no spectrum here";
    r = runCli({"-e", "print(numdim())", missing});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Failed to Read the file: This format is unknown\n");
    EXPECT_EQ(r.out, "\n");  // numdim() gave nothing to print

    // A failure shown as a message box inside a chunk fails the run, though the chunk goes on.
    const std::string unknown = missing;
    r = runCli({"-e", "open('" + unknown + "') print('after')"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Failed to Read the file: This format is unknown\n");
    EXPECT_EQ(r.out, "after\n");
    r = runCli({"-e", "open('/no/such/folder') print('after')"});  // nothing to report
    EXPECT_EQ(r.status, 0) << r.err;
    // An export that cannot be written is reported, and the run fails with it.
    // (A plain file stands where its folder should be: not even root can write there.)
    r = runCli({"-e", "export('" + missing + "/package')", testdata::bruker("aspirin-1h")});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "There was a System Error: Failed to Create the File\n");
}

TEST(RunCommand, UsageAndUnreadableScripts) {
    auto r = runCli({"--help"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, kRunUsage);
    r = runCli({"-e"});
    EXPECT_EQ(r.status, 2);
    r = runCli({"--verbose"});
    EXPECT_EQ(r.status, 2);
    r = runCli({"/no/such/script.lua"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "zolt-cli run: cannot read /no/such/script.lua\n");
}

}  // namespace
}  // namespace zolt

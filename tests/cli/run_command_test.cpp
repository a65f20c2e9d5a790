#include "cli/run_command.h"

#include <gtest/gtest.h>

#include <fstream>

#include "cli/cli_run.h"

namespace zolt {
namespace {

using testdata::runCli;

// The arguments after "run".
testdata::CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), "run");
    return runCli(args);
}

TEST(RunCommand, TransformsAndCopiesTheFrontDocument) {
    auto r = run({"-e", "fill(32768) weight(0.3) wft() magn(true) local t = copy() print(#t)",
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
    auto r = run({script, testdata::bruker("cyclosporin-cosy"),
                  testdata::bruker("cyclosporin-hsqc"), testdata::bruker("cyclosporin-hmbc")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2\t1\n2\t1\n2\t1\n");
}

TEST(RunCommand, ErrorsGiveANonZeroStatus) {
    auto r = run({"-e", "print('before') title({}) print('after')"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out,
              "before\n[string \"input\"]:1: bad argument #1 to 'title' (string expected, got "
              "table)\n");

    const std::string missing = testdata::freshTempDir("run-missing") + "/nothing.dat";
    std::ofstream(missing) << "no spectrum here";
    r = run({"-e", "print(numdim())", missing});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Failed to Read the file: This format is unknown\n");
    EXPECT_EQ(r.out, "\n");  // numdim() gave nothing to print

    // A failure shown as a message box inside a chunk fails the run, though the chunk goes on.
    const std::string unknown = missing;
    r = run({"-e", "open('" + unknown + "') print('after')"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Failed to Read the file: This format is unknown\n");
    EXPECT_EQ(r.out, "after\n");
    r = run({"-e", "open('/no/such/folder') print('after')"});  // nothing to report
    EXPECT_EQ(r.status, 0) << r.err;
    // An export that cannot be written is reported, and the run fails with it.
    // (A plain file stands where its folder should be: not even root can write there.)
    r = run({"-e", "export('" + missing + "/package')", testdata::bruker("aspirin-1h")});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "There was a System Error: Failed to Create the File\n");
}

TEST(RunCommand, UsageAndUnreadableScripts) {
    auto r = run({"--help"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, kRunUsage);
    r = run({"-e"});
    EXPECT_EQ(r.status, 2);
    r = run({"--verbose"});
    EXPECT_EQ(r.status, 2);
    r = run({"/no/such/script.lua"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "zolt-cli run: cannot read /no/such/script.lua\n");
}

}  // namespace
}  // namespace zolt

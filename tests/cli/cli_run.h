// Runs the built zolt-cli as a user or a script would: with a home folder of its own, so that no
// user settings are read or written, and its output and errors caught in files.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "test_data.h"

namespace zolt::testdata {

struct CliRun {
    int status = -1;
    std::string out, err;
};

inline std::string quoted(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

// `program`: the built zolt-cli, or a copy of it elsewhere.
inline CliRun runCliAt(const std::string& program, const std::vector<std::string>& args) {
    static const std::string home = freshTempDir("cli-home");
    const std::string dir = freshTempDir("cli-out");
    std::string command = "HOME=" + quoted(home) + " XDG_CONFIG_HOME=" + quoted(home + "/config") +
                          " " + quoted(program);
    for (const auto& a : args) command += " " + quoted(a);
    command += " >" + quoted(dir + "/out") + " 2>" + quoted(dir + "/err") + " </dev/null";
    const int raw = std::system(command.c_str());
    CliRun r{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(dir + "/out"),
             readFile(dir + "/err")};
    std::filesystem::remove_all(dir);
    return r;
}

inline CliRun runCli(const std::vector<std::string>& args) {
    return runCliAt(cliPath(), args);
}

}  // namespace zolt::testdata

// zolt-cli: the headless program. Each command lives in its own file beside this one.
#include <iostream>
#include <string>
#include <vector>

#include "base/memory_reuse.h"
#include "cli/export_command.h"
#include "cli/info_command.h"
#include "cli/plot_command.h"
#include "cli/process_command.h"
#include "cli/run_command.h"

namespace {

constexpr const char* kUsage =
    "usage: zolt-cli COMMAND [ARGUMENTS]\n"
    "\n"
    "commands:\n"
    "  info PATH... [--json] [--points N] [--processed]   what a data set holds\n"
    "  run [-e CHUNK | SCRIPT.lua]... [PATH...]   runs Lua on the data sets\n"
    "  process [--script FILE.lua] [--out DIR] PATH...   processes every data set found\n"
    "  export --jcamp OUT PATH   writes the FID or spectrum as JCAMP-DX\n"
    "  plot [-e CHUNK]... --out FILE [--size WxH] PATH   draws the page to PNG, PDF or SVG\n"
    "\n"
    "zolt-cli COMMAND --help describes a command.\n";

}  // namespace

int main(int argc, char** argv) {
    zolt::keepFreedMemoryForReuse();
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty()) {
        std::cerr << kUsage;
        return 2;
    }
    const std::string& command = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (command == "--help" || command == "-h" || command == "help") {
        std::cout << kUsage;
        return 0;
    }
    if (command == "info") return zolt::runInfoCommand(rest, std::cout, std::cerr);
    if (command == "run") return zolt::runRunCommand(rest, std::cout, std::cerr);
    if (command == "process") return zolt::runProcessCommand(rest, std::cout, std::cerr);
    if (command == "plot") return zolt::runPlotCommand(rest, std::cout, std::cerr);
    if (command == "export") return zolt::runExportCommand(rest, std::cout, std::cerr);
    std::cerr << "zolt-cli: unknown command " << command << "\n" << kUsage;
    return 2;
}

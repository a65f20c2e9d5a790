// zolt-cli run: opens data sets and runs Lua chunks and scripts on them, headless.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zolt {

class Application;
class HeadlessPlatform;

inline constexpr const char* kRunUsage =
    "usage: zolt-cli run [--auto] [--save] [-e CHUNK | SCRIPT.lua]... [PATH...]\n"
    "\n"
    "Opens each PATH as a document (a data set, or every data set inside a folder; the last\n"
    "one opened is the front document), then runs the chunks and scripts in the order given,\n"
    "in the same interpreter, with the program's script commands. Each line the console log\n"
    "receives is written to standard output; message boxes go to standard error as\n"
    "\"caption: text\".\n"
    "\n"
    "  -e CHUNK    Lua text to run (chunk name \"input\")\n"
    "  SCRIPT.lua  a script file to run (chunk name: its base name)\n"
    "  --save      at the end, save every open document in place (beside its data)\n"
    "  --auto      process each newly read data set with the start-up script (autoexec.lua\n"
    "              of the scripts folder, written there when missing) and run the custom\n"
    "              workflow of each reopened document, as the desktop program does; without\n"
    "              it only the chunks and scripts given run\n"
    "\n"
    "Exit status: 0; 1 when a chunk or script raised an error or a path could not be opened;\n"
    "2 for a malformed command line.\n";

struct RunItem {
    bool isFile = false;  // a script file, else chunk text
    std::string text;
};

struct RunOptions {
    std::vector<RunItem> items;
    std::vector<std::string> paths;
    bool help = false;
    bool save = false;       // save every open document in place at the end
    bool automatic = false;  // opening runs the start-up script and custom workflows
};

// nullopt for a malformed command line.
std::optional<RunOptions> parseRunArguments(const std::vector<std::string>& args);

// Opens the paths and runs the items in the application; the exit status: 1 when a path could
// not be opened, or an item raised a Lua error or made the program show a message box on
// `platform` (the application's), whose failure nobody saw.
int runInApplication(Application& app, const HeadlessPlatform& platform, const RunOptions& options,
                     std::ostream& out, std::ostream& err);

// args: everything after "run".
int runRunCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zolt

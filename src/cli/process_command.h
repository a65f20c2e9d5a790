// zolt-cli process: every data set under the given paths processed by one script, saved, and
// its peak and integral tables written, one data set at a time.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zolt {

class Application;
class HeadlessPlatform;

inline constexpr const char* kProcessUsage =
    "usage: zolt-cli process [--script FILE.lua] [--out DIR] PATH...\n"
    "\n"
    "Finds every data set under the paths as Open Folder does and takes them one at a time,\n"
    "in the order of their names: opens it, runs the start-up script on it (autoexec.lua of\n"
    "the scripts folder, written there when missing) or the script given, saves it in place,\n"
    "and writes its peak table and its integral table, as copied to the clipboard, to\n"
    "peaks.txt and integrals.txt in its folder (NAME.peaks.txt and NAME.integrals.txt beside\n"
    "a data set that is one file).\n"
    "A data set fails when opening or the script shows a message box or raises an error, or\n"
    "when saving or writing fails; it is left as it was and the others go on. A summary with\n"
    "each failure ends the output; on a terminal a progress line precedes each data set.\n"
    "\n"
    "  --script FILE.lua  the script to run instead of the start-up script\n"
    "  --out DIR          write the tables under DIR instead, in the tree of folders found\n"
    "                     from each PATH (its own name included)\n"
    "\n"
    "Exit status: 0; 1 when a data set or a path failed; 2 for a malformed command line.\n";

struct ProcessOptions {
    std::optional<std::string> script;
    std::string outFolder;  // empty: the tables go beside the data
    std::vector<std::string> paths;
    bool help = false;
};

// nullopt for a malformed command line (no path, an option without its value).
std::optional<ProcessOptions> parseProcessArguments(const std::vector<std::string>& args);

// One data set found, and where its tables go.
struct DataSetJob {
    std::string path;
    std::string name;  // its path from the folder holding the PATH it was found under
    std::string tableFolder;
    std::string tableStem;  // before "peaks.txt": empty, or a one-file data set's name and "."
};

// A path that names nothing, or a folder without any data set, gives the failure to report.
struct FoundDataSets {
    std::vector<DataSetJob> jobs;
    std::vector<std::string> failures;
};
FoundDataSets findDataSets(const ProcessOptions& options);

// Processes the data sets in the application, whose preferences must already hold the
// scripts folder; the exit status. `progress` receives a line per data set when not null.
int processInApplication(Application& app, const HeadlessPlatform& platform,
                         const ProcessOptions& options, std::ostream& out, std::ostream& err,
                         std::ostream* progress);

// args: everything after "process".
int runProcessCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zolt

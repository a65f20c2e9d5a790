// zolt-cli export: writes a data set or a saved document in another program's format.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zolt {

inline constexpr const char* kExportUsage =
    "usage: zolt-cli export --jcamp OUT PATH\n"
    "\n"
    "Opens PATH (a data set, or a saved document, processed as its file says) and writes its\n"
    "1-D FID or spectrum to OUT as JCAMP-DX. The intensity shown at full height is written\n"
    "as 80000.\n"
    "\n"
    "Exit status: 0; 1 when PATH cannot be opened or OUT cannot be written (also for data of\n"
    "more than one dimension); 2 for a malformed command line.\n";

// args: everything after "export".
int runExportCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zolt

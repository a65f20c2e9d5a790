// zolt-cli plot: a picture of a data set's page, after chunks of Lua run on it.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zolt {

inline constexpr const char* kPlotUsage =
    "usage: zolt-cli plot [--auto] [-e CHUNK]... --out FILE [--size WxH] [--levels P,N]\n"
    "                     [--processed] PATH\n"
    "\n"
    "Opens PATH, sets the size and the levels given, runs the chunks on it in the order given,\n"
    "and writes a picture of the front document's page to FILE: PNG, JPEG, PDF or SVG by its\n"
    "extension. The script command picture(path, type) writes further pictures on the way.\n"
    "\n"
    "  -e CHUNK    Lua text to run (chunk name \"input\")\n"
    "  --out FILE  the picture to write\n"
    "  --size WxH  the window's client area in pixels, as paper(W, H) sets it (default: the\n"
    "              document's own, 800x500 for new data)\n"
    "  --levels P,N  the numbers of positive and negative contour levels of the main plot\n"
    "              (0 ... 127 each), as the Levels & Colors dialog sets them\n"
    "  --auto      process newly read data with the start-up script first\n"
    "  --processed open the processed data (pdata/1/1r, 2rr, 3rrr) where the folder has them\n"
    "\n"
    "Exit status: 0; 1 when the path could not be opened, a chunk failed or the picture could\n"
    "not be written; 2 for a malformed command line.\n";

struct PlotOptions {
    std::vector<std::string> chunks;
    std::string out;
    int width = 0, height = 0;                     // 0: the document's own size
    int positiveLevels = -1, negativeLevels = -1;  // -1: the document's own
    std::string path;
    bool automatic = false;
    bool processed = false;
    bool help = false;
};

// nullopt for a malformed command line.
std::optional<PlotOptions> parsePlotArguments(const std::vector<std::string>& args);

// args: everything after "plot".
int runPlotCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zolt

// zolt-cli info: what a spectrometer data set holds, as a readable summary or as one JSON
// object per line and path.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/preferences.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kInfoUsage =
    "usage: zolt-cli info PATH... [--json] [--points N] [--processed]\n"
    "\n"
    "Reads each data set (a Bruker experiment folder or a file inside it) and prints its\n"
    "format, dimensions, number type and flags, every axis (points, spectral width, carrier,\n"
    "lowest ppm, nucleus, time shift, FT preferences, phases), title, solvent and pulse\n"
    "program.\n"
    "\n"
    "  --json      one JSON object per line and path\n"
    "  --points N  also the first N complex points of the first row, as [re, im] pairs\n"
    "  --processed the processed data (pdata/1/1r, 2rr, 3rrr) where the folder has them\n"
    "\n"
    "A path that cannot be read is reported on standard error as \"caption: text\"; the\n"
    "other paths are still read and the exit status is 1.\n";

struct InfoOptions {
    std::vector<std::string> paths;
    bool json = false;
    bool processed = false;
    size_t points = 0;
};

// nullopt for a malformed command line.
std::optional<InfoOptions> parseInfoArguments(const std::vector<std::string>& args);

// The preferences info opens with: the defaults, saved processing not replayed, and the
// processed data read when asked.
Preferences infoPreferences(bool processed);

std::string infoJson(const std::string& path, const SpectrumDocument& doc, size_t points);
std::string infoText(const std::string& path, const SpectrumDocument& doc, size_t points);

// args: everything after "info". The exit status: 0, 1 when a path could not be read,
// 2 for a malformed command line.
int runInfoCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zolt

// The start-up script of the scripts folder ("autoexec.lua") and the program's own default of
// it, compiled in from src/scripting/autoexec.lua.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

// Run by name from the scripts folder for every newly read data set.
inline constexpr const char* kStartupScriptName = "autoexec";
inline constexpr const char* kStartupScriptFile = "autoexec.lua";

// The default start-up script, byte for byte as it lies in the source tree.
std::string_view defaultStartupScript();

// Creates the folder with its missing parents and writes the default script into it unless
// "autoexec.lua" is there already. True when the script exists afterwards: false for an empty
// folder name, a folder that cannot be created, or a write that did not complete.
bool ensureStartupScriptIn(const std::string& folder);

}  // namespace zolt

// The program's commands in the interpreter's global table, one alphabetical table per group.
#pragma once

#include <lua.hpp>
#include <vector>

namespace zolt {

extern const luaL_Reg kConsoleCommands[];
extern const luaL_Reg kTargetCommands[];
extern const luaL_Reg kDocumentCommands[];
extern const luaL_Reg kDataCommands[];
extern const luaL_Reg kTransformCommands[];
extern const luaL_Reg kPhaseBaselineCommands[];
extern const luaL_Reg kDisplayCommands[];
extern const luaL_Reg kIntegralCommands[];
extern const luaL_Reg kPeakCommands[];
extern const luaL_Reg kPictureCommands[];

// Every group, in registration order.
const std::vector<const luaL_Reg*>& commandGroups();

}  // namespace zolt

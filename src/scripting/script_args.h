// Argument conventions shared by the commands, and the documents they act upon.
#pragma once

#include <lua.hpp>
#include <vector>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"
#include "scripting/script_host.h"

namespace zolt {

inline ScriptHost& host(lua_State* L) {
    return ScriptHost::of(L);
}
inline const std::vector<SpectrumDocument*>& targets(lua_State* L) {
    return ScriptHost::of(L).targets();
}
// Queries read the first target only; nullptr when the list is empty.
inline SpectrumDocument* firstTarget(lua_State* L) {
    return ScriptHost::of(L).firstTarget();
}

// Lua truth; an absent or nil argument takes the default.
inline bool optBoolean(lua_State* L, int i, bool def) {
    return lua_isnoneornil(L, i) ? def : lua_toboolean(L, i) != 0;
}
// A number or a numeric string, truncated towards zero and clamped to lo ... hi
// (NaN gives lo).
long long optClampedInteger(lua_State* L, int i, double def, long long lo, long long hi);
double clampNumber(double x, double lo, double hi);

// t[key] = value for the table on top of the stack.
inline void setNumberField(lua_State* L, const char* key, double value) {
    lua_pushnumber(L, value);
    lua_setfield(L, -2, key);
}

// Shows the operation's message, then redraws the document when it changed.
void finish(lua_State* L, SpectrumDocument& d, const OperationResult& result);

}  // namespace zolt

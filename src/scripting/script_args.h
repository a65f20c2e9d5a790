// Argument conventions shared by the commands, and the documents they act upon.
#pragma once

#include <lua.hpp>
#include <vector>

#include "model/spectrum_document.h"
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

// Still has dimensions in the time domain.
inline bool inTimeDomain(const SpectrumDocument& d) {
    return d.source.highestTIndex > 0;
}

// The FT step of a dimension: the document's FT preferences for it, created when missing.
FourierTransformStep& fourierTransformStep(SpectrumDocument& d, int fIndex);

}  // namespace zolt

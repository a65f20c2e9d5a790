// What the document windows show and at which scale.
#include <cctype>
#include <cmath>
#include <optional>
#include <string>

#include "operations/display_operations.h"
#include "operations/page_style_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// A string argument starting with "h" (either case) names the vertical axis.
bool namesVerticalAxis(lua_State* L, int i) {
    if (lua_type(L, i) != LUA_TSTRING) return false;
    return std::tolower(static_cast<unsigned char>(lua_tostring(L, i)[0])) == 'h';
}

int adj(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, adjustScale(*d));
    return 0;
}

int amp(lua_State* L) {
    const double factor = luaL_optnumber(L, 1, 1.0);
    bool first = true;
    float scale = 0.0f;
    for (SpectrumDocument* d : targets(L)) {
        const float s = amplifyScale(*d, factor);
        if (first) scale = s, first = false;
        finish(L, *d, {true, {}});
    }
    if (first) return 0;
    lua_pushnumber(L, scale);
    return 1;
}

int bidi(lua_State* L) {
    const char letter = luaL_checkstring(L, 1)[0];
    for (SpectrumDocument* d : targets(L)) finish(L, *d, setPlotModeFromLetter(*d, letter));
    return 0;
}

// Entry i of the table at index t: an array of three components, 0 ... 65535 each; nothing when
// it is not a table.
std::optional<Rgb16> colourEntry(lua_State* L, int t, int i) {
    lua_rawgeti(L, t, i);
    std::optional<Rgb16> rgb;
    if (lua_istable(L, -1)) {
        rgb.emplace();
        for (int k = 0; k < 3; ++k) {
            lua_rawgeti(L, -1, k + 1);
            (*rgb)[size_t(k)] = static_cast<uint16_t>(clampNumber(lua_tonumber(L, -1), 0, 65535));
            lua_pop(L, 1);
        }
    }
    lua_pop(L, 1);
    return rgb;
}

// { {r, g, b}, {r, g, b} }: the first and the second colour; either may be left out (nil).
int color(lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    const std::optional<Rgb16> first = colourEntry(L, 1, 1), second = colourEntry(L, 1, 2);
    for (SpectrumDocument* d : targets(L)) finish(L, *d, setPlotColours(*d, first, second));
    return 0;
}

int cw(lua_State* L) {
    const bool on = lua_toboolean(L, 1) != 0;
    if (SpectrumDocument* d = firstTarget(L)) setCustomWorkflow(*d, on);
    host(L).rebuildTargets();
    return 0;
}

int font(lua_State* L) {
    const std::string name = luaL_optstring(L, 1, "");
    const auto size = static_cast<int>(optClampedInteger(L, 2, 0, 0, kLargestFontSize));
    for (SpectrumDocument* d : targets(L)) finish(L, *d, setPlotFont(*d, name, size));
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    lua_pushstring(L, d->page.fontName.c_str());
    lua_pushnumber(L, d->page.fontSize);
    return 2;
}

int full(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, showWholeSpectrum(*d));
    return 0;
}

int getmarks(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    const std::vector<float>& marks = d->marks[namesVerticalAxis(L, 1) ? 1 : 0];
    luaL_checkstack(L, static_cast<int>(marks.size()), "too many marks");
    for (float m : marks) lua_pushnumber(L, m);
    return static_cast<int>(marks.size());
}

int mark(lua_State* L) {
    const bool vertical = namesVerticalAxis(L, 1);
    std::vector<float> ppm;
    for (int i = vertical ? 2 : 1; i <= lua_gettop(L); ++i)
        ppm.push_back(static_cast<float>(lua_tonumber(L, i)));  // 0 when not a number
    for (SpectrumDocument* d : targets(L)) finish(L, *d, setMarks(*d, vertical ? 1 : 0, ppm));
    return 0;
}

int paper(lua_State* L) {
    if (lua_isnoneornil(L, 1)) {
        SpectrumDocument* d = firstTarget(L);
        if (!d) return 0;
        const ClientSize size = clientSize(*d);
        lua_pushnumber(L, size.width);
        lua_pushnumber(L, size.height);
        return 2;
    }
    const auto width = static_cast<int>(optClampedInteger(L, 1, 0, 1, 65535));
    for (SpectrumDocument* d : targets(L)) {
        const int height =
            static_cast<int>(optClampedInteger(L, 2, clientSize(*d).height, 1, 65535));
        finish(L, *d, setClientSize(*d, {width, height}));
    }
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    lua_pushnumber(L, d->page.pageWidth);
    lua_pushnumber(L, d->page.pageHeight);
    return 2;
}

int refer(lua_State* L) {
    const double ppm = luaL_optnumber(L, 1, 0.0);
    const double width = luaL_optnumber(L, 2, 0.1);
    for (SpectrumDocument* d : targets(L)) finish(L, *d, referenceToPeak(*d, ppm, width));
    return 0;
}

// Up to three pairs: horizontal, vertical, third axis.
int region(lua_State* L) {
    RegionPairs pairs;
    for (int axis = 0; axis < 3; ++axis) {
        const int i = 2 * axis + 1;
        if (lua_isnoneornil(L, i) || lua_isnoneornil(L, i + 1)) break;
        pairs[axis] = std::array<double, 2>{luaL_checknumber(L, i), luaL_checknumber(L, i + 1)};
    }
    for (SpectrumDocument* d : targets(L)) finish(L, *d, showRegion(*d, pairs));
    return 0;
}

int shift(lua_State* L) {
    const double delta = luaL_checknumber(L, 1);
    const auto f = static_cast<int>(optClampedInteger(L, 2, 0, 0, 3));
    for (SpectrumDocument* d : targets(L)) finish(L, *d, shiftScale(*d, delta, f));
    return 0;
}

}  // namespace

const luaL_Reg kDisplayCommands[] = {
    {"adj", adj},     {"amp", amp},       {"bidi", bidi},   {"color", color},
    {"cw", cw},       {"font", font},     {"full", full},   {"getmarks", getmarks},
    {"mark", mark},   {"paper", paper},   {"refer", refer}, {"region", region},
    {"shift", shift}, {nullptr, nullptr},
};

}  // namespace zolt

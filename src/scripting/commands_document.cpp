// Queries and settings of a document's axes, time-domain state and sample data.
#include <algorithm>
#include <cctype>
#include <cmath>

#include "operations/document_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// A number selects the f-index; "y..." or "z..." the document's y or z index; anything
// else its x index. Always 1 ... 3.
int chosenDimension(lua_State* L, int i, const SpectrumDocument& d) {
    double index = d.matrix.xIndex;
    if (lua_isnumber(L, i)) {
        index = std::trunc(lua_tonumber(L, i));
    } else if (const char* s = lua_isstring(L, i) ? lua_tostring(L, i) : nullptr) {
        const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(s[0])));
        if (c == 'y') index = d.matrix.yIndex;
        if (c == 'z') index = d.matrix.zIndex;
    }
    return static_cast<int>(clampNumber(index, 1, 3));
}

bool numberField(lua_State* L, int table, const char* key, double& value) {
    lua_getfield(L, table, key);
    const bool present = lua_isnumber(L, -1);
    if (present) value = lua_tonumber(L, -1);
    lua_pop(L, 1);
    return present;
}

bool stringField(lua_State* L, int table, const char* key, std::string& value) {
    lua_getfield(L, table, key);
    const bool present = lua_type(L, -1) == LUA_TSTRING;
    if (present) value = lua_tostring(L, -1);
    lua_pop(L, 1);
    return present;
}

// The keys of getf that describe an axis, without its size.
AxisChanges axisChanges(lua_State* L, int table) {
    AxisChanges changes;
    double v = 0;
    std::string atom;
    if (stringField(L, table, "atom", atom)) changes.atom = atom;
    if (numberField(L, table, "mass", v))
        changes.mass = static_cast<uint8_t>(clampNumber(v, 0, 255));
    if (numberField(L, table, "start", v)) changes.lowestPpm = static_cast<float>(v);
    if (numberField(L, table, "width", v)) changes.spectralWidth = static_cast<float>(v);
    if (numberField(L, table, "MHz", v)) changes.carrier = static_cast<float>(v);
    if (numberField(L, table, "zero", v)) changes.timeShift = static_cast<float>(v);
    return changes;
}

int getf(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    const DimensionRecord& r = d->matrix.dims[chosenDimension(L, 1, *d)];
    char atom[3];
    lua_createtable(L, 0, 7);
    lua_pushstring(L, atomText(r, atom));
    lua_setfield(L, -2, "atom");
    setNumberField(L, "mass", r.isotope);
    setNumberField(L, "size", r.points);
    setNumberField(L, "start", r.lowestPpm);
    setNumberField(L, "width", r.spectralWidth);
    setNumberField(L, "MHz", r.carrier);
    setNumberField(L, "zero", r.timeShift);
    return 1;
}

int numdim(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    lua_pushnumber(L, std::clamp(countDimensions(d->source), 1, 3));
    lua_pushnumber(L, d->source.highestTIndex);
    return 2;
}

int pathtofile(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d || d->source.rawPath.empty()) return 0;
    lua_pushstring(L, d->source.rawPath.c_str());
    return 1;
}

// A table with "dim" (as getf's argument) and any keys of getf; "size" cuts or zero-pads
// 1-D data.
int resize(lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    double size = 0;
    std::optional<uint32_t> points;
    if (numberField(L, 1, "size", size))
        points = static_cast<uint32_t>(std::trunc(clampNumber(size, 1, kMaxFidPoints)));
    for (SpectrumDocument* d : targets(L)) {
        lua_getfield(L, 1, "dim");
        const int f = chosenDimension(L, lua_gettop(L), *d);
        lua_pop(L, 1);
        finish(L, *d, changeAxis(*d, f, axisChanges(L, 1), points));
    }
    return 0;
}

int rkpp(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    if (!lua_isnoneornil(L, 1)) setRanceKay(*d, lua_toboolean(L, 1));
    lua_pushboolean(L, (d->source.flags & source_flags::kRanceKay) != 0);
    return 1;
}

// A new 1-D FID of zeros in front, with the axis of the table (keys of getf).
int setfid(lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    double size = 1024;
    numberField(L, 1, "size", size);
    const auto points = static_cast<uint32_t>(std::trunc(clampNumber(size, 1, kMaxFidPoints)));
    const AxisChanges changes = axisChanges(L, 1);
    SpectrumDocument* d = host(L).context().newDocument();
    if (!d) return 0;
    makeEmptyFid(*d, points, changes);
    host(L).rebuildTargets();
    return 0;
}

int solvent(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    if (d->metadata.solvent.empty())
        lua_pushnil(L);
    else
        lua_pushstring(L, d->metadata.solvent.c_str());
    return 1;
}

int title(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!lua_isnone(L, 1)) {
        const char* text = luaL_checkstring(L, 1);
        if (d) setTitle(*d, text);
        return 0;
    }
    if (!d) return 0;
    lua_pushstring(L, d->metadata.title.c_str());
    return 1;
}

int todo(lua_State* L) {
    if (!lua_isnone(L, 1)) {
        const int n = static_cast<int>(std::round(clampNumber(luaL_checknumber(L, 1), 0, 3)));
        for (SpectrumDocument* d : targets(L)) setTimeDomainDimensions(*d, n);
    }
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    lua_pushnumber(L, d->source.highestTIndex);
    return 1;
}

}  // namespace

const luaL_Reg kDocumentCommands[] = {
    {"getf", getf}, {"numdim", numdim}, {"pathtofile", pathtofile}, {"resize", resize},
    {"rkpp", rkpp}, {"setfid", setfid}, {"solvent", solvent},       {"title", title},
    {"todo", todo}, {nullptr, nullptr},
};

}  // namespace zolt

// Commands on the intensities themselves: copying them out and in, and point-wise changes.
#include <cmath>
#include <utility>
#include <vector>

#include "operations/data_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// Largest table paste turns into a spectrum.
constexpr size_t kMaxPastePoints = size_t{1} << 24;

size_t integerField(lua_State* L, int table, const char* key, size_t def) {
    lua_getfield(L, table, key);
    size_t v = def;
    if (lua_isnumber(L, -1))
        v = static_cast<size_t>(clampNumber(std::trunc(lua_tonumber(L, -1)), 1, kMaxPastePoints));
    lua_pop(L, 1);
    return v;
}

// The real parts of the first target's current plane, with its axis sizes as x, y and z.
int copy(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    const PlaneValues plane = currentPlane(*d);
    const size_t n = plane.values.size();
    lua_createtable(L, static_cast<int>(std::min<size_t>(n, INT32_MAX)), 3);
    for (size_t i = 0; i < n; ++i) {
        lua_pushnumber(L, plane.values[i]);
        lua_rawseti(L, -2, static_cast<int>(i + 1));
    }
    setNumberField(L, "x", double(plane.x));
    setNumberField(L, "y", double(plane.y));
    setNumberField(L, "z", double(plane.z));
    return 1;
}

int hilbert(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, rebuildImaginaryParts(*d));
    return 0;
}

int magn(lua_State* L) {
    const bool on = optBoolean(L, 1, true);
    for (SpectrumDocument* d : targets(L)) finish(L, *d, setMagnitude(*d, on));
    return 0;
}

int noneg(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, clearNegatives(*d));
    return 0;
}

// A table shaped as copy's: replaces the real parts of the first target when the sizes
// agree, otherwise becomes a new real spectrum (axes taken from the first target if any).
int paste(lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    const size_t n = lua_objlen(L, 1);
    if (n == 0 || n > kMaxPastePoints) return 0;
    const size_t nx = integerField(L, 1, "x", n), ny = integerField(L, 1, "y", 1);
    // From here on nothing raises a Lua error: the vector's destructor must run.
    std::vector<float> values(n);
    for (size_t i = 0; i < n; ++i) {
        lua_rawgeti(L, 1, static_cast<int>(i + 1));
        values[i] = static_cast<float>(lua_tonumber(L, -1));
        lua_pop(L, 1);
    }
    SpectrumDocument* d = firstTarget(L);
    if (d && replaceRealParts(*d, values)) {
        host(L).context().redraw(*d);
        return 0;
    }
    const std::array<DimensionRecord, 4> axes =
        d ? d->matrix.dims : std::array<DimensionRecord, 4>{};
    SpectrumDocument* created = host(L).context().newDocument();
    if (!created) return 0;
    fillFromValues(*created, std::move(values), nx, ny, axes);
    host(L).rebuildTargets();
    return 0;
}

}  // namespace

const luaL_Reg kDataCommands[] = {
    {"copy", copy},   {"hilbert", hilbert}, {"magn", magn},
    {"noneg", noneg}, {"paste", paste},     {nullptr, nullptr},
};

}  // namespace zolt

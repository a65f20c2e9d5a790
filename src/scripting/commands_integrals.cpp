// Integration commands: the automatic cut, improved limits, normalisation, deletion and the
// readings of single regions.
#include <cmath>

#include "operations/integral_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

constexpr long long kMinimumSizeMin = 1, kMinimumSizeMax = 100;
constexpr double kEnlargementMax = 10.0;
constexpr long long kRatioMin = 2, kRatioMax = 1000;
// Region numbers beyond any list; keeps the conversion to an index defined.
constexpr double kRegionLimit = 9007199254740992.0;  // 2^53

int absint(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        d->page.integralNormalization = 1.0f;
        host(L).context().redraw(*d);
    }
    return 0;
}

// The fourth argument asks for the dialog where there is one; the cut itself is the same.
int acut(lua_State* L) {
    AutoCutParameters p;
    p.minimumSize = static_cast<int>(optClampedInteger(L, 1, 10, kMinimumSizeMin, kMinimumSizeMax));
    p.enlargement =
        static_cast<float>(clampNumber(luaL_optnumber(L, 2, 0.02), 0.0, kEnlargementMax));
    p.ratio = static_cast<int>(optClampedInteger(L, 3, 50, kRatioMin, kRatioMax));
    for (SpectrumDocument* d : targets(L)) finish(L, *d, automaticIntegration(*d, p));
    return 0;
}

int delint(lua_State* L) {
    const double below = luaL_optnumber(L, 1, 0.0);
    for (SpectrumDocument* d : targets(L)) finish(L, *d, deleteIntegrals(*d, below));
    return 0;
}

int exact(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, improveIntegralLimits(*d));
    return 0;
}

int intreg(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    if (lua_isnoneornil(L, 1)) {
        lua_pushnumber(L, static_cast<lua_Number>(d->integrals.size()));
        return 1;
    }
    const double k = std::trunc(luaL_checknumber(L, 1));
    if (!(k >= 1.0)) return 0;
    const size_t index = static_cast<size_t>(std::min(k, kRegionLimit)) - 1;
    if (!lua_isnoneornil(L, 2)) {
        if (setIntegralReading(*d, index, luaL_checknumber(L, 2))) host(L).context().redraw(*d);
        return 0;
    }
    const auto values = integralReading(*d, index);
    if (!values) return 0;
    for (const double v : *values) lua_pushnumber(L, v);
    return static_cast<int>(values->size());
}

int normi(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        normaliseIntegrals(*d);
        host(L).context().redraw(*d);
    }
    return 0;
}

}  // namespace

const luaL_Reg kIntegralCommands[] = {
    {"absint", absint}, {"acut", acut},   {"delint", delint}, {"exact", exact},
    {"intreg", intreg}, {"normi", normi}, {nullptr, nullptr},
};

}  // namespace zolt

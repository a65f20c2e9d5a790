// Phase and baseline commands: manual and automatic phase, polynomial, automatic and
// straight-line baselines.
#include <algorithm>
#include <cmath>

#include "operations/baseline_operations.h"
#include "operations/integral_operations.h"
#include "operations/phase_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

constexpr long long kPolyOrderMax = 7, kPolyFilterMax = 128;
// Rows beyond any matrix; keeps the conversion to an index defined.
constexpr double kRowLimit = 9007199254740992.0;  // 2^53

// Polynomial baseline; with integral zones and 1-D integral regions the regions are the signal
// and the rest of the row the baseline.
void polynomialOnTargets(lua_State* L, int order, int filter, bool integralZones) {
    for (SpectrumDocument* d : targets(L)) {
        if (integralZones)
            if (auto outside = baselineOutsideIntegrals(*d, order)) {
                finish(L, *d, *outside);
                continue;
            }
        finish(L, *d, polynomialBaseline(*d, order, filter));
    }
}

int abc(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, automaticBaseline(*d));
    return 0;
}

int aph(lua_State* L) {
    const bool alternative = lua_toboolean(L, 1);
    for (SpectrumDocument* d : targets(L)) finish(L, *d, automaticPhase(*d, alternative));
    return 0;
}

// The two integers go to the fit as given; only what the step can hold is enforced.
int bline(lua_State* L) {
    const double order = std::trunc(luaL_optnumber(L, 1, kDefaultBaselineOrder));
    const double filter = std::trunc(luaL_optnumber(L, 2, kDefaultBaselineFilter));
    if (!(order >= 0.0)) return 0;
    const int o = static_cast<int>(clampNumber(order, 0, 255));
    const int f = static_cast<int>(clampNumber(filter, 0, 32767));
    polynomialOnTargets(L, o, f, lua_toboolean(L, 3));
    return 0;
}

int phase(lua_State* L) {
    const double zero = luaL_optnumber(L, 1, 0.0);
    const double first = luaL_optnumber(L, 2, 0.0);
    std::optional<int> axis;
    if (!lua_isnoneornil(L, 3)) axis = static_cast<int>(optClampedInteger(L, 3, 1, 1, 3));
    for (SpectrumDocument* d : targets(L))
        finish(L, *d, changeDocumentPhaseDegrees(*d, zero, first, axis));
    return 0;
}

// One row of the first target along the horizontal axis, in radians.
int phrow(lua_State* L) {
    const double row = std::trunc(luaL_checknumber(L, 1));
    const double a = luaL_optnumber(L, 2, 0.0), b = luaL_optnumber(L, 3, 0.0);
    SpectrumDocument* d = firstTarget(L);
    if (!d || !(row >= 0.0)) return 0;
    finish(L, *d, phaseRow(*d, static_cast<size_t>(std::min(row, kRowLimit)), a, b));
    return 0;
}

int poly(lua_State* L) {
    const auto order = optClampedInteger(L, 1, kDefaultBaselineOrder, 0, kPolyOrderMax);
    const auto filter = optClampedInteger(L, 2, kDefaultBaselineFilter, 1, kPolyFilterMax);
    polynomialOnTargets(L, static_cast<int>(order), static_cast<int>(filter), lua_toboolean(L, 3));
    return 0;
}

int straight(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) finish(L, *d, straightBaseline(*d));
    return 0;
}

}  // namespace

const luaL_Reg kPhaseBaselineCommands[] = {
    {"abc", abc},     {"aph", aph},   {"bline", bline},       {"phase", phase},
    {"phrow", phrow}, {"poly", poly}, {"straight", straight}, {nullptr, nullptr},
};

}  // namespace zolt

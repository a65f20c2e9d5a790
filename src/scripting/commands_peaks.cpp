// Peak commands: picking with the current options, and reading the list.
#include <cmath>

#include "operations/peak_operations.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// Without an index: the count. With one (1-based): every stored column, ppm first.
int peak(lua_State* L) {
    const SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    if (lua_isnoneornil(L, 1)) {
        lua_pushnumber(L, static_cast<lua_Number>(peakCount(*d)));
        return 1;
    }
    const double i = std::trunc(luaL_checknumber(L, 1));
    if (!(i >= 1.0) || i > static_cast<double>(peakCount(*d))) return 0;
    const std::vector<double> columns = peakColumns(*d, static_cast<size_t>(i) - 1);
    for (double c : columns) lua_pushnumber(L, c);
    return static_cast<int>(columns.size());
}

int ups(lua_State* L) {
    ScriptContext& context = host(L).context();
    const PeakPickingOptions options = context.peakPickingOptions();
    const int minimum = context.peakPickingMinimum();
    for (SpectrumDocument* d : targets(L)) finish(L, *d, pickAllPeaks(*d, options, minimum));
    return 0;
}

}  // namespace

const luaL_Reg kPeakCommands[] = {
    {"peak", peak},
    {"ups", ups},
    {nullptr, nullptr},
};

}  // namespace zolt

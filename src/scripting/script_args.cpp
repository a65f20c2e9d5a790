#include "scripting/script_args.h"

#include <cmath>

namespace zolt {

double clampNumber(double x, double lo, double hi) {
    if (std::isnan(x) || x < lo) return lo;
    return x > hi ? hi : x;
}

long long optClampedInteger(lua_State* L, int i, double def, long long lo, long long hi) {
    const double x = std::trunc(luaL_optnumber(L, i, def));
    return static_cast<long long>(clampNumber(x, double(lo), double(hi)));
}

void finish(lua_State* L, SpectrumDocument& d, const OperationResult& result) {
    ScriptContext& context = host(L).context();
    if (result.message) context.message(result.message->caption, result.message->text);
    if (result.applied) context.redraw(d);
}

}  // namespace zolt

#include "scripting/script_args.h"

#include <cmath>

#include "processing/ft_defaults.h"

namespace zolt {

double clampNumber(double x, double lo, double hi) {
    if (std::isnan(x) || x < lo) return lo;
    return x > hi ? hi : x;
}

long long optClampedInteger(lua_State* L, int i, double def, long long lo, long long hi) {
    const double x = std::trunc(luaL_optnumber(L, i, def));
    return static_cast<long long>(clampNumber(x, double(lo), double(hi)));
}

FourierTransformStep& fourierTransformStep(SpectrumDocument& d, int fIndex) {
    if (auto* ft = findFourierTransformStep(d.processing, fIndex)) return *ft;
    ProcessingStep step;
    step.dimension = static_cast<uint8_t>(fIndex);
    step.data = defaultFourierTransformStep(d.source, fIndex).value_or(FourierTransformStep{});
    d.processing.steps.push_back(step);
    return std::get<FourierTransformStep>(d.processing.steps.back().data);
}

}  // namespace zolt

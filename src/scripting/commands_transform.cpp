// The Fourier-transform preferences of the next time-domain dimension, and the transform.
#include "operations/transform_operations.h"
#include "processing/ft_step.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

constexpr long long kFillMin = 32, kFillMax = 524288;

int fill(lua_State* L) {
    const long long n = optClampedInteger(L, 1, 0, kFillMin, kFillMax);
    const bool predict = lua_toboolean(L, 2);
    const uint32_t size = roundFtSize(static_cast<uint64_t>(n), kFillMax);
    for (SpectrumDocument* d : targets(L)) setFillSize(*d, size, predict);
    return 0;
}

int ft(lua_State* L) {
    const TransformOptions options{lua_toboolean(L, 1) != 0, lua_toboolean(L, 2) != 0,
                                   lua_toboolean(L, 3) != 0, lua_toboolean(L, 4) != 0};
    for (SpectrumDocument* d : targets(L)) setTransformOptions(*d, options);
    return 0;
}

int shuffle(lua_State* L) {
    const auto mode = static_cast<Shuffling>(optClampedInteger(L, 1, 0, 0, 2));
    for (SpectrumDocument* d : targets(L)) setShuffling(*d, mode);
    return 0;
}

// The values are taken as given: the dialog's ranges are the dialog's.
int weight(lua_State* L) {
    WeightingParameters parameters;
    for (int k = 0; k < 6; ++k)
        if (!lua_isnoneornil(L, k + 1))
            parameters[k] = static_cast<float>(luaL_checknumber(L, k + 1));
    for (SpectrumDocument* d : targets(L)) setWeighting(*d, parameters);
    return 0;
}

int wft(lua_State* L) {
    const WeightAndTransform how{optBoolean(L, 1, true), optBoolean(L, 2, true),
                                 optBoolean(L, 3, false)};
    for (SpectrumDocument* d : targets(L)) finish(L, *d, weightAndTransform(*d, how));
    return 0;
}

}  // namespace

const luaL_Reg kTransformCommands[] = {
    {"fill", fill},     {"ft", ft},   {"shuffle", shuffle},
    {"weight", weight}, {"wft", wft}, {nullptr, nullptr},
};

}  // namespace zolt

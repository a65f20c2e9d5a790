// The Fourier-transform preferences of the next time-domain dimension, and the transform.
#include <cmath>

#include "processing/apodization.h"
#include "processing/auto_phase.h"
#include "processing/ft_pipeline.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

constexpr long long kFillMin = 32, kFillMax = 524288;

// The step of the dimension the next transform works on.
FourierTransformStep& nextStep(SpectrumDocument& d) {
    return fourierTransformStep(d, d.source.highestTIndex);
}

void setBit(uint16_t& flags, uint16_t bit, bool on) {
    flags = on ? (flags | bit) : (flags & static_cast<uint16_t>(~bit));
}

int fill(lua_State* L) {
    const long long n = optClampedInteger(L, 1, 0, kFillMin, kFillMax);
    const bool predict = lua_toboolean(L, 2);
    const uint32_t size = roundFtSize(static_cast<uint64_t>(n), kFillMax);
    for (SpectrumDocument* d : targets(L)) {
        if (!inTimeDomain(*d)) continue;
        FourierTransformStep& step = nextStep(*d);
        step.ftSize = size;
        setBit(step.flags, ft_flags::kLinearPrediction, predict);
    }
    return 0;
}

int ft(lua_State* L) {
    const bool quadrature = lua_toboolean(L, 1), conjugate = lua_toboolean(L, 2);
    const bool realFt = lua_toboolean(L, 3), subtractDc = lua_toboolean(L, 4);
    for (SpectrumDocument* d : targets(L)) {
        if (!inTimeDomain(*d)) continue;
        uint16_t& flags = nextStep(*d).flags;
        setBit(flags, ft_flags::kQuadrature, quadrature);
        setBit(flags, ft_flags::kConjugate, conjugate);
        setBit(flags, ft_flags::kRealFt, realFt);
        setBit(flags, ft_flags::kSubtractDc, subtractDc);
    }
    return 0;
}

int shuffle(lua_State* L) {
    const auto mode = static_cast<Shuffling>(optClampedInteger(L, 1, 0, 0, 2));
    for (SpectrumDocument* d : targets(L))
        if (inTimeDomain(*d)) nextStep(*d).shuffling = mode;
    return 0;
}

// The k-th argument sets the k-th weighting parameter and its presence bit; absent ones
// are cleared, the low byte of the options stays. Out-of-range values are clamped.
int weight(lua_State* L) {
    std::array<float, 6> values{};
    uint16_t present = 0;
    for (int k = 0; k < 6; ++k) {
        if (lua_isnoneornil(L, k + 1)) continue;
        values[k] = static_cast<float>(luaL_checknumber(L, k + 1));
        present |= static_cast<uint16_t>(ft_flags::kExponential << k);
    }
    for (SpectrumDocument* d : targets(L)) {
        if (!inTimeDomain(*d)) continue;
        FourierTransformStep& step = nextStep(*d);
        step.weights = values;
        step.flags = static_cast<uint16_t>((step.flags & 0x00ff) | present);
        clampFourierTransformStep(step);  // into the ranges the dialog offers
    }
    return 0;
}

// Phase found automatically after a transform: 1-D spectra with imaginary parts whose stored
// phase is still untouched (a spectrometer phase read with the data is kept). A 2-D source does
// not qualify: after its f2 transform the rows are still time signals along f1, and the first
// of them alone (edited lines of both signs, echo and anti-echo) is no guide to the f2 phase.
bool wantsAutomaticPhase(const SpectrumDocument& d, const FourierTransformStep& step) {
    const SpectrumMatrix& m = d.matrix;
    return countDimensions(d.source) == 1 && d.source.highestTIndex == 0 && step.ftSize != 0 &&
           m.xIndex > 0 && m.xIndex < 4 && m.dims[m.xIndex].phase0 == 0.0f && !m.realOnly() &&
           !(m.state & matrix_state::kMagnitude);
}

// Weights and transforms the next dimension; with p false only weights and zero-fills.
int wft(lua_State* L) {
    const bool weights = optBoolean(L, 1, true), perform = optBoolean(L, 2, true);
    const bool hypercomplex = optBoolean(L, 3, false);
    ScriptContext& context = host(L).context();
    for (SpectrumDocument* d : targets(L)) {
        if (!inTimeDomain(*d)) continue;
        const int f = d->source.highestTIndex;
        FourierTransformStep& step = nextStep(*d);
        setBit(step.flags, ft_flags::kApplyWeights, weights);
        setBit(step.flags, ft_flags::kHypercomplex, hypercomplex);
        setBit(step.flags, ft_flags::kStopBeforeTransform, !perform);
        const FtResult result = transformNextDimension(*d);
        FourierTransformStep& after = fourierTransformStep(*d, f);
        setBit(after.flags, ft_flags::kStopBeforeTransform, false);
        if (result.message) context.message(result.message->caption, result.message->text);
        if (result.outcome == FtOutcome::Transformed && wantsAutomaticPhase(*d, after))
            autoPhase(d->matrix, d->source.highestTIndex);
        context.redraw(*d);
    }
    return 0;
}

}  // namespace

const luaL_Reg kTransformCommands[] = {
    {"fill", fill},     {"ft", ft},   {"shuffle", shuffle},
    {"weight", weight}, {"wft", wft}, {nullptr, nullptr},
};

}  // namespace zolt

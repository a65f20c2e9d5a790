// Phase and baseline commands: manual and automatic phase, polynomial, automatic and
// straight-line baselines.
#include <cmath>
#include <numbers>
#include <vector>

#include "processing/auto_phase.h"
#include "processing/baseline.h"
#include "processing/kernels.h"
#include "processing/phase.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
constexpr long long kPolyOrderMax = 7, kPolyFilterMax = 128;
// What the default start-up script asks for, and what poly() and bline() take when omitted.
constexpr long long kDefaultOrder = 7, kDefaultFilter = 64;

int frequencyAxes(const SpectrumMatrix& m) {
    int n = 0;
    for (int f = 1; f <= 3; ++f) n += countsAsDimension(m.dims[f]);
    return n;
}

int horizontalAxis(const SpectrumDocument& d) {
    const int x = d.matrix.xIndex;
    return x >= 1 && x <= 3 ? x : 1;
}

bool transformedAlong(const SpectrumDocument& d, int fIndex) {
    return fIndex > d.source.highestTIndex;
}

bool phaseable(const SpectrumMatrix& m) {
    return !m.realOnly() && !m.im.empty() && !(m.state & matrix_state::kMagnitude);
}

void report(lua_State* L, const std::optional<Message>& message) {
    if (message) host(L).context().message(message->caption, message->text);
}

// The settings of the automatic correction: those of the document's last automatic step
// (what the Baseline dialog left), else a polynomial of order 3 over a narrow filter, which
// suits the short rows of 2-D spectra as well as 1-D ones.
BaseplaneStep automaticSettings(const SpectrumDocument& d) {
    for (auto it = d.processing.steps.rbegin(); it != d.processing.steps.rend(); ++it)
        if (const auto* step = std::get_if<BaseplaneStep>(&it->data)) return *step;
    BaseplaneStep settings;
    settings.function = 1;
    settings.order = 3;
    settings.movingAverage = 8;
    return settings;
}

// Polynomial baseline along the horizontal axis of every target already transformed along it.
void polynomialBaseline(lua_State* L, int order, int filter) {
    BaseplaneStep settings;
    settings.function = 1;
    settings.order = static_cast<uint8_t>(order);
    settings.movingAverage = static_cast<int16_t>(filter);
    for (SpectrumDocument* d : targets(L)) {
        const int x = horizontalAxis(*d);
        if (!transformedAlong(*d, x)) continue;
        report(L, correctBaseline(*d, x, settings));
        host(L).context().redraw(*d);
    }
}

int abc(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        if (d->source.highestTIndex != 0) continue;
        const BaseplaneStep settings = automaticSettings(*d);
        if (frequencyAxes(d->matrix) >= 2)
            report(L, correctBaseplane(*d, settings));
        else
            report(L, correctBaseline(*d, horizontalAxis(*d), settings));
        host(L).context().redraw(*d);
    }
    return 0;
}

int aph(lua_State* L) {
    const bool alternative = lua_toboolean(L, 1);
    for (SpectrumDocument* d : targets(L)) {
        if (d->source.highestTIndex != 0 || !phaseable(d->matrix)) continue;
        const int axes = frequencyAxes(d->matrix);
        if (axes == 1)
            autoPhase(d->matrix, 0, {}, alternative);
        else if (axes == 2)
            autoPhase2D(d->matrix, 0);
        host(L).context().redraw(*d);
    }
    return 0;
}

// The two integers go to the fit as given; only what the step can hold is enforced.
int bline(lua_State* L) {
    const double order = std::trunc(luaL_optnumber(L, 1, kDefaultOrder));
    const double filter = std::trunc(luaL_optnumber(L, 2, kDefaultFilter));
    if (!(order >= 0.0)) return 0;
    polynomialBaseline(L, static_cast<int>(clampNumber(order, 0, 255)),
                       static_cast<int>(clampNumber(filter, 0, 32767)));
    return 0;
}

int phase(lua_State* L) {
    const double zero = luaL_optnumber(L, 1, 0.0) * kRadiansPerDegree;
    const double first = luaL_optnumber(L, 2, 0.0) * kRadiansPerDegree;
    const bool axisGiven = !lua_isnoneornil(L, 3);
    const int axis = static_cast<int>(optClampedInteger(L, 3, 1, 1, 3));
    for (SpectrumDocument* d : targets(L)) {
        const int f = axisGiven ? axis : horizontalAxis(*d);
        changePhase(d->matrix, d->source.highestTIndex, f, zero, first);
        host(L).context().redraw(*d);
    }
    return 0;
}

// One row along the horizontal axis, in radians; the stored phase is not changed.
int phrow(lua_State* L) {
    const double row = std::trunc(luaL_checknumber(L, 1));
    const double a = luaL_optnumber(L, 2, 0.0), b = luaL_optnumber(L, 3, 0.0);
    SpectrumDocument* d = firstTarget(L);
    if (!d || !(row >= 0.0)) return 0;
    SpectrumMatrix& m = d->matrix;
    const size_t total = m.pointCount();
    if (m.realOnly() || m.re.size() < total || m.im.size() < total) return 0;
    const int x = horizontalAxis(*d);
    const int paired = halvesComplexAxis(m);
    const size_t count = paired ? total / 2 : total;
    const AxisWalk w = axisWalk(m, x, count);
    if (row >= static_cast<double>(w.outer * w.inner)) return 0;
    if (m.state & matrix_state::kMagnitude) {
        togglePolar(m.re.data(), m.im.data(), total, false);
        m.state &= ~matrix_state::kMagnitude;
    }
    const size_t r = static_cast<size_t>(row);
    const size_t start = (r / w.inner) * w.n * w.inner + r % w.inner;
    // Along an axis other than the paired one of hypercomplex halves, the imaginary parts of
    // the axis lie in the second half, for the real and for the imaginary array.
    std::vector<std::pair<float*, float*>> pairs{{m.re.data(), m.im.data()}};
    if (paired && paired != x)
        pairs = {{m.re.data(), m.re.data() + count}, {m.im.data(), m.im.data() + count}};
    std::vector<float> re(w.n), im(w.n);
    for (auto [pa, pb] : pairs) {
        for (size_t k = 0; k < w.n; ++k) {
            re[k] = pa[start + k * w.inner];
            im[k] = pb[start + k * w.inner];
        }
        applyPhaseToRow(re.data(), im.data(), w.n, a, b);
        for (size_t k = 0; k < w.n; ++k) {
            pa[start + k * w.inner] = re[k];
            pb[start + k * w.inner] = im[k];
        }
    }
    host(L).context().redraw(*d);
    return 0;
}

int poly(lua_State* L) {
    const auto order = optClampedInteger(L, 1, kDefaultOrder, 0, kPolyOrderMax);
    const auto filter = optClampedInteger(L, 2, kDefaultFilter, 1, kPolyFilterMax);
    // The third argument chooses integral regions as signal-free zones; documents carry none yet.
    polynomialBaseline(L, static_cast<int>(order), static_cast<int>(filter));
    return 0;
}

int straight(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        if (d->source.highestTIndex != 0 || frequencyAxes(d->matrix) != 1) continue;
        correctStraight(d->matrix, horizontalAxis(*d));
        host(L).context().redraw(*d);
    }
    return 0;
}

}  // namespace

const luaL_Reg kPhaseBaselineCommands[] = {
    {"abc", abc},     {"aph", aph},   {"bline", bline},       {"phase", phase},
    {"phrow", phrow}, {"poly", poly}, {"straight", straight}, {nullptr, nullptr},
};

}  // namespace zolt

#include "processing/auto_phase.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "processing/phase.h"
#include "processing/phase_criteria.h"
#include "processing/polar.h"
#include "processing/simplex.h"

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;

SimplexPlan peakPlan() {
    SimplexPlan plan;
    plan.rounds = 4;
    plan.zeroMoves = {kPi / 2, -kPi / 2, kPi / 2, -kPi / 2};
    plan.slopeMoves = {1.0, 1.0, -1.0, -1.0};
    return plan;
}

// The slope found in a region that starts at point `first` becomes the first order across the
// whole axis of n points.
AutoPhaseResult finish(const SimplexResult& s, size_t first, size_t n) {
    AutoPhaseResult r;
    r.delta0 = s.best[0] - static_cast<double>(first) * s.best[1];
    r.delta1 = static_cast<double>(n) * s.best[1];
    r.cost = s.cost;
    r.iterations = s.iterations;
    r.evaluations = s.evaluations;
    return r;
}

}  // namespace

AutoPhaseResult estimatePhaseFromSlices(const std::vector<PhaseSlice>& slices, size_t n) {
    Asymmetry cost;
    for (const auto& s : slices)
        if (s.re && s.im && s.q > kPhaseHalfLine && s.q + kPhaseHalfLine + 1 < n)
            cost.add(s.re, s.im, s.q, false);
    return finish(simplexSearch(std::cref(cost), peakPlan(), n), 0, n);
}

AutoPhaseResult estimatePhase(const float* re, const float* im, size_t n,
                              const std::vector<size_t>& peaks, bool alternative, bool conjugate) {
    if (alternative) {
        const size_t first = n / 64, count = n - 2 * first;
        if (count < 2) return {};
        NegativeSignal cost(re + first, im + first, count, conjugate);
        SimplexPlan plan;
        plan.rounds = 2;
        plan.zeroMoves = {kPi, 0.2 * kPi};
        plan.slopeMoves = {1.0, -1.0};
        plan.tolerance = 0.01;
        return finish(simplexSearch(std::cref(cost), plan, n), first, n);
    }
    if (!peaks.empty()) {
        Asymmetry cost;
        for (size_t p : peaks) {
            if (p < 100 || p + 99 >= n) continue;  // the refinement window must fit
            size_t q = p - 100;
            float top = -1.0f;
            for (size_t k = p - 100; k <= p + 99; ++k) {
                const float m = std::hypot(re[k], im[k]);
                if (m > top) {
                    top = m;
                    q = k;
                }
            }
            if (q <= kPhaseHalfLine || q + kPhaseHalfLine + 1 >= n) continue;
            cost.add(re, im, q, conjugate);
        }
        return finish(simplexSearch(std::cref(cost), peakPlan(), n), 0, n);
    }
    const size_t first = n / 64, count = n - 2 * first;
    if (count < 2) return {};
    DeepestNegative cost(re + first, im + first, count, conjugate);
    float lowestRe = cost.re[0], lowestIm = cost.im[0];
    for (size_t k = 1; k < count; ++k) {
        lowestRe = std::min(lowestRe, cost.re[k]);
        lowestIm = std::min(lowestIm, cost.im[k]);
    }
    SimplexPlan plan;
    plan.zeroMoves = {-kPi / 2};
    plan.slopeMoves = {-1.0};
    // The data's own minima stand for the first costs: the unrotated real part for (0, 0), the
    // imaginary part, which is the real part turned by -pi/2, for the second vertex. An
    // all-positive real part thus costs 0 at once and the search stops without a change.
    // Paired the other way round (the imaginary minimum for (0, 0)), the search believes the
    // quarter turn to be as good as the data and settles on it: a phased spectrum would be
    // turned into dispersion.
    plan.shortcut = true;
    plan.shortcut0 = -double{lowestRe};
    plan.shortcut1 = -double{lowestIm};
    return finish(simplexSearch(std::cref(cost), plan, n), first, n);
}

std::optional<AutoPhaseResult> autoPhase(SpectrumMatrix& m, int highestTIndex,
                                         const std::vector<size_t>& peaks, bool alternative) {
    const size_t n = m.dims[1].points;
    if (m.realOnly() || n < 2 || m.re.size() < n || m.im.size() < n) return std::nullopt;
    if (m.state & matrix_state::kMagnitude) {
        togglePolar(m.re.data(), m.im.data(), m.pointCount(), false);
        m.state &= ~matrix_state::kMagnitude;
    }
    const bool conjugate = m.state & matrix_state::kComplexConjugate;
    const auto r = estimatePhase(m.re.data(), m.im.data(), n, peaks, alternative, conjugate);
    changePhase(m, highestTIndex, 1, r.delta0, r.delta1);
    return r;
}

}  // namespace zolt

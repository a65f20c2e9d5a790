// The Nelder-Mead search of the automatic phase correction, over (zero order, slope per point),
// restarted from its best vertex for a fixed number of rounds.
#pragma once

#include <array>
#include <cstddef>
#include <functional>

namespace zolt {

using PhaseVertex = std::array<double, 2>;  // zero order, slope per point

struct SimplexPlan {
    int rounds = 1;
    std::array<double, 4> zeroMoves{};   // of the second vertex, per round
    std::array<double, 4> slopeMoves{};  // of the third vertex, per round, in units of 1/N
    double tolerance = 0.05;
    bool shortcut = false;  // first-round costs of vertices 0 and 1 taken from the data
    double shortcut0 = 0.0, shortcut1 = 0.0;
};

struct SimplexResult {
    PhaseVertex best{0.0, 0.0};
    double cost = 0.0;    // at the best vertex
    int iterations = 0;   // over all rounds
    int evaluations = 0;  // of the cost
};

// Cost of a trial (zero order, slope per point); non-negative for a proper trial, and a search
// round ends as soon as the best cost is zero.
using PhaseCost = std::function<double(double, double)>;

// The search over an axis of n points, starting at (0, 0).
SimplexResult simplexSearch(const PhaseCost& cost, const SimplexPlan& plan, size_t n);

}  // namespace zolt

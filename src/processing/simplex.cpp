#include "processing/simplex.h"

namespace zolt {
namespace {

constexpr int kMaxIterations = 100;

}  // namespace

SimplexResult simplexSearch(const PhaseCost& cost, const SimplexPlan& plan, size_t n) {
    SimplexResult result;
    std::array<PhaseVertex, 3> v{};
    std::array<double, 3> c{};
    auto evaluate = [&](const PhaseVertex& x) {
        ++result.evaluations;
        return cost(x[0], x[1]);
    };
    PhaseVertex base{0.0, 0.0};
    for (int round = 0; round < plan.rounds; ++round) {
        v[0] = base;
        v[1] = {base[0] + plan.zeroMoves[round], base[1]};
        v[2] = {base[0], base[1] + plan.slopeMoves[round] / static_cast<double>(n)};
        if (round == 0 && plan.shortcut) {
            c[0] = plan.shortcut0;
            c[1] = plan.shortcut1;
        } else {
            c[0] = evaluate(v[0]);
            c[1] = evaluate(v[1]);
        }
        c[2] = evaluate(v[2]);
        for (int it = 0; it < kMaxIterations; ++it) {
            int h = 0, l = 0;
            for (int i = 1; i < 3; ++i) {
                if (c[i] > c[h]) h = i;
                if (c[i] < c[l]) l = i;
            }
            if (h == l) h = (l + 1) % 3;
            const int mid = 3 - h - l;
            if (c[l] <= 0.0 || (c[h] - c[l]) / c[l] < plan.tolerance) break;
            ++result.iterations;
            PhaseVertex s{v[0][0] + v[1][0] + v[2][0], v[0][1] + v[1][1] + v[2][1]};
            const PhaseVertex r{s[0] - 2.0 * v[h][0], s[1] - 2.0 * v[h][1]};
            const double cr = evaluate(r);
            if (cr < c[h]) {
                s = {s[0] - v[h][0] + r[0], s[1] - v[h][1] + r[1]};
                v[h] = r;
                c[h] = cr;
            }
            if (cr < c[l]) {
                const PhaseVertex e{2.5 * v[h][0] - 0.5 * s[0], 2.5 * v[h][1] - 0.5 * s[1]};
                const double ce = evaluate(e);
                if (ce < c[h]) {
                    v[h] = e;
                    c[h] = ce;
                }
            } else if (cr > c[mid]) {
                const PhaseVertex k{0.25 * v[h][0] + 0.25 * s[0], 0.25 * v[h][1] + 0.25 * s[1]};
                const double ck = evaluate(k);
                const double before = c[h];
                if (ck < c[h]) {
                    v[h] = k;
                    c[h] = ck;
                }
                if (ck > before) {
                    for (int i = 0; i < 3; ++i) {
                        if (i == l) continue;
                        v[i] = {0.5 * (v[i][0] + v[l][0]), 0.5 * (v[i][1] + v[l][1])};
                        c[i] = evaluate(v[i]);
                    }
                }
            }
        }
        int l = 0;
        for (int i = 1; i < 3; ++i)
            if (c[i] < c[l]) l = i;
        base = v[l];
        result.cost = c[l];
    }
    result.best = base;
    return result;
}

}  // namespace zolt

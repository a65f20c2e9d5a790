#include "processing/auto_phase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "processing/baseline_detection.h"
#include "processing/kernels.h"
#include "processing/phase.h"

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kMaxIterations = 100;
constexpr size_t kBlock = 32;
constexpr size_t kHalfLine = 20;                  // points on either side of a line centre
constexpr size_t kSliceSpan = 2 * kHalfLine + 3;  // the centre may move by one point

using Vertex = std::array<double, 2>;  // zero order, slope per point

struct SearchPlan {
    int rounds = 1;
    std::array<double, 4> zeroMoves{};
    std::array<double, 4> slopeMoves{};  // in units of 1/N
    double tolerance = 0.05;
    bool shortcut = false;  // first-round costs of vertices 0 and 1 taken from the data
    double shortcut0 = 0.0, shortcut1 = 0.0;
};

// The Nelder-Mead search with its rounds. cost(a, b) must be non-negative for a proper trial.
template <typename Cost>
AutoPhaseResult simplexSearch(const Cost& cost, const SearchPlan& plan, size_t n, Vertex& best) {
    AutoPhaseResult result;
    std::array<Vertex, 3> v{};
    std::array<double, 3> c{};
    auto evaluate = [&](const Vertex& x) {
        ++result.evaluations;
        return cost(x[0], x[1]);
    };
    Vertex base{0.0, 0.0};
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
            Vertex s{v[0][0] + v[1][0] + v[2][0], v[0][1] + v[1][1] + v[2][1]};
            const Vertex r{s[0] - 2.0 * v[h][0], s[1] - 2.0 * v[h][1]};
            const double cr = evaluate(r);
            if (cr < c[h]) {
                s = {s[0] - v[h][0] + r[0], s[1] - v[h][1] + r[1]};
                v[h] = r;
                c[h] = cr;
            }
            if (cr < c[l]) {
                const Vertex e{2.5 * v[h][0] - 0.5 * s[0], 2.5 * v[h][1] - 0.5 * s[1]};
                const double ce = evaluate(e);
                if (ce < c[h]) {
                    v[h] = e;
                    c[h] = ce;
                }
            } else if (cr > c[mid]) {
                const Vertex k{0.25 * v[h][0] + 0.25 * s[0], 0.25 * v[h][1] + 0.25 * s[1]};
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
    best = base;
    return result;
}

// Default criterion: minus the deepest negative point of the phased real part. The value of
// point k is m_k cos(theta_k + a + k b) = re_k cos(a + k b) - im_k sin(a + k b); points with
// |theta + a + k b| > pi/2 are exactly those with a negative value. Blocks are visited by
// decreasing modulus and the scan stops once no block can go deeper than the depth found.
struct DeepestNegative {
    std::vector<float> re, im, blockMax;
    std::vector<uint32_t> order;

    DeepestNegative(const float* r, const float* i, size_t count, bool conjugate)
        : re(r, r + count), im(i, i + count) {
        if (conjugate)
            for (auto& x : im) x = -x;
        const size_t blocks = (count + kBlock - 1) / kBlock;
        blockMax.assign(blocks, 0.0f);
        for (size_t k = 0; k < count; ++k)
            blockMax[k / kBlock] = std::max(blockMax[k / kBlock], std::hypot(re[k], im[k]));
        order.resize(blocks);
        for (size_t b = 0; b < blocks; ++b) order[b] = static_cast<uint32_t>(b);
        std::sort(order.begin(), order.end(),
                  [&](uint32_t x, uint32_t y) { return blockMax[x] > blockMax[y]; });
    }

    double operator()(double a, double b) const {
        const double dc = std::cos(b), ds = std::sin(b);
        const size_t count = re.size();
        double depth = 0.0;
        for (uint32_t blk : order) {
            if (blockMax[blk] <= depth) break;
            const size_t first = blk * kBlock, last = std::min(count, first + kBlock);
            double c = std::cos(a + first * b), s = std::sin(a + first * b);
            for (size_t k = first; k < last; ++k) {
                const double value = re[k] * c - im[k] * s;
                if (-value > depth) depth = -value;
                const double c2 = c * dc - s * ds;
                s = s * dc + c * ds;
                c = c2;
            }
        }
        return depth;
    }
};

// Alternative criterion: the energy of the negative phased real values over the signal points
// (found on the modulus, which no trial phase changes), relative to the energy of their
// moduli. Non-negative, and zero when every line is absorptive and upright.
struct NegativeSignal {
    std::vector<float> re, im;
    std::vector<uint8_t> mask;
    double norm = 0.0;

    NegativeSignal(const float* r, const float* i, size_t count, bool conjugate)
        : re(r, r + count), im(i, i + count), mask(count) {
        if (conjugate)
            for (auto& x : im) x = -x;
        std::vector<float> modulus(count);
        for (size_t k = 0; k < count; ++k) modulus[k] = std::hypot(re[k], im[k]);
        detectSignal(modulus.data(), count, mask.data());
        for (size_t k = 0; k < count; ++k)
            if (mask[k]) norm += double{modulus[k]} * modulus[k];
    }

    double operator()(double a, double b) const {
        if (norm <= 0.0) return 0.0;
        const double dc = std::cos(b), ds = std::sin(b);
        double c = std::cos(a), s = std::sin(a), sum = 0.0;
        for (size_t k = 0; k < re.size(); ++k) {
            if (mask[k]) {
                const double value = re[k] * c - im[k] * s;
                if (value < 0.0) sum += value * value;
            }
            const double c2 = c * dc - s * ds;
            s = s * dc + c * ds;
            c = c2;
        }
        return sum / norm;
    }
};

// Peak criterion: the asymmetry of each phased line about its centre, over its modulus.
struct Asymmetry {
    struct Line {
        std::array<float, kSliceSpan> re{}, im{};
        size_t first = 0;  // index of re[0] along the axis
        double modulus = 0.0;
    };
    std::vector<Line> lines;

    void add(const float* r, const float* i, size_t q, bool conjugate) {
        Line line;
        line.first = q - kHalfLine - 1;
        for (size_t t = 0; t < kSliceSpan; ++t) {
            line.re[t] = r[line.first + t];
            line.im[t] = conjugate ? -i[line.first + t] : i[line.first + t];
        }
        line.modulus = std::hypot(r[q], i[q]);
        if (line.modulus > 0.0) lines.push_back(line);
    }

    double operator()(double a, double b) const {
        const double dc = std::cos(b), ds = std::sin(b);
        double total = 0.0;
        bool upright = false;
        std::array<double, kSliceSpan> v;
        for (const Line& line : lines) {
            double c = std::cos(a + line.first * b), s = std::sin(a + line.first * b);
            for (size_t t = 0; t < kSliceSpan; ++t) {
                v[t] = line.re[t] * c - line.im[t] * s;
                const double c2 = c * dc - s * ds;
                s = s * dc + c * ds;
                c = c2;
            }
            // The phased maximum may sit one point beside the modulus maximum.
            size_t centre = kHalfLine + 1;
            if (v[centre - 1] > v[centre] && v[centre - 1] >= v[centre + 1])
                --centre;
            else if (v[centre + 1] > v[centre] && v[centre + 1] > v[centre - 1])
                ++centre;
            double sum = 0.0;
            for (size_t j = 1; j <= kHalfLine; ++j) sum += std::fabs(v[centre - j] - v[centre + j]);
            total += sum / line.modulus;
            if (v[centre] > 0.0) upright = true;
        }
        return upright ? total : 1000.0 * total;
    }
};

SearchPlan peakPlan() {
    SearchPlan plan;
    plan.rounds = 4;
    plan.zeroMoves = {kPi / 2, -kPi / 2, kPi / 2, -kPi / 2};
    plan.slopeMoves = {1.0, 1.0, -1.0, -1.0};
    return plan;
}

AutoPhaseResult finish(AutoPhaseResult r, const Vertex& best, size_t first, size_t n) {
    r.delta0 = best[0] - static_cast<double>(first) * best[1];
    r.delta1 = static_cast<double>(n) * best[1];
    return r;
}

}  // namespace

AutoPhaseResult estimatePhaseFromSlices(const std::vector<PhaseSlice>& slices, size_t n) {
    Asymmetry cost;
    for (const auto& s : slices)
        if (s.re && s.im && s.q > kHalfLine && s.q + kHalfLine + 1 < n)
            cost.add(s.re, s.im, s.q, false);
    Vertex best{};
    const auto r = simplexSearch(cost, peakPlan(), n, best);
    return finish(r, best, 0, n);
}

AutoPhaseResult estimatePhase(const float* re, const float* im, size_t n,
                              const std::vector<size_t>& peaks, bool alternative, bool conjugate) {
    Vertex best{};
    if (alternative) {
        const size_t first = n / 64, count = n - 2 * first;
        if (count < 2) return {};
        NegativeSignal cost(re + first, im + first, count, conjugate);
        SearchPlan plan;
        plan.rounds = 2;
        plan.zeroMoves = {kPi, 0.2 * kPi};
        plan.slopeMoves = {1.0, -1.0};
        plan.tolerance = 0.01;
        const auto r = simplexSearch(cost, plan, n, best);
        return finish(r, best, first, n);
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
            if (q <= kHalfLine || q + kHalfLine + 1 >= n) continue;
            cost.add(re, im, q, conjugate);
        }
        const auto r = simplexSearch(cost, peakPlan(), n, best);
        return finish(r, best, 0, n);
    }
    const size_t first = n / 64, count = n - 2 * first;
    if (count < 2) return {};
    DeepestNegative cost(re + first, im + first, count, conjugate);
    float lowestRe = cost.re[0], lowestIm = cost.im[0];
    for (size_t k = 1; k < count; ++k) {
        lowestRe = std::min(lowestRe, cost.re[k]);
        lowestIm = std::min(lowestIm, cost.im[k]);
    }
    SearchPlan plan;
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
    const auto r = simplexSearch(cost, plan, n, best);
    return finish(r, best, first, n);
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

namespace {

// The four hypercomplex components of a 2-D matrix with halves: inside each half re/im pair
// along f1; the second half holds the f2-imaginary parts.
struct Quadrants {
    const SpectrumMatrix& m;
    size_t half, stride1, stride2;
    size_t at(size_t i1, size_t i2) const { return i1 * stride1 + i2 * stride2; }
    float rr(size_t i) const { return m.re[i]; }
    float ri(size_t i) const { return m.im[i]; }
    float ir(size_t i) const { return m.re[i + half]; }
    float ii(size_t i) const { return m.im[i + half]; }
    double power(size_t i) const {
        return double{rr(i)} * rr(i) + double{ri(i)} * ri(i) + double{ir(i)} * ir(i) +
               double{ii(i)} * ii(i);
    }
};

struct CrossPeak {
    double power;
    size_t i1, i2;
};

std::vector<CrossPeak> strongestPeaks(const Quadrants& q, size_t n1, size_t n2, size_t count) {
    std::vector<CrossPeak> peaks;
    const size_t margin = kHalfLine + 2;
    if (n1 <= 2 * margin || n2 <= 2 * margin) return peaks;
    for (size_t i1 = margin; i1 < n1 - margin; ++i1) {
        for (size_t i2 = margin; i2 < n2 - margin; ++i2) {
            const double p = q.power(q.at(i1, i2));
            bool top = p > 0.0;
            for (int d1 = -1; d1 <= 1 && top; ++d1)
                for (int d2 = -1; d2 <= 1 && top; ++d2)
                    if ((d1 || d2) && q.power(q.at(i1 + d1, i2 + d2)) > p) top = false;
            if (top) peaks.push_back({p, i1, i2});
        }
    }
    const size_t keep = std::min(count, peaks.size());
    std::partial_sort(peaks.begin(), peaks.begin() + keep, peaks.end(),
                      [](const CrossPeak& a, const CrossPeak& b) { return a.power > b.power; });
    peaks.resize(keep);
    return peaks;
}

// The complex vectors along one axis through each peak, combined from the two quadrant pairs
// of that axis with the peak point's own weights so that the other axis' phase drops out.
AutoPhaseResult phaseAlong(const Quadrants& q, const std::vector<CrossPeak>& peaks, bool direct,
                           size_t n) {
    std::vector<std::vector<float>> re(peaks.size(), std::vector<float>(n)),
        im(peaks.size(), std::vector<float>(n));
    std::vector<PhaseSlice> slices;
    for (size_t p = 0; p < peaks.size(); ++p) {
        const size_t i1 = peaks[p].i1, i2 = peaks[p].i2, at = q.at(i1, i2);
        // Along f2 the pairs are (rr, ir) and (ri, ii), weighted by the f1 components; along f1
        // (rr, ri) and (ir, ii), weighted by the f2 components.
        double wa = q.rr(at), wb = direct ? q.ri(at) : q.ir(at);
        const double oa = direct ? q.ir(at) : q.ri(at), ob = q.ii(at);
        if (oa * oa + ob * ob > wa * wa + wb * wb) {
            wa = oa;
            wb = ob;
        }
        for (size_t k = 0; k < n; ++k) {
            const size_t i = direct ? q.at(i1, k) : q.at(k, i2);
            if (direct) {
                re[p][k] = static_cast<float>(wa * q.rr(i) + wb * q.ri(i));
                im[p][k] = static_cast<float>(wa * q.ir(i) + wb * q.ii(i));
            } else {
                re[p][k] = static_cast<float>(wa * q.rr(i) + wb * q.ir(i));
                im[p][k] = static_cast<float>(wa * q.ri(i) + wb * q.ii(i));
            }
        }
        slices.push_back({re[p].data(), im[p].data(), direct ? i2 : i1});
    }
    return estimatePhaseFromSlices(slices, n);
}

}  // namespace

namespace {

// Without halves the real and imaginary arrays hold the complex pairs of f1, the axis
// transformed last; the f2 imaginary parts went into the f1 recombination. Only f1 can be
// phased: its columns through the strongest peaks (local maxima of the modulus) are given to
// the asymmetry criterion, which does not mind the sign of a line.
std::optional<AutoPhase2DResult> phaseIndirectOnly(SpectrumMatrix& m, int highestTIndex,
                                                   size_t maxPeaks) {
    const size_t n1 = m.dims[1].points, n2 = m.dims[2].points, total = m.pointCount();
    const size_t s1 = axisWalk(m, 1, total).inner, s2 = axisWalk(m, 2, total).inner;
    const auto power = [&](size_t i1, size_t i2) {
        const size_t i = i1 * s1 + i2 * s2;
        return double{m.re[i]} * m.re[i] + double{m.im[i]} * m.im[i];
    };
    std::vector<CrossPeak> peaks;
    const size_t margin = kHalfLine + 2;
    AutoPhase2DResult result;
    if (n1 <= 2 * margin || n2 < 3) return result;
    for (size_t i1 = margin; i1 < n1 - margin; ++i1) {
        for (size_t i2 = 1; i2 + 1 < n2; ++i2) {
            const double p = power(i1, i2);
            bool top = p > 0.0;
            for (int d1 = -1; d1 <= 1 && top; ++d1)
                for (int d2 = -1; d2 <= 1 && top; ++d2)
                    if ((d1 || d2) && power(i1 + d1, i2 + d2) > p) top = false;
            if (top) peaks.push_back({p, i1, i2});
        }
    }
    const size_t keep = std::min(maxPeaks, peaks.size());
    std::partial_sort(peaks.begin(), peaks.begin() + keep, peaks.end(),
                      [](const CrossPeak& a, const CrossPeak& b) { return a.power > b.power; });
    peaks.resize(keep);
    if (peaks.empty()) return result;
    std::vector<std::vector<float>> re(keep, std::vector<float>(n1)),
        im(keep, std::vector<float>(n1));
    std::vector<PhaseSlice> slices;
    for (size_t p = 0; p < keep; ++p) {
        for (size_t k = 0; k < n1; ++k) {
            re[p][k] = m.re[k * s1 + peaks[p].i2 * s2];
            im[p][k] = m.im[k * s1 + peaks[p].i2 * s2];
        }
        slices.push_back({re[p].data(), im[p].data(), peaks[p].i1});
    }
    result.indirect = estimatePhaseFromSlices(slices, n1);
    changePhase(m, highestTIndex, 1, result.indirect.delta0, result.indirect.delta1);
    // The asymmetry cannot tell a plane from its negative; the strongest peaks are taken to be
    // mostly upright.
    double upright = 0.0;
    for (const auto& p : peaks) upright += m.re[p.i1 * s1 + p.i2 * s2];
    if (upright < 0.0) {
        changePhase(m, highestTIndex, 1, kPi, 0.0);
        result.indirect.delta0 += kPi;
    }
    return result;
}

}  // namespace

std::optional<AutoPhase2DResult> autoPhase2D(SpectrumMatrix& m, int highestTIndex,
                                             size_t maxPeaks) {
    if (m.realOnly()) return std::nullopt;
    if (!hasHypercomplexHalves(m)) {
        const size_t total = m.pointCount();
        if (m.dims[3].points > 1 || highestTIndex >= 1 || m.dims[1].points < 2 ||
            m.dims[2].points < 2 || m.re.size() < total || m.im.size() < total)
            return std::nullopt;
        if (m.state & matrix_state::kMagnitude) {
            togglePolar(m.re.data(), m.im.data(), total, false);
            m.state &= ~matrix_state::kMagnitude;
        }
        return phaseIndirectOnly(m, highestTIndex, maxPeaks);
    }
    if (halvesComplexAxis(m) != 1) return std::nullopt;
    const size_t n1 = m.dims[1].points, n2 = m.dims[2].points;
    const size_t total = m.pointCount();
    if (m.dims[3].points > 1 || highestTIndex >= 1 || m.re.size() < total || m.im.size() < total)
        return std::nullopt;
    if (m.state & matrix_state::kMagnitude) {
        togglePolar(m.re.data(), m.im.data(), total, false);
        m.state &= ~matrix_state::kMagnitude;
    }
    const size_t half = total / 2;
    const Quadrants q{m, half, axisWalk(m, 1, half).inner, axisWalk(m, 2, half).inner};
    const auto peaks = strongestPeaks(q, n1, n2, maxPeaks);
    AutoPhase2DResult result;
    if (peaks.empty()) return result;
    result.direct = phaseAlong(q, peaks, true, n2);
    changePhase(m, highestTIndex, 2, result.direct.delta0, result.direct.delta1);
    result.indirect = phaseAlong(q, peaks, false, n1);
    changePhase(m, highestTIndex, 1, result.indirect.delta0, result.indirect.delta1);
    // The asymmetry cannot tell a plane from its negative (a half turn along one axis); the
    // strongest peaks are taken to be mostly upright.
    double upright = 0.0;
    for (const auto& p : peaks) upright += q.rr(q.at(p.i1, p.i2));
    if (upright < 0.0) {
        changePhase(m, highestTIndex, 1, kPi, 0.0);
        result.indirect.delta0 += kPi;
    }
    return result;
}

}  // namespace zolt

// Automatic phase correction of 2-D spectra: the peak criterion on the rows and columns through
// the strongest cross peaks.
#include <algorithm>
#include <cmath>
#include <numbers>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "processing/auto_phase.h"
#include "processing/local_maxima.h"
#include "processing/phase.h"
#include "processing/phase_criteria.h"
#include "processing/polar.h"
#include "processing/row_parallel.h"

namespace zolt {
namespace {

constexpr double kPi = std::numbers::pi;
// A cross peak's row and column must hold its whole line for the peak criterion.
constexpr size_t kPeakMargin = kPhaseHalfLine + 2;

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
};

// The power of a point: the squares of its values in `arrays` float arrays (two or four), in
// double, summed in array order.
template <size_t arrays>
struct SquareSums {
    const float* a[arrays];
    // The powers of n points `step` apart from index i on, and the largest of them (NaN aside).
    // Along a contiguous line four points at a time: each of SSE2's double lanes does the same
    // products and sums as the plain loop.
    double operator()(size_t i, size_t step, size_t n, double* out) const {
        size_t k = 0;
        double largest = 0.0;
#if defined(__SSE2__)
        if (step == 1) {
            __m128d top = _mm_setzero_pd();
            for (; k + 4 <= n; k += 4) {
                __m128d low = _mm_setzero_pd(), high = _mm_setzero_pd();
#pragma GCC unroll 4
                for (size_t r = 0; r < arrays; ++r) {
                    const __m128 v = _mm_loadu_ps(a[r] + i + k);
                    const __m128d vl = _mm_cvtps_pd(v), vh = _mm_cvtps_pd(_mm_movehl_ps(v, v));
                    low = r ? _mm_add_pd(low, _mm_mul_pd(vl, vl)) : _mm_mul_pd(vl, vl);
                    high = r ? _mm_add_pd(high, _mm_mul_pd(vh, vh)) : _mm_mul_pd(vh, vh);
                }
                _mm_storeu_pd(out + k, low);
                _mm_storeu_pd(out + k + 2, high);
                // maxpd keeps its second operand where the first is NaN.
                top = _mm_max_pd(low, _mm_max_pd(high, top));
            }
            double lanes[2];
            _mm_storeu_pd(lanes, top);
            largest = std::max(lanes[0], lanes[1]);
        }
#endif
        for (; k < n; ++k) {
            const size_t at = i + k * step;
            double sum = double{a[0][at]} * a[0][at];
            for (size_t r = 1; r < arrays; ++r) sum += double{a[r][at]} * a[r][at];
            out[k] = sum;
            if (sum > largest) largest = sum;
        }
        return largest;
    }
};

// The n1 x n2 grid of powers read a line at a time along the axis closer together in memory;
// power(first, step, n, out) writes the powers of n points `step` apart from index `first` on.
template <typename Power>
GridLines powerLines(const Power& power, size_t n1, size_t n2, size_t stride1, size_t stride2,
                     size_t margin1, size_t margin2) {
    GridLines grid{n1, n2, margin1, margin2, stride2 <= stride1, {}};
    if (grid.alongRows)
        grid.values = [=](size_t i1, double* out) { return power(i1 * stride1, stride2, n2, out); };
    else
        grid.values = [=](size_t i2, double* out) { return power(i2 * stride2, stride1, n1, out); };
    return grid;
}

// The complex vectors along one axis through each peak, combined from the two quadrant pairs
// of that axis with the peak point's own weights so that the other axis' phase drops out.
AutoPhaseResult phaseAlong(const Quadrants& q, const std::vector<LocalMaximum>& peaks, bool direct,
                           size_t n) {
    const size_t count = peaks.size();
    std::vector<std::vector<float>> re(count, std::vector<float>(n)),
        im(count, std::vector<float>(n));
    std::vector<double> wa(count), wb(count);
    for (size_t p = 0; p < count; ++p) {
        const size_t at = q.at(peaks[p].i1, peaks[p].i2);
        // Along f2 the pairs are (rr, ir) and (ri, ii), weighted by the f1 components; along f1
        // (rr, ri) and (ir, ii), weighted by the f2 components.
        wa[p] = q.rr(at);
        wb[p] = direct ? q.ri(at) : q.ir(at);
        const double oa = direct ? q.ir(at) : q.ri(at), ob = q.ii(at);
        if (oa * oa + ob * ob > wa[p] * wa[p] + wb[p] * wb[p]) {
            wa[p] = oa;
            wb[p] = ob;
        }
    }
    // A stretch of the axis at a time for all peaks: where the axis runs across memory, the
    // peaks' points of one stretch lie in the same few pages.
    constexpr size_t kStretch = 64;
    forEachRowRange((n + kStretch - 1) / kStretch, 4, [&](size_t begin, size_t end) {
        for (size_t k0 = begin * kStretch; k0 < std::min(n, end * kStretch); k0 += kStretch) {
            const size_t k1 = std::min(n, k0 + kStretch);
            for (size_t p = 0; p < count; ++p) {
                const size_t i1 = peaks[p].i1, i2 = peaks[p].i2;
                for (size_t k = k0; k < k1; ++k) {
                    const size_t i = direct ? q.at(i1, k) : q.at(k, i2);
                    if (direct) {
                        re[p][k] = static_cast<float>(wa[p] * q.rr(i) + wb[p] * q.ri(i));
                        im[p][k] = static_cast<float>(wa[p] * q.ir(i) + wb[p] * q.ii(i));
                    } else {
                        re[p][k] = static_cast<float>(wa[p] * q.rr(i) + wb[p] * q.ir(i));
                        im[p][k] = static_cast<float>(wa[p] * q.ri(i) + wb[p] * q.ii(i));
                    }
                }
            }
        }
    });
    std::vector<PhaseSlice> slices;
    for (size_t p = 0; p < count; ++p)
        slices.push_back({re[p].data(), im[p].data(), direct ? peaks[p].i2 : peaks[p].i1});
    return estimatePhaseFromSlices(slices, n);
}

// Without halves the real and imaginary arrays hold the complex pairs of f1, the axis
// transformed last; the f2 imaginary parts went into the f1 recombination. Only f1 can be
// phased: its columns through the strongest peaks (local maxima of the modulus) are given to
// the asymmetry criterion, which does not mind the sign of a line.
AutoPhase2DResult phaseIndirectOnly(SpectrumMatrix& m, int highestTIndex, size_t maxPeaks) {
    const size_t n1 = m.dims[1].points, n2 = m.dims[2].points, total = m.pointCount();
    const size_t s1 = axisWalk(m, 1, total).inner, s2 = axisWalk(m, 2, total).inner;
    const SquareSums<2> power{{m.re.data(), m.im.data()}};
    AutoPhase2DResult result;
    const auto peaks =
        strongestLocalMaxima(powerLines(power, n1, n2, s1, s2, kPeakMargin, 1), maxPeaks);
    if (peaks.empty()) return result;
    const size_t keep = peaks.size();
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
    const SquareSums<4> power{{m.re.data(), m.im.data(), m.re.data() + half, m.im.data() + half}};
    const auto peaks = strongestLocalMaxima(
        powerLines(power, n1, n2, q.stride1, q.stride2, kPeakMargin, kPeakMargin), maxPeaks);
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

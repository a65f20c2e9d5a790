#include "processing/phase.h"

#include <cmath>
#include <new>
#include <numbers>
#include <vector>

#include "processing/kernels.h"

namespace zolt {
namespace {

constexpr double kFirstOrderNegligible = 0.0001;
constexpr double kSineNegligible = 1e-5;
constexpr double kIncrementNegligible = 1e-6;

size_t axisPoints(const SpectrumMatrix& m, int f) {
    return m.dims[f].points ? m.dims[f].points : 1;
}

// The float cos and sin of the angles a0 + k*step, k < n: cos and sin advance by the rotation
// of step in double precision.
void rotationTable(double a0, double step, size_t n, float* cf, float* sf) {
    const double dc = std::cos(step), ds = std::sin(step);
    double c = std::cos(a0), s = std::sin(a0);
    for (size_t k = 0; k < n; ++k) {
        cf[k] = static_cast<float>(c);
        sf[k] = static_cast<float>(s);
        const double c2 = c * dc - s * ds;
        s = s * dc + c * ds;
        c = c2;
    }
}

// Rotates one block of the walk by the tabled angles.
void rotateBlock(float* __restrict a, float* __restrict b, const AxisWalk& w, const float* cf,
                 const float* sf) {
    if (w.inner == 1) {
        for (size_t k = 0; k < w.n; ++k) {
            const float re = a[k], im = b[k];
            a[k] = re * cf[k] - im * sf[k];
            b[k] = re * sf[k] + im * cf[k];
        }
        return;
    }
    for (size_t k = 0; k < w.n; ++k) {
        float* pa = a + k * w.inner;
        float* pb = b + k * w.inner;
        for (size_t j = 0; j < w.inner; ++j) {
            const float re = pa[j], im = pb[j];
            pa[j] = re * cf[k] - im * sf[k];
            pb[j] = re * sf[k] + im * cf[k];
        }
    }
}

// Rotates the pairs (a[i], b[i]) along one axis, the angles advanced point by point as the
// table does: for a single block, where a table would save nothing.
void rotateStreaming(float* a, float* b, const AxisWalk& w, double a0, double step) {
    const double dc = std::cos(step), ds = std::sin(step);
    const size_t block = w.n * w.inner;
    for (size_t o = 0; o < w.outer; ++o) {
        float* ra = a + o * block;
        float* rb = b + o * block;
        double c = std::cos(a0), s = std::sin(a0);
        for (size_t k = 0; k < w.n; ++k) {
            const float cf = static_cast<float>(c), sf = static_cast<float>(s);
            float* pa = ra + k * w.inner;
            float* pb = rb + k * w.inner;
            for (size_t j = 0; j < w.inner; ++j) {
                const float re = pa[j], im = pb[j];
                pa[j] = re * cf - im * sf;
                pb[j] = re * sf + im * cf;
            }
            const double c2 = c * dc - s * ds;
            s = s * dc + c * ds;
            c = c2;
        }
    }
}

// Rotates the pairs (a[i], b[i]) along one axis. The angle of point k is a0 + k*step; every
// block starts again at a0, so the table of the angles is worked out once for all blocks.
void rotateWalk(float* a, float* b, const AxisWalk& w, double a0, double step) {
    std::vector<float> table;
    if (w.outer > 1) {
        try {
            table.resize(2 * w.n);
        } catch (const std::bad_alloc&) {
            table.clear();
        }
    }
    if (table.empty()) return rotateStreaming(a, b, w, a0, step);
    rotationTable(a0, step, w.n, table.data(), table.data() + w.n);
    const size_t block = w.n * w.inner;
    for (size_t o = 0; o < w.outer; ++o)
        rotateBlock(a + o * block, b + o * block, w, table.data(), table.data() + w.n);
}

// Applies (phaseA, phaseB) to the pairs (a, b) laid out as w describes, with the shortcuts
// for a negligible first order.
void phasePairs(float* a, float* b, const AxisWalk& w, size_t count, double phaseA, double phaseB) {
    if (std::fabs(phaseB) <= kFirstOrderNegligible) {
        if (std::fabs(std::sin(phaseA)) > kSineNegligible) {
            const AxisWalk flat{count, 1, 1};
            rotateWalk(a, b, flat, phaseA, 0.0);
        } else if (std::cos(phaseA) < 0.0) {
            for (size_t i = 0; i < count; ++i) {
                a[i] = -a[i];
                b[i] = -b[i];
            }
        }
        return;
    }
    rotateWalk(a, b, w, phaseA, phaseB / static_cast<double>(w.n));
}

}  // namespace

bool hasHypercomplexHalves(const SpectrumMatrix& m) {
    return m.dims[0].points == 2;
}

int halvesComplexAxis(const SpectrumMatrix& m) {
    if (!hasHypercomplexHalves(m)) return 0;
    for (int f = 1; f <= 3; ++f)
        if (m.dims[f].points >= 2) return f;
    return 0;
}

AxisWalk axisWalk(const SpectrumMatrix& m, int fIndex, size_t count) {
    AxisWalk w;
    w.n = axisPoints(m, fIndex);
    // Storage order: the contiguous axis, then the others by decreasing f-index, record 0 last.
    const int c = (m.contiguous >= 1 && m.contiguous <= 3) ? m.contiguous : 0;
    if (c != fIndex) {
        if (c) w.inner *= axisPoints(m, c);
        for (int f = 3; f > fIndex; --f)
            if (f != c) w.inner *= axisPoints(m, f);
    }
    const size_t block = w.n * w.inner;
    w.outer = block ? count / block : 0;
    return w;
}

void applyPhase(SpectrumMatrix& m, int fIndex, double phaseA, double phaseB) {
    if (fIndex < 1 || fIndex > 3 || !std::isfinite(phaseA) || !std::isfinite(phaseB)) return;
    const size_t total = m.pointCount();
    if (m.re.size() < total) return;
    const bool haveIm = m.im.size() >= total && !m.realOnly();
    const int pairedAxis = halvesComplexAxis(m);
    if (pairedAxis && fIndex != pairedAxis) {
        const size_t half = total / 2;
        const AxisWalk w = axisWalk(m, fIndex, half);
        phasePairs(m.re.data(), m.re.data() + half, w, half, phaseA, phaseB);
        if (haveIm) phasePairs(m.im.data(), m.im.data() + half, w, half, phaseA, phaseB);
        return;
    }
    if (!haveIm) return;
    const AxisWalk w = axisWalk(m, fIndex, total);
    phasePairs(m.re.data(), m.im.data(), w, total, phaseA, phaseB);
}

void applyPhaseToRow(float* re, float* im, size_t n, double phaseA, double phaseB) {
    if (!re || !im || n == 0 || !std::isfinite(phaseA) || !std::isfinite(phaseB)) return;
    phasePairs(re, im, AxisWalk{n, 1, 1}, n, phaseA, phaseB);
}

float wrapPhase(double phase0) {
    if (!std::isfinite(phase0)) return 0.0f;
    constexpr double pi = std::numbers::pi;
    // Far outside one turn the repeated steps would take too long; reduce first.
    if (std::fabs(phase0) > 64.0 * pi) phase0 = std::remainder(phase0, 2.0 * pi);
    while (phase0 > pi) phase0 -= 2.0 * pi;
    while (phase0 < -pi) phase0 += 2.0 * pi;
    return static_cast<float>(phase0);
}

void changePhase(SpectrumMatrix& m, int highestTIndex, int fIndex, double delta0, double delta1) {
    if (fIndex < 1 || fIndex > 3 || !std::isfinite(delta0) || !std::isfinite(delta1)) return;
    DimensionRecord& d = m.dims[fIndex];
    d.phase1 = static_cast<float>(d.phase1 + delta1);
    d.phase0 = wrapPhase(static_cast<double>(d.phase0) + delta0);

    const size_t total = m.pointCount();
    const bool haveIm = !m.realOnly() && !m.im.empty() && m.im.size() >= total;
    if (!haveIm || d.points < 2 || fIndex <= highestTIndex) return;
    if (std::fabs(delta0) < kIncrementNegligible && std::fabs(delta1) < kIncrementNegligible)
        return;
    if (m.re.size() < total) return;
    if (m.state & matrix_state::kMagnitude) {
        togglePolar(m.re.data(), m.im.data(), total, false);
        m.state &= ~matrix_state::kMagnitude;
    }
    if (m.state & matrix_state::kComplexConjugate) {
        delta0 = -delta0;
        delta1 = -delta1;
    }
    applyPhase(m, fIndex, delta0, delta1);
}

}  // namespace zolt

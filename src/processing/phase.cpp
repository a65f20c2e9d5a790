#include "processing/phase.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "processing/polar.h"
#include "processing/row_parallel.h"

namespace zolt {
namespace {

constexpr double kFirstOrderNegligible = 0.0001;
constexpr double kSineNegligible = 1e-5;
constexpr double kIncrementNegligible = 1e-6;
// Lines of a walk too few to be worth a thread of their own.
constexpr size_t kMinLinesPerThread = 16;

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

// Rotates the n pairs (a[i], b[i]) by the angle with float cosine c[i] and sine s[i]; the four
// lanes of SSE do each the same float products and sums as the plain loop.
void rotatePairs(float* __restrict a, float* __restrict b, const float* c, const float* s,
                 size_t n) {
    size_t i = 0;
#if defined(__SSE2__)
    for (; i + 4 <= n; i += 4) {
        const __m128 re = _mm_loadu_ps(a + i), im = _mm_loadu_ps(b + i);
        const __m128 cf = _mm_loadu_ps(c + i), sf = _mm_loadu_ps(s + i);
        _mm_storeu_ps(a + i, _mm_sub_ps(_mm_mul_ps(re, cf), _mm_mul_ps(im, sf)));
        _mm_storeu_ps(b + i, _mm_add_ps(_mm_mul_ps(re, sf), _mm_mul_ps(im, cf)));
    }
#endif
    for (; i < n; ++i) {
        const float re = a[i], im = b[i];
        a[i] = re * c[i] - im * s[i];
        b[i] = re * s[i] + im * c[i];
    }
}

// The same with one angle for all n pairs.
void rotatePairs(float* __restrict a, float* __restrict b, float c, float s, size_t n) {
    size_t i = 0;
#if defined(__SSE2__)
    const __m128 cf = _mm_set1_ps(c), sf = _mm_set1_ps(s);
    for (; i + 4 <= n; i += 4) {
        const __m128 re = _mm_loadu_ps(a + i), im = _mm_loadu_ps(b + i);
        _mm_storeu_ps(a + i, _mm_sub_ps(_mm_mul_ps(re, cf), _mm_mul_ps(im, sf)));
        _mm_storeu_ps(b + i, _mm_add_ps(_mm_mul_ps(re, sf), _mm_mul_ps(im, cf)));
    }
#endif
    for (; i < n; ++i) {
        const float re = a[i], im = b[i];
        a[i] = re * c - im * s;
        b[i] = re * s + im * c;
    }
}

// Rotates one block of the walk by the tabled angles.
void rotateBlock(float* a, float* b, const AxisWalk& w, const float* cf, const float* sf) {
    if (w.inner == 1) return rotatePairs(a, b, cf, sf, w.n);
    for (size_t k = 0; k < w.n; ++k)
        rotatePairs(a + k * w.inner, b + k * w.inner, cf[k], sf[k], w.inner);
}

// Rotates the pairs (a[i], b[i]) along one axis with the angles advanced as the table does,
// a short stretch of them at a time: for a single row, where a whole table would save
// nothing, or when there is no room for one.
void rotateStreaming(float* a, float* b, const AxisWalk& w, double a0, double step) {
    constexpr size_t kStretch = 256;
    float cf[kStretch], sf[kStretch];
    const double dc = std::cos(step), ds = std::sin(step);
    const size_t block = w.n * w.inner;
    for (size_t o = 0; o < w.outer; ++o) {
        double c = std::cos(a0), s = std::sin(a0);
        for (size_t k0 = 0; k0 < w.n; k0 += kStretch) {
            const size_t count = std::min(kStretch, w.n - k0);
            for (size_t k = 0; k < count; ++k) {
                cf[k] = static_cast<float>(c);
                sf[k] = static_cast<float>(s);
                const double c2 = c * dc - s * ds;
                s = s * dc + c * ds;
                c = c2;
            }
            const AxisWalk stretch{count, w.inner, 1};
            rotateBlock(a + o * block + k0 * w.inner, b + o * block + k0 * w.inner, stretch, cf,
                        sf);
        }
    }
}

// Rotates the pairs (a[i], b[i]) along one axis. The angle of point k is a0 + k*step; every
// block starts again at a0, so the table of the angles is worked out once for all blocks; with
// a single block of several values a point, the table lets the threads share the points.
void rotateWalk(float* a, float* b, const AxisWalk& w, double a0, double step) {
    std::vector<float> table;
    if (w.outer > 1 || w.inner > 1) {
        try {
            table.resize(2 * w.n);
        } catch (const std::bad_alloc&) {
            table.clear();
        }
    }
    if (table.empty()) return rotateStreaming(a, b, w, a0, step);
    const float* cf = table.data();
    const float* sf = table.data() + w.n;
    rotationTable(a0, step, w.n, table.data(), table.data() + w.n);
    const size_t block = w.n * w.inner;
    // Every line of the walk (a row, or one point's values along the inner axes) takes the same
    // products whichever thread rotates it.
    const size_t lines = w.inner == 1 ? w.outer : w.outer * w.n;
    forEachRowRange(lines, kMinLinesPerThread, [&](size_t begin, size_t end) {
        for (size_t line = begin; line < end; ++line) {
            if (w.inner == 1) {
                rotatePairs(a + line * block, b + line * block, cf, sf, w.n);
            } else {
                const size_t o = line / w.n, k = line % w.n, at = o * block + k * w.inner;
                rotatePairs(a + at, b + at, cf[k], sf[k], w.inner);
            }
        }
    });
}

// Applies (phaseA, phaseB) to the pairs (a, b) laid out as w describes, with the shortcuts
// for a negligible first order.
void phasePairs(float* a, float* b, const AxisWalk& w, size_t count, double phaseA, double phaseB) {
    if (std::fabs(phaseB) <= kFirstOrderNegligible) {
        if (std::fabs(std::sin(phaseA)) > kSineNegligible) {
            // One angle for all: pieces of the row rotated apart take the same products. A step
            // of 0 leaves the advanced cosine and sine as they were, so every point takes the
            // float cosine and sine of phaseA.
            constexpr size_t kPiece = 4096;
            const float c = static_cast<float>(std::cos(phaseA));
            const float s = static_cast<float>(std::sin(phaseA));
            forEachRowRange((count + kPiece - 1) / kPiece, 4, [&](size_t begin, size_t end) {
                const size_t from = begin * kPiece, to = std::min(count, end * kPiece);
                rotatePairs(a + from, b + from, c, s, to - from);
            });
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

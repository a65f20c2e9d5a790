#include "processing/apodization.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <stdexcept>
#include <vector>

#include "processing/row_parallel.h"

namespace zolt {

namespace {

constexpr double kPi = std::numbers::pi;

bool has(const FourierTransformStep& s, uint16_t bit) {
    return (s.flags & bit) != 0;
}

void multiplyExponential(float* w, size_t n, double lb, double sw) {
    const double q = std::exp(-kPi * lb / sw);
    double factor = 1.0;  // q^k as a running product; a negative lb sharpens
    for (size_t k = 0; k < n; ++k) {
        w[k] = static_cast<float>(w[k] * factor);
        factor *= q;
    }
}

void multiplyGaussian(float* w, size_t n, double gb, double sw) {
    const double root = kPi * gb / (2.0 * sw);
    const double sigma = root * root / std::numbers::ln2;
    const double sign = gb > 0.0 ? -1.0 : 1.0;
    double k2 = 0.0;  // k^2 as the running sum of the odd numbers
    for (size_t k = 0; k < n; ++k) {
        w[k] = static_cast<float>(w[k] * std::exp(sign * sigma * k2));
        k2 += 2.0 * static_cast<double>(k) + 1.0;
    }
}

// Bell length: the truncated share of the points, else all of them; T*N is a float product.
double bellLength(const FourierTransformStep& s, size_t n) {
    if (!has(s, ft_flags::kTruncation)) return static_cast<double>(n);
    const float tn = s.weights[kWeightTruncation] * static_cast<float>(n);
    return static_cast<double>(tn) / 100.0;
}

void multiplySineBell(float* w, size_t n, double shiftDegrees, double length, bool squared) {
    const double start = shiftDegrees * kPi / 180.0;
    const double delta = (kPi - start) / length;
    const double limit = std::min(static_cast<double>(n), std::max(0.0, std::trunc(length)));
    const size_t end = std::isfinite(limit) ? static_cast<size_t>(limit) : 0;
    for (size_t k = 0; k < end; ++k) {
        const double s = std::sin(start + static_cast<double>(k) * delta);
        w[k] = static_cast<float>(w[k] * (squared ? s * s : s));
    }
    std::fill(w + end, w + n, 0.0f);
}

// A truncation above 200 % carries a TRAF enhancement of (T - 200) Hz.
void multiplyTraficante(float* w, size_t n, double lb, double sw) {
    const double a = -kPi * lb / sw;
    const double e2n = std::exp(2.0 * a * static_cast<double>(n));
    for (size_t k = 0; k < n; ++k) {
        const double e = std::exp(a * static_cast<double>(k));
        const double e2 = e * e;
        w[k] = static_cast<float>(w[k] * (e / (e2 + e2n / e2)));
    }
}

void multiplyTruncation(float* w, size_t n, double t, double sw) {
    if (t > 200.0) {
        multiplyTraficante(w, n, t - 200.0, sw);
        return;
    }
    const double cut = std::trunc(static_cast<double>(n) * t / 100.0);
    const size_t c = cut > 0.0 ? static_cast<size_t>(cut) : 0;
    if (c < n) {
        // Linear taper after point c; the last point keeps 1/(n - c).
        const double span = static_cast<double>(n - c);
        for (size_t j = 0; c + 1 + j < n; ++j)
            w[c + 1 + j] = static_cast<float>(w[c + 1 + j] * (1.0 - (j + 1.0) / span));
    } else if (c > n) {
        const double g = (t - 100.0) / 100.0;
        for (size_t k = 0; k < n; ++k)
            w[k] = static_cast<float>(w[k] * ((1.0 - g) + k * 2.0 * g / static_cast<double>(n)));
    }
}

}  // namespace

float weightingSpectralWidth(float widthPpm, float carrierMhz) {
    return widthPpm * carrierMhz;
}

size_t firstPointIndex(float timeShift, size_t n) {
    if (n == 0 || !(timeShift < 0.0f)) return 0;
    const double f = std::trunc(-static_cast<double>(timeShift));
    return f >= static_cast<double>(n - 1) ? n - 1 : static_cast<size_t>(f);
}

void buildWeightingVector(const FourierTransformStep& step, const WeightingInput& in, float* w) {
    const size_t n = in.n;
    const float scale = 32.0f / static_cast<float>(in.n0 ? in.n0 : 1);
    std::fill(w, w + n, scale);
    if (has(step, ft_flags::kQuadrature))
        for (size_t k = 1; k < n; k += 2) w[k] = -w[k];
    if (!has(step, ft_flags::kApplyWeights) || n == 0) return;

    const auto& p = step.weights;
    const double sw = in.swHz;
    if (has(step, ft_flags::kFirstPoint)) w[std::min(in.first, n - 1)] *= p[kWeightFirstPoint];
    if (has(step, ft_flags::kExponential)) multiplyExponential(w, n, p[kWeightExponential], sw);
    if (has(step, ft_flags::kGaussian)) multiplyGaussian(w, n, p[kWeightGaussian], sw);
    const bool sine = has(step, ft_flags::kSineBell);
    const bool squared = has(step, ft_flags::kSquaredSineBell);
    if (sine) multiplySineBell(w, n, p[kWeightSineBell], bellLength(step, n), false);
    if (squared) multiplySineBell(w, n, p[kWeightSquaredSine], bellLength(step, n), true);
    if (has(step, ft_flags::kTruncation) && !sine && !squared)
        multiplyTruncation(w, n, p[kWeightTruncation], sw);
}

bool imaginaryNegated(const FourierTransformStep& step, bool conjugateState) {
    const bool byStep = has(step, ft_flags::kConjugate);
    const bool byState = conjugateState && step.shuffling == Shuffling::None;
    return byStep != byState;
}

bool applyWeighting(const FourierTransformStep& step, const WeightingInput& in, float* re,
                    float* im, size_t rows, size_t stride) {
    std::vector<float> w;
    try {
        w.resize(in.n);
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
    buildWeightingVector(step, in, w.data());
    const bool negate = imaginaryNegated(step, in.conjugateState);
    forEachRowRange(rows, 16, [&](size_t begin, size_t end) {
        for (size_t r = begin; r < end; ++r) {
            float* x = re + r * stride;
            for (size_t k = 0; k < in.n; ++k) x[k] *= w[k];
            if (!im) continue;
            float* y = im + r * stride;
            if (negate)
                for (size_t k = 0; k < in.n; ++k) y[k] *= -w[k];
            else
                for (size_t k = 0; k < in.n; ++k) y[k] *= w[k];
        }
    });
    return true;
}

}  // namespace zolt

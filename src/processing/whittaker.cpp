#include "processing/whittaker.h"

#include <cmath>
#include <vector>

namespace zolt {

double whittakerLambda(size_t n, int k) {
    return std::exp(std::log(4.0 * static_cast<double>(n)) * (9.0 - k) / 9.0);
}

bool whittakerSmooth(const float* y, const uint8_t* mask, size_t n, double lambda, float* out) {
    if (n < 3 || !(lambda > 0.0) || !std::isfinite(lambda)) return false;
    // The penalty is the integral of the squared second derivative over the row taken as 0 ... 1,
    // n^3 times the sum of squared second differences; dividing the data weight by it instead
    // keeps the band matrix of order one.
    lambda /= std::pow(static_cast<double>(n), 3.0);
    size_t baseline = 0;
    for (size_t i = 0; i < n; ++i) baseline += mask[i] == 0;
    if (baseline < 2) return false;

    // A = lambda*W + D'D with D the (n-2) x n second difference; L D L' with unit L whose two
    // sub-diagonals are e (i, i-1) and f (i, i-2).
    const size_t last = n - 3;  // index of the last difference row
    auto diagonal = [&](size_t i) {
        double a = (i <= last ? 1.0 : 0.0) + (i >= 1 && i - 1 <= last ? 4.0 : 0.0) +
                   (i >= 2 && i - 2 <= last ? 1.0 : 0.0);
        return a + (mask[i] ? 0.0 : lambda);
    };
    auto offOne = [&](size_t i) {  // A[i][i-1], i >= 1
        return (i - 1 <= last ? -2.0 : 0.0) + (i >= 2 && i - 2 <= last ? -2.0 : 0.0);
    };
    auto offTwo = [&](size_t i) { return i - 2 <= last ? 1.0 : 0.0; };  // A[i][i-2], i >= 2

    std::vector<double> d(n), e(n, 0.0), f(n, 0.0), u(n);
    for (size_t i = 0; i < n; ++i) {
        if (i >= 2) f[i] = offTwo(i) / d[i - 2];
        if (i >= 1) e[i] = (offOne(i) - (i >= 2 ? f[i] * e[i - 1] * d[i - 2] : 0.0)) / d[i - 1];
        double di = diagonal(i);
        if (i >= 1) di -= e[i] * e[i] * d[i - 1];
        if (i >= 2) di -= f[i] * f[i] * d[i - 2];
        if (!(di > 0.0)) return false;
        d[i] = di;
    }
    for (size_t i = 0; i < n; ++i) {
        double b = mask[i] ? 0.0 : lambda * y[i];
        if (i >= 1) b -= e[i] * u[i - 1];
        if (i >= 2) b -= f[i] * u[i - 2];
        u[i] = b;
    }
    for (size_t i = 0; i < n; ++i) u[i] /= d[i];
    for (size_t i = n; i-- > 0;) {
        if (i + 1 < n) u[i] -= e[i + 1] * u[i + 1];
        if (i + 2 < n) u[i] -= f[i + 2] * u[i + 2];
    }
    for (size_t i = 0; i < n; ++i) out[i] = static_cast<float>(u[i]);
    return true;
}

}  // namespace zolt

#include "processing/linear_prediction.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <new>
#include <stdexcept>
#include <vector>

namespace zolt {

namespace {

using cplx = std::complex<double>;

constexpr double kRidge = 1e-10;

// Normal equations of x[t] = sum_j a_j x[t-j] over t = p+1 ... n-1, then solved in place by
// Gaussian elimination with partial pivoting. m is p x p (row-major), v the right-hand side;
// the coefficients come back in v. A singular system leaves zero coefficients.
void solveCoefficients(const cplx* x, size_t n, size_t p, std::vector<cplx>& m,
                       std::vector<cplx>& v) {
    const size_t t0 = p + 1, t1 = n - 1;
    auto at = [&](size_t i, size_t j) -> cplx& { return m[(i - 1) * p + (j - 1)]; };
    for (size_t j = 1; j <= p; ++j) {
        cplx first{}, rhs{};
        for (size_t t = t0; t <= t1; ++t) {
            first += std::conj(x[t - 1]) * x[t - j];
            rhs += std::conj(x[t - j]) * x[t];
        }
        at(1, j) = first;
        v[j - 1] = rhs;
    }
    // Each diagonal of the matrix slides along the data: one term in, one term out.
    for (size_t i = 1; i < p; ++i)
        for (size_t j = i; j < p; ++j)
            at(i + 1, j + 1) = at(i, j) + std::conj(x[t0 - 1 - i]) * x[t0 - 1 - j] -
                               std::conj(x[t1 - i]) * x[t1 - j];
    for (size_t i = 2; i <= p; ++i)
        for (size_t j = 1; j < i; ++j) at(i, j) = std::conj(at(j, i));
    // Signals fewer than the order make the system singular; a faint ridge keeps the
    // solution small instead of letting rounding pick wild coefficients.
    double trace = 0.0;
    for (size_t i = 1; i <= p; ++i) trace += at(i, i).real();
    for (size_t i = 1; i <= p; ++i) at(i, i) += kRidge * trace / static_cast<double>(p);

    for (size_t c = 0; c < p; ++c) {
        size_t pivot = c;
        for (size_t r = c + 1; r < p; ++r)
            if (std::abs(m[r * p + c]) > std::abs(m[pivot * p + c])) pivot = r;
        if (std::abs(m[pivot * p + c]) < 1e-300) {
            std::fill(v.begin(), v.end(), cplx{});
            return;
        }
        if (pivot != c) {
            std::swap_ranges(m.begin() + c * p, m.begin() + (c + 1) * p, m.begin() + pivot * p);
            std::swap(v[c], v[pivot]);
        }
        for (size_t r = c + 1; r < p; ++r) {
            const cplx factor = m[r * p + c] / m[c * p + c];
            for (size_t k = c; k < p; ++k) m[r * p + k] -= factor * m[c * p + k];
            v[r] -= factor * v[c];
        }
    }
    for (size_t c = p; c-- > 0;) {
        cplx sum = v[c];
        for (size_t k = c + 1; k < p; ++k) sum -= m[c * p + k] * v[k];
        v[c] = sum / m[c * p + c];
    }
}

// A prediction that grows without bound (a root outside the unit circle) is cut where it
// passes this multiple of the row's largest modulus; the rest stays zero.
constexpr double kGrowthLimit = 10.0;

void predictRow(float* re, float* im, size_t n, size_t f, size_t p, std::vector<cplx>& x,
                std::vector<cplx>& m, std::vector<cplx>& v) {
    double largest = 0.0;
    for (size_t k = 0; k < n; ++k) {
        x[k] = cplx(re[k], im[k]);
        largest = std::max(largest, std::abs(x[k]));
    }
    solveCoefficients(x.data(), n, p, m, v);
    for (size_t t = n; t < f; ++t) {
        cplx sum{};
        for (size_t j = 1; j <= p; ++j) sum += v[j - 1] * x[t - j];
        if (!std::isfinite(sum.real()) || !std::isfinite(sum.imag()) ||
            std::abs(sum) > kGrowthLimit * largest) {
            std::fill(re + t, re + f, 0.0f);
            std::fill(im + t, im + f, 0.0f);
            return;
        }
        x[t] = sum;
        re[t] = static_cast<float>(sum.real());
        im[t] = static_cast<float>(sum.imag());
    }
}

}  // namespace

size_t predictionOrder(size_t n) {
    return std::min<size_t>(n / 16, 24);
}

bool extendByPrediction(float* re, float* im, size_t rows, size_t n, size_t f, size_t stride) {
    const size_t p = predictionOrder(n);
    if (p == 0 || f <= n || !re || !im || stride < f) return false;
    std::vector<cplx> x, m, v;
    try {
        x.resize(f);
        m.resize(p * p);
        v.resize(p);
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
    for (size_t r = 0; r < rows; ++r)
        predictRow(re + r * stride, im + r * stride, n, f, p, x, m, v);
    return true;
}

}  // namespace zolt

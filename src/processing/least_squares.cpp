#include "processing/least_squares.h"

#include <algorithm>
#include <cmath>

#include "processing/baseline.h"

namespace zolt {
namespace {

// Two columns of one row. The matrix is stored row by row so that a row's columns sit side by
// side: each dot product and each update still runs down its own column in row order, as a
// column at a time would, but all the columns of a row go at once.
typedef double Pair __attribute__((vector_size(16), may_alias, aligned(8)));

constexpr size_t kWidePairs = 8;

Pair* rowPairs(double* a, size_t stride, size_t i) {
    return reinterpret_cast<Pair*>(a + i * stride);
}

// Sum of the squares of column j from row `from` on, in row order.
double columnNorm2(const double* a, size_t stride, size_t m, size_t j, size_t from) {
    double norm = 0.0;
    for (size_t i = from; i < m; ++i) norm += a[i * stride + j] * a[i * stride + j];
    return norm;
}

// Applies I - 2 v v' / vv to the R pairs of columns from pair q0 on, rows j on. v[j] is given;
// the rest of v is column j below row j, copied while the dot products run, and vv summed
// alongside them in row order. Returns whether it was applied (vv nonzero) and sets norm2 to the
// sum of the squares of the updated column j + 1 from row j + 1 on, the next step's norm. R is
// fixed for the few columns of the baselines, so that the sums stay in registers.
template <size_t R>
bool reflectPairs(double* a, size_t stride, size_t m, size_t j, size_t q0, double* v, double& norm2,
                  size_t count = R) {
    constexpr size_t kMax = R == 0 ? kWidePairs : R;
    const size_t pairs = R == 0 ? count : R;
    Pair dot[kMax];
    for (size_t q = 0; q < pairs; ++q) dot[q] = Pair{0.0, 0.0};
    double vv = v[j] * v[j];
    {
        const Pair* row = rowPairs(a, stride, j) + q0;
        const Pair vj = {v[j], v[j]};
        for (size_t q = 0; q < pairs; ++q) dot[q] += vj * row[q];
    }
    for (size_t i = j + 1; i < m; ++i) {
        const double x = a[i * stride + j];
        v[i] = x;
        vv += x * x;
        const Pair* row = rowPairs(a, stride, i) + q0;
        const Pair vi = {x, x};
        for (size_t q = 0; q < pairs; ++q) dot[q] += vi * row[q];
    }
    if (vv == 0.0) return false;
    const double f = 2.0 / vv;
    const Pair factor = {f, f};
    for (size_t q = 0; q < pairs; ++q) dot[q] *= factor;
    const size_t next = j + 1;
    double norm = 0.0;
    for (size_t i = j; i < m; ++i) {
        Pair* row = rowPairs(a, stride, i) + q0;
        const Pair vi = {v[i], v[i]};
        for (size_t q = 0; q < pairs; ++q) row[q] -= dot[q] * vi;
        if (i >= next) norm += a[i * stride + next] * a[i * stride + next];
    }
    norm2 = norm;
    return true;
}

// The columns from pair q0 on, kWidePairs at a time beyond the fixed counts.
bool reflect(double* a, size_t stride, size_t m, size_t j, size_t q0, double* v, double& norm2) {
    switch (stride / 2 - q0) {
        case 1:
            return reflectPairs<1>(a, stride, m, j, q0, v, norm2);
        case 2:
            return reflectPairs<2>(a, stride, m, j, q0, v, norm2);
        case 3:
            return reflectPairs<3>(a, stride, m, j, q0, v, norm2);
        case 4:
            return reflectPairs<4>(a, stride, m, j, q0, v, norm2);
        case 5:
            return reflectPairs<5>(a, stride, m, j, q0, v, norm2);
        default:
            break;
    }
    // Wider fits: blocks of pairs, each a pass of its own, the last first so that column j (in
    // the first block) is read unchanged by all; only the first block's norm is the next step's,
    // as column j + 1 lies in it.
    const size_t pairs = stride / 2, blocks = (pairs - q0 + kWidePairs - 1) / kWidePairs;
    double first = 0.0, other = 0.0;
    for (size_t b = blocks; b-- > 0;) {
        const size_t q = q0 + b * kWidePairs, count = std::min(kWidePairs, pairs - q);
        if (!reflectPairs<0>(a, stride, m, j, q, v, b == 0 ? first : other, count)) return false;
    }
    norm2 = first;
    return true;
}

}  // namespace

std::vector<double> solveLeastSquares(double* a, size_t m, size_t p) {
    const size_t stride = leastSquaresStride(p);
    std::vector<double> diag(p, 0.0), v(m);
    double norm2 = p > 0 ? columnNorm2(a, stride, m, 0, 0) : 0.0;
    for (size_t j = 0; j < p; ++j) {
        const double norm = std::sqrt(norm2);
        bool reflected = false;
        if (norm != 0.0) {
            const double alpha = a[j * stride + j] > 0.0 ? -norm : norm;
            v[j] = a[j * stride + j] - alpha;
            diag[j] = alpha;
            reflected = reflect(a, stride, m, j, (j + 1) / 2, v.data(), norm2);
        }
        if (!reflected && j + 1 < p) norm2 = columnNorm2(a, stride, m, j + 1, j + 1);
    }
    std::vector<double> c(p, 0.0);
    for (size_t j = p; j-- > 0;) {
        if (std::fabs(diag[j]) < kQrZeroLimit) continue;
        const double* row = a + j * stride;
        double s = row[p];
        for (size_t l = j + 1; l < p; ++l) s -= row[l] * c[l];
        c[j] = s / diag[j];
    }
    return c;
}

}  // namespace zolt

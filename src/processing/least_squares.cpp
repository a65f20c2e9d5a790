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

// One reflection I - 2 v v' / vv of step j applied to the pairs of columns from pair q0 on,
// rows j on, row by row. v[j] is given; the rest of v is column j below row j, copied while the
// dot products run, and vv summed alongside them in row order. The update then sums the squares
// of the updated column j + 1 from row j + 1 on, the next step's norm. R is fixed for the few
// columns of the baselines, so that the sums stay in registers; 0 takes `count` pairs.
template <size_t R>
struct Reflection {
    static constexpr size_t kMax = R == 0 ? kWidePairs : R;
    double* a;
    size_t stride, m, j, q0;
    double* v;
    size_t pairs;
    Pair dot[kMax];
    double vv = 0.0, norm = 0.0;

    Reflection(double* a, size_t stride, size_t m, size_t j, size_t q0, double* v, size_t count = R)
        : a(a), stride(stride), m(m), j(j), q0(q0), v(v), pairs(R == 0 ? count : R) {}

    [[gnu::always_inline]] void start() {
        for (size_t q = 0; q < pairs; ++q) dot[q] = Pair{0.0, 0.0};
        vv = v[j] * v[j];
        const Pair* row = rowPairs(a, stride, j) + q0;
        const Pair vj = {v[j], v[j]};
        for (size_t q = 0; q < pairs; ++q) dot[q] += vj * row[q];
    }
    [[gnu::always_inline]] void add(size_t i) {
        const double x = a[i * stride + j];
        v[i] = x;
        vv += x * x;
        const Pair* row = rowPairs(a, stride, i) + q0;
        const Pair vi = {x, x};
        for (size_t q = 0; q < pairs; ++q) dot[q] += vi * row[q];
    }
    // False when v is zero: nothing to reflect.
    [[gnu::always_inline]] bool scale() {
        if (vv == 0.0) return false;
        const double f = 2.0 / vv;
        const Pair factor = {f, f};
        for (size_t q = 0; q < pairs; ++q) dot[q] *= factor;
        return true;
    }
    [[gnu::always_inline]] void update(size_t i) {
        Pair* row = rowPairs(a, stride, i) + q0;
        const Pair vi = {v[i], v[i]};
        for (size_t q = 0; q < pairs; ++q) row[q] -= dot[q] * vi;
        if (i > j) norm += a[i * stride + j + 1] * a[i * stride + j + 1];
    }
};

template <size_t R>
bool reflectPairs(double* a, size_t stride, size_t m, size_t j, size_t q0, double* v, double& norm2,
                  size_t count = R) {
    Reflection<R> r(a, stride, m, j, q0, v, count);
    r.start();
    for (size_t i = j + 1; i < m; ++i) r.add(i);
    if (!r.scale()) return false;
    for (size_t i = j; i < m; ++i) r.update(i);
    norm2 = r.norm;
    return true;
}

// The same step of two independent systems with the same columns, row by row side by side: each
// system's sums run in its own order, as alone, and the two chains of additions overlap.
template <size_t R>
void reflectTwo(Reflection<R>& x, Reflection<R>& y, bool& xDone, bool& yDone) {
    const size_t common = std::min(x.m, y.m), j = x.j;
    x.start();
    y.start();
    for (size_t i = j + 1; i < common; ++i) {
        x.add(i);
        y.add(i);
    }
    for (size_t i = std::max(common, j + 1); i < x.m; ++i) x.add(i);
    for (size_t i = std::max(common, j + 1); i < y.m; ++i) y.add(i);
    xDone = x.scale();
    yDone = y.scale();
    if (xDone && yDone) {
        for (size_t i = j; i < common; ++i) {
            x.update(i);
            y.update(i);
        }
        for (size_t i = std::max(common, j); i < x.m; ++i) x.update(i);
        for (size_t i = std::max(common, j); i < y.m; ++i) y.update(i);
        return;
    }
    if (xDone)
        for (size_t i = j; i < x.m; ++i) x.update(i);
    if (yDone)
        for (size_t i = j; i < y.m; ++i) y.update(i);
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

// A system on its way through the steps: its matrix, the diagonal of R, the reflector and the
// norm of the column the next step reflects.
struct System {
    double* a;
    size_t m, p, stride;
    std::vector<double> diag, v;
    double norm2 = 0.0;

    System(double* a, size_t m, size_t p)
        : a(a), m(m), p(p), stride(leastSquaresStride(p)), diag(p, 0.0), v(m) {
        norm2 = p > 0 ? columnNorm2(a, stride, m, 0, 0) : 0.0;
    }
    // The reflector of step j; false when the column is zero and there is nothing to reflect.
    bool begin(size_t j) {
        const double norm = std::sqrt(norm2);
        if (norm == 0.0) return false;
        const double alpha = a[j * stride + j] > 0.0 ? -norm : norm;
        v[j] = a[j * stride + j] - alpha;
        diag[j] = alpha;
        return true;
    }
    // After step j: without a reflection the next column's norm is summed afresh.
    void end(size_t j, bool reflected) {
        if (!reflected && j + 1 < p) norm2 = columnNorm2(a, stride, m, j + 1, j + 1);
    }
    std::vector<double> solution() const {
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
};

void step(System& s, size_t j) {
    bool reflected = false;
    if (s.begin(j)) reflected = reflect(s.a, s.stride, s.m, j, (j + 1) / 2, s.v.data(), s.norm2);
    s.end(j, reflected);
}

template <size_t R>
void stepTwo(System& x, System& y, size_t j) {
    const size_t q0 = (j + 1) / 2;
    const bool xBegun = x.begin(j), yBegun = y.begin(j);
    bool xDone = false, yDone = false;
    if (xBegun && yBegun) {
        Reflection<R> rx(x.a, x.stride, x.m, j, q0, x.v.data());
        Reflection<R> ry(y.a, y.stride, y.m, j, q0, y.v.data());
        reflectTwo(rx, ry, xDone, yDone);
        if (xDone) x.norm2 = rx.norm;
        if (yDone) y.norm2 = ry.norm;
    } else {
        if (xBegun) xDone = reflect(x.a, x.stride, x.m, j, q0, x.v.data(), x.norm2);
        if (yBegun) yDone = reflect(y.a, y.stride, y.m, j, q0, y.v.data(), y.norm2);
    }
    x.end(j, xDone);
    y.end(j, yDone);
}

void stepBoth(System& x, System& y, size_t j) {
    switch (x.stride / 2 - (j + 1) / 2) {
        case 1:
            return stepTwo<1>(x, y, j);
        case 2:
            return stepTwo<2>(x, y, j);
        case 3:
            return stepTwo<3>(x, y, j);
        case 4:
            return stepTwo<4>(x, y, j);
        case 5:
            return stepTwo<5>(x, y, j);
        default:
            step(x, j);
            step(y, j);
    }
}

}  // namespace

std::vector<double> solveLeastSquares(double* a, size_t m, size_t p) {
    System s(a, m, p);
    for (size_t j = 0; j < p; ++j) step(s, j);
    return s.solution();
}

void solveLeastSquaresTwo(double* a1, size_t m1, double* a2, size_t m2, size_t p,
                          std::vector<double>& c1, std::vector<double>& c2) {
    System x(a1, m1, p), y(a2, m2, p);
    for (size_t j = 0; j < p; ++j) stepBoth(x, y, j);
    c1 = x.solution();
    c2 = y.solution();
}

}  // namespace zolt

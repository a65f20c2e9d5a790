#include "processing/baseline.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "processing/baseline_detection.h"
#include "processing/phase.h"
#include "processing/whittaker.h"

namespace zolt {
namespace {

bool axisUsable(const SpectrumMatrix& m, int fIndex) {
    return fIndex >= 1 && fIndex <= 3 && m.dims[fIndex].points >= 2;
}

// Householder QR of the m x p column-major matrix a, applied to b as well; then back
// substitution, a coefficient whose diagonal element is below the limit being 0.
std::vector<double> solveLeastSquares(std::vector<double>& a, std::vector<double>& b, size_t m,
                                      size_t p) {
    std::vector<double> diag(p, 0.0), v(m);
    for (size_t j = 0; j < p; ++j) {
        double* col = a.data() + j * m;
        double norm = 0.0;
        for (size_t i = j; i < m; ++i) norm += col[i] * col[i];
        norm = std::sqrt(norm);
        if (norm == 0.0) continue;
        const double alpha = col[j] > 0.0 ? -norm : norm;
        double vv = 0.0;
        for (size_t i = j; i < m; ++i) {
            v[i] = col[i] - (i == j ? alpha : 0.0);
            vv += v[i] * v[i];
        }
        diag[j] = alpha;
        if (vv == 0.0) continue;
        auto reflect = [&](double* x) {
            double s = 0.0;
            for (size_t i = j; i < m; ++i) s += v[i] * x[i];
            s *= 2.0 / vv;
            for (size_t i = j; i < m; ++i) x[i] -= s * v[i];
        };
        for (size_t l = j + 1; l < p; ++l) reflect(a.data() + l * m);
        reflect(b.data());
    }
    std::vector<double> c(p, 0.0);
    for (size_t j = p; j-- > 0;) {
        if (std::fabs(diag[j]) < kQrZeroLimit) continue;
        double s = b[j];
        for (size_t l = j + 1; l < p; ++l) s -= a[l * m + j] * c[l];
        c[j] = s / diag[j];
    }
    return c;
}

// First point and length of the part of a row that takes part.
std::pair<size_t, size_t> rowSpan(const DimensionRecord& axis, const BaseplaneStep& settings) {
    if (!settings.restricted) return {0, axis.points};
    const auto a = static_cast<size_t>(pointOfPpm(axis, settings.fromPpm));
    const auto b = static_cast<size_t>(pointOfPpm(axis, settings.toPpm));
    return {std::min(a, b), std::max(a, b) - std::min(a, b) + 1};
}

std::optional<BaselineMessage> pointCountMessage(const DimensionRecord& axis,
                                                 const BaseplaneStep& settings) {
    const size_t n = rowSpan(axis, settings).second;
    if (settings.function != 0 && polynomialFitPoints(n, settings.order) >= n)
        return BaselineMessage{kInsufficientPointsCaption, kInsufficientPointsText};
    return std::nullopt;
}

void subtractFitted(float* row, size_t n, const std::vector<double>& c) {
    for (size_t i = 0; i < n; ++i)
        row[i] = static_cast<float>(row[i] - evaluatePolynomial(c, normalisedAbscissa(i, n)));
}

}  // namespace

double normalisedAbscissa(size_t i, size_t n) {
    return n < 2 ? 0.0 : 2.0 * static_cast<double>(i) / static_cast<double>(n - 1) - 1.0;
}

double evaluatePolynomial(const std::vector<double>& coefficients, double x) {
    double y = 0.0;
    for (size_t j = coefficients.size(); j-- > 0;) y = y * x + coefficients[j];
    return y;
}

size_t polynomialFitPoints(size_t n, int order) {
    return 64 * static_cast<size_t>(std::max(order, 0)) + 8 + n / 16;
}

std::vector<double> fitBaselinePolynomial(const float* row, const uint8_t* mask, size_t n,
                                          int order) {
    if (order < 0) return {};
    const size_t p = static_cast<size_t>(order) + 1;
    std::vector<size_t> baseline;
    for (size_t i = 0; i < n; ++i)
        if (!mask[i]) baseline.push_back(i);
    if (baseline.size() < p) return {};
    const size_t m = std::min(baseline.size(), polynomialFitPoints(n, order));
    std::vector<double> a(m * p), b(m);
    for (size_t r = 0; r < m; ++r) {
        // Evenly spread over the baseline points when there are more than may enter.
        const size_t i = baseline[r * baseline.size() / m];
        const double x = normalisedAbscissa(i, n);
        double power = 1.0;
        for (size_t j = 0; j < p; ++j, power *= x) a[j * m + r] = power;
        b[r] = row[i];
    }
    return solveLeastSquares(a, b, m, p);
}

bool forEachRealRow(SpectrumMatrix& m, int fIndex, const std::function<void(float*, size_t)>& fn) {
    if (fIndex < 1 || fIndex > 3) return false;
    const size_t total = m.pointCount();
    if (m.re.size() < total) return false;
    // With hypercomplex halves only the first half holds the real parts of every axis.
    const size_t count = hasHypercomplexHalves(m) ? total / 2 : total;
    const AxisWalk w = axisWalk(m, fIndex, count);
    const size_t block = w.n * w.inner;
    if (w.inner == 1) {
        for (size_t o = 0; o < w.outer; ++o) fn(m.re.data() + o * block, w.n);
        return true;
    }
    std::vector<float> buffer;
    try {
        buffer.resize(w.n);
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (size_t o = 0; o < w.outer; ++o) {
        for (size_t j = 0; j < w.inner; ++j) {
            float* base = m.re.data() + o * block + j;
            for (size_t k = 0; k < w.n; ++k) buffer[k] = base[k * w.inner];
            fn(buffer.data(), w.n);
            for (size_t k = 0; k < w.n; ++k) base[k * w.inner] = buffer[k];
        }
    }
    return true;
}

std::optional<BaselineMessage> correctBaseline(SpectrumMatrix& m, int fIndex,
                                               const BaseplaneStep& settings) {
    if (!axisUsable(m, fIndex)) return std::nullopt;
    if (auto message = pointCountMessage(m.dims[fIndex], settings)) return message;
    // Plain names: lambdas cannot capture structured bindings everywhere yet.
    const auto span = rowSpan(m.dims[fIndex], settings);
    const size_t lo = span.first, n = span.second;
    const bool polynomial = settings.function != 0;
    const int order = settings.order;
    const int w = std::clamp<int>(settings.movingAverage, 0, static_cast<int>(n / 2));
    const double lambda = whittakerLambda(n, order);

    std::vector<uint8_t> mask;
    std::vector<float> smooth;
    try {
        mask.resize(n);
        if (!polynomial) smooth.resize(n);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    double carried = 0.0;
    unsigned mode = 0;
    forEachRealRow(m, fIndex, [&](float* row, size_t) {
        float* part = row + lo;
        try {
            detectBaselinePoints(part, n, w, mode, mask.data(), carried);
            mode = autosampling_mode::kCarryThreshold;
            if (polynomial) {
                const auto c = fitBaselinePolynomial(part, mask.data(), n, order);
                if (!c.empty()) subtractFitted(part, n, c);
            } else if (whittakerSmooth(part, mask.data(), n, lambda, smooth.data())) {
                for (size_t i = 0; i < n; ++i) part[i] -= smooth[i];
            }
        } catch (const std::bad_alloc&) {
            // The row stays as it was.
        }
    });
    return std::nullopt;
}

std::optional<BaselineMessage> correctBaseline(SpectrumDocument& doc, int fIndex,
                                               const BaseplaneStep& settings) {
    if (!axisUsable(doc.matrix, fIndex)) return std::nullopt;
    if (auto message = correctBaseline(doc.matrix, fIndex, settings)) return message;
    doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(fIndex), settings});
    return std::nullopt;
}

std::optional<BaselineMessage> correctBaseplane(SpectrumDocument& doc,
                                                const BaseplaneStep& settings) {
    // Every axis is checked before any is touched, so that a refusal leaves the data as they were.
    for (int f = 3; f >= 1; --f)
        if (countsAsDimension(doc.matrix.dims[f]))
            if (auto message = pointCountMessage(doc.matrix.dims[f], settings)) return message;
    for (int f = 3; f >= 1; --f)
        if (countsAsDimension(doc.matrix.dims[f])) correctBaseline(doc, f, settings);
    return std::nullopt;
}

void subtractPolynomial(SpectrumMatrix& m, int fIndex, const PolynomialStep& step) {
    if (step.order < 0 || step.coefficients.size() != static_cast<size_t>(step.order) + 1) return;
    if (!axisUsable(m, fIndex)) return;
    forEachRealRow(m, fIndex,
                   [&](float* row, size_t n) { subtractFitted(row, n, step.coefficients); });
}

void applyPolynomialStep(SpectrumDocument& doc, int fIndex, const PolynomialStep& step) {
    if (step.order < 0 || step.coefficients.size() != static_cast<size_t>(step.order) + 1) return;
    if (!axisUsable(doc.matrix, fIndex)) return;
    subtractPolynomial(doc.matrix, fIndex, step);
    doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(fIndex), step});
}

void correctStraight(SpectrumMatrix& m, int fIndex, double percent) {
    if (!axisUsable(m, fIndex) || !std::isfinite(percent)) return;
    forEachRealRow(m, fIndex, [&](float* row, size_t n) {
        const double share = std::clamp(percent, 0.0, 50.0) / 100.0;
        const size_t q = std::clamp<size_t>(static_cast<size_t>(n * share), 1, n / 2);
        double left = 0.0, right = 0.0;
        for (size_t i = 0; i < q; ++i) {
            left += row[i];
            right += row[n - 1 - i];
        }
        left /= q;
        right /= q;
        const double x1 = 0.5 * (q - 1), x2 = (n - 1) - 0.5 * (q - 1);
        const double slope = (right - left) / (x2 - x1);
        for (size_t i = 0; i < n; ++i)
            row[i] = static_cast<float>(row[i] - (left + slope * (i - x1)));
    });
}

}  // namespace zolt

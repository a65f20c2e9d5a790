#include "processing/baseline.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "processing/baseline_detection.h"
#include "processing/least_squares.h"
#include "processing/phase.h"
#include "processing/selection.h"
#include "processing/whittaker.h"

namespace zolt {
namespace {

// Bound on the refits of the polynomial baseline; each only drops points, and real spectra
// settle well within it.
constexpr int kMaxBaselineRefits = 50;

bool axisUsable(const SpectrumMatrix& m, int fIndex) {
    return fIndex >= 1 && fIndex <= 3 && m.dims[fIndex].points >= 2;
}

// At most m of the points, evenly spread over the list.
std::vector<size_t> evenlySpread(const std::vector<size_t>& points, size_t m) {
    if (points.size() <= m) return points;
    std::vector<size_t> chosen(m);
    for (size_t r = 0; r < m; ++r) chosen[r] = points[r * points.size() / m];
    return chosen;
}

// normalisedAbscissa of every point of a row of n, worked out once for all the rows.
std::vector<double> abscissae(size_t n) {
    std::vector<double> x(n);
    for (size_t i = 0; i < n; ++i) x[i] = normalisedAbscissa(i, n);
    return x;
}

// Least-squares polynomial with p coefficients through the given points of row. The matrix
// goes into `a`, kept by the caller from fit to fit: every element is written, so a buffer
// that has grown once is neither cleared nor grown again.
std::vector<double> fitThrough(const float* row, const std::vector<size_t>& points,
                               const double* abscissa, size_t p, std::vector<double>& a) {
    const size_t m = points.size(), stride = leastSquaresStride(p);
    if (a.size() < m * stride) a.resize(m * stride);
    for (size_t r = 0; r < m; ++r) {
        double* out = a.data() + r * stride;
        const double x = abscissa[points[r]];
        double power = 1.0;
        for (size_t j = 0; j < p; ++j, power *= x) out[j] = power;
        out[p] = row[points[r]];
        for (size_t j = p + 1; j < stride; ++j) out[j] = 0.0;
    }
    return solveLeastSquares(a.data(), m, p);
}

// The points that lie at most three standard deviations of the noise above the curve. The
// noise is measured robustly, by the median distance to the curve, so that the broad signal
// the fit has to get rid of does not widen the limit.
std::vector<size_t> pointsNotAboveCurve(const float* row, const std::vector<size_t>& points,
                                        const double* abscissa, const std::vector<double>& c) {
    std::vector<double> residual(points.size()), distance(points.size());
    for (size_t r = 0; r < points.size(); ++r) {
        residual[r] = row[points[r]] - evaluatePolynomial(c, abscissa[points[r]]);
        distance[r] = std::fabs(residual[r]);
    }
    const double median = selectNth(distance.data(), distance.size(), distance.size() / 2);
    const double limit = 3.0 * 1.4826 * median;
    std::vector<size_t> kept;
    for (size_t r = 0; r < points.size(); ++r)
        if (residual[r] <= limit) kept.push_back(points[r]);
    return kept;
}

// First point and length of the part of a row that takes part.
std::pair<size_t, size_t> rowSpan(const DimensionRecord& axis, const BaseplaneStep& settings) {
    if (!settings.restricted) return {0, axis.points};
    const auto a = static_cast<size_t>(pointOfPpm(axis, settings.fromPpm));
    const auto b = static_cast<size_t>(pointOfPpm(axis, settings.toPpm));
    return {std::min(a, b), std::max(a, b) - std::min(a, b) + 1};
}

std::optional<Message> pointCountMessage(const DimensionRecord& axis,
                                         const BaseplaneStep& settings) {
    const size_t n = rowSpan(axis, settings).second;
    if (settings.function != 0 && polynomialFitPoints(n, settings.order) >= n)
        return Message{kInsufficientPointsCaption, kInsufficientPointsText};
    return std::nullopt;
}

void subtractFitted(float* row, size_t n, const double* abscissa, const std::vector<double>& c) {
    size_t i = 0;
#if defined(__SSE2__)
    // Two points per instruction: the same Horner steps, difference and rounding per lane.
    for (; i + 2 <= n; i += 2) {
        const __m128d x = _mm_loadu_pd(abscissa + i);
        __m128d y = _mm_setzero_pd();
        for (size_t j = c.size(); j-- > 0;) y = _mm_add_pd(_mm_mul_pd(y, x), _mm_set1_pd(c[j]));
        const __m128d data = _mm_set_pd(row[i + 1], row[i]);
        float out[4];
        _mm_storeu_ps(out, _mm_cvtpd_ps(_mm_sub_pd(data, y)));
        row[i] = out[0];
        row[i + 1] = out[1];
    }
#endif
    for (; i < n; ++i) row[i] = static_cast<float>(row[i] - evaluatePolynomial(c, abscissa[i]));
}

std::vector<double> fitPolynomial(const float* row, const uint8_t* mask, size_t n, int order,
                                  const double* abscissa, std::vector<double>& scratch) {
    if (order < 0) return {};
    const size_t p = static_cast<size_t>(order) + 1;
    std::vector<size_t> baseline;
    baseline.reserve(n);
    for (size_t i = 0; i < n; ++i)
        if (!mask[i]) baseline.push_back(i);
    if (baseline.size() < p) return {};
    auto chosen = evenlySpread(baseline, polynomialFitPoints(n, order));
    auto c = fitThrough(row, chosen, abscissa, p, scratch);
    // The detector sees lines, not humps: a broad signal (an exchange-broadened OH, a probe
    // background) passes for baseline and would bend the curve into itself. Fit points more
    // than three noise deviations above the curve are dropped and the fit repeated.
    for (int round = 0; round < kMaxBaselineRefits; ++round) {
        auto kept = pointsNotAboveCurve(row, chosen, abscissa, c);
        if (kept.size() == chosen.size() || kept.size() < p) break;
        chosen = std::move(kept);
        c = fitThrough(row, chosen, abscissa, p, scratch);
    }
    return c;
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
    std::vector<double> scratch;
    return fitPolynomial(row, mask, n, order, abscissae(n).data(), scratch);
}

namespace {

// The baseline points of every row, in order. Rows are read a few at a time: their moving sums
// run side by side; the marking then goes row after row, carrying its threshold. A row whose
// detection runs out of memory stays undetected.
void detectRows(const SpectrumMatrix& m, int fIndex, size_t lo, size_t n, int w,
                std::vector<uint8_t>& masks, std::vector<uint8_t>& detected) {
    const size_t rows = detected.size();
    std::vector<float> batch;
    std::vector<double> d;
    try {
        batch.resize(kDifferenceRows * n);
        d.resize(hasDifferences(n, w) ? kDifferenceRows * n : 0);
    } catch (const std::bad_alloc&) {
        return;
    }
    double carried = 0.0;
    unsigned mode = 0;
    size_t index = 0, held = 0;
    const auto mark = [&] {
        const float* rowsHeld[kDifferenceRows];
        for (size_t k = 0; k < held; ++k) rowsHeld[k] = batch.data() + k * n;
        movingDifferences(rowsHeld, held, n, w, d.data());
        for (size_t k = 0; k < held; ++k, ++index) {
            try {
                markBaselinePoints(d.data() + k * n, n, w, mode, masks.data() + index * n, carried);
                mode = autosampling_mode::kCarryThreshold;
                detected[index] = 1;
            } catch (const std::bad_alloc&) {
                // The row stays as it was.
            }
        }
        held = 0;
    };
    forEachRealRowRead(m, fIndex, [&](const float* row, size_t) {
        if (index + held >= rows) return;
        std::copy_n(row + lo, n, batch.data() + held * n);
        if (++held == kDifferenceRows) mark();
    });
    if (held) mark();
}

}  // namespace

std::optional<Message> correctBaseline(SpectrumMatrix& m, int fIndex,
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

    // The autosampling carries its threshold from row to row, so the baseline points are found
    // row after row, in order; the fits then depend on their own row only and share the threads.
    const size_t rows = realRowCount(m, fIndex);
    std::vector<uint8_t> masks, detected;
    std::vector<double> abscissa;
    try {
        masks.resize(rows * n);
        detected.resize(rows);
        if (polynomial) abscissa = abscissae(n);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    detectRows(m, fIndex, lo, n, w, masks, detected);
    forEachRealRowInParallel(m, fIndex, [&](float* row, size_t, size_t r) {
        if (r >= rows || !detected[r]) return;
        float* part = row + lo;
        const uint8_t* mask = masks.data() + r * n;
        try {
            if (polynomial) {
                std::vector<double> scratch;
                const auto c = fitPolynomial(part, mask, n, order, abscissa.data(), scratch);
                if (!c.empty()) subtractFitted(part, n, abscissa.data(), c);
            } else {
                std::vector<float> smooth(n);
                if (whittakerSmooth(part, mask, n, lambda, smooth.data()))
                    for (size_t i = 0; i < n; ++i) part[i] -= smooth[i];
            }
        } catch (const std::bad_alloc&) {
            // The row stays as it was.
        }
    });
    return std::nullopt;
}

std::optional<Message> correctBaseline(SpectrumDocument& doc, int fIndex,
                                       const BaseplaneStep& settings) {
    if (!axisUsable(doc.matrix, fIndex)) return std::nullopt;
    if (auto message = correctBaseline(doc.matrix, fIndex, settings)) return message;
    doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(fIndex), settings});
    return std::nullopt;
}

std::optional<Message> correctBaseplane(SpectrumDocument& doc, const BaseplaneStep& settings) {
    // An axis too short for the polynomial (the few rows of an arrayed series, a short indirect
    // axis) is left as it is; the others are corrected. Only when no axis is long enough is the
    // correction refused, before anything is touched.
    std::optional<Message> refusal;
    bool any = false;
    for (int f = 3; f >= 1; --f) {
        if (!countsAsDimension(doc.matrix.dims[f])) continue;
        if (auto message = pointCountMessage(doc.matrix.dims[f], settings))
            refusal = refusal ? refusal : message;
        else
            any = true;
    }
    if (!any) return refusal;
    for (int f = 3; f >= 1; --f)
        if (countsAsDimension(doc.matrix.dims[f]) &&
            !pointCountMessage(doc.matrix.dims[f], settings))
            correctBaseline(doc, f, settings);
    return std::nullopt;
}

void subtractPolynomial(SpectrumMatrix& m, int fIndex, const PolynomialStep& step) {
    if (step.order < 0 || step.coefficients.size() != static_cast<size_t>(step.order) + 1) return;
    if (!axisUsable(m, fIndex)) return;
    std::vector<double> abscissa;
    forEachRealRow(m, fIndex, [&](float* row, size_t n) {
        if (abscissa.size() != n) abscissa = abscissae(n);
        subtractFitted(row, n, abscissa.data(), step.coefficients);
    });
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

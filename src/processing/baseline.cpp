#include "processing/baseline.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "processing/baseline_detection.h"
#include "processing/carried_detection.h"
#include "processing/least_squares.h"
#include "processing/phase.h"
#include "processing/selection.h"
#include "processing/vector_kernels.h"
#include "processing/whittaker.h"

namespace zolt {
namespace {

// Bound on the refits of the polynomial baseline; each only drops points, and real spectra
// settle well within it.
constexpr int kMaxBaselineRefits = 50;

bool axisUsable(const SpectrumMatrix& m, int fIndex) {
    return fIndex >= 1 && fIndex <= 3 && m.dims[fIndex].points >= 2;
}

// What the fits along one axis share: the abscissa of every point and, p to a point, its
// powers x^0 ... x^(p-1), multiplied out once as each fit would multiply them.
struct FitAxis {
    size_t n = 0, p = 0;
    std::vector<double> x, powers;
};

FitAxis fitAxis(size_t n, int order) {
    FitAxis axis;
    axis.n = n;
    axis.p = static_cast<size_t>(std::max(order, 0)) + 1;
    axis.x.resize(n);
    axis.powers.resize(n * axis.p);
    for (size_t i = 0; i < n; ++i) {
        const double x = normalisedAbscissa(i, n);
        axis.x[i] = x;
        double power = 1.0;
        for (size_t j = 0; j < axis.p; ++j, power *= x) axis.powers[i * axis.p + j] = power;
    }
    return axis;
}

// A thread's buffers, kept from row to row: every fit only overwrites them.
struct FitScratch {
    std::vector<size_t> baseline, chosen, kept;
    std::vector<double> residual, distance, a;
};

// Least-squares polynomial through the chosen points of row. Every element of the matrix is
// written, so a buffer that has grown once is neither cleared nor grown again.
// The least-squares matrix of the chosen points of row, into s.a; returns its rows.
size_t fillMatrix(const float* row, const FitAxis& axis, FitScratch& s) {
    const size_t m = s.chosen.size(), p = axis.p, stride = leastSquaresStride(p);
    if (s.a.size() < m * stride) s.a.resize(m * stride);
    for (size_t r = 0; r < m; ++r) {
        double* out = s.a.data() + r * stride;
        const double* powers = axis.powers.data() + s.chosen[r] * p;
        for (size_t j = 0; j < p; ++j) out[j] = powers[j];
        out[p] = row[s.chosen[r]];
        for (size_t j = p + 1; j < stride; ++j) out[j] = 0.0;
    }
    return m;
}

std::vector<double> fitThrough(const float* row, const FitAxis& axis, FitScratch& s) {
    const size_t m = fillMatrix(row, axis, s);  // may move s.a
    return solveLeastSquares(s.a.data(), m, axis.p);
}

// Keeps in s.kept the chosen points that lie at most three standard deviations of the noise
// above the curve. The noise is measured robustly, by the median distance to the curve, so that
// the broad signal the fit has to get rid of does not widen the limit.
void keepPointsNotAboveCurve(const float* row, const FitAxis& axis, const std::vector<double>& c,
                             FitScratch& s) {
    const size_t m = s.chosen.size();
    s.residual.resize(m);
    s.distance.resize(m);
    size_t r = 0;
#if defined(__SSE2__)
    // Two points per instruction: the same Horner steps and difference per lane.
    const __m128d magnitude = _mm_castsi128_pd(_mm_set1_epi64x(0x7fffffffffffffff));
    for (; r + 2 <= m; r += 2) {
        const size_t i0 = s.chosen[r], i1 = s.chosen[r + 1];
        const __m128d x = _mm_set_pd(axis.x[i1], axis.x[i0]);
        __m128d y = _mm_setzero_pd();
        for (size_t j = c.size(); j-- > 0;) y = _mm_add_pd(_mm_mul_pd(y, x), _mm_set1_pd(c[j]));
        const __m128d residual = _mm_sub_pd(_mm_set_pd(row[i1], row[i0]), y);
        _mm_storeu_pd(s.residual.data() + r, residual);
        _mm_storeu_pd(s.distance.data() + r, _mm_and_pd(residual, magnitude));
    }
#endif
    for (; r < m; ++r) {
        s.residual[r] = row[s.chosen[r]] - evaluatePolynomial(c, axis.x[s.chosen[r]]);
        s.distance[r] = std::fabs(s.residual[r]);
    }
    const double median = selectNth(s.distance.data(), m, m / 2);
    const double limit = 3.0 * 1.4826 * median;
    s.kept.resize(m);
    size_t kept = 0;
    for (r = 0; r < m; ++r) {
        s.kept[kept] = s.chosen[r];
        kept += s.residual[r] <= limit;
    }
    s.kept.resize(kept);
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

#if defined(__x86_64__) && defined(__GNUC__)
// Eight points per instruction, where the processor has them: the same Horner steps, difference
// and rounding per lane as below. The products are hidden from the optimiser so that none is
// fused into its sum. Returns how many points it did.
[[gnu::target("avx512f")]] size_t subtractFittedAvx512(float* row, size_t n, const double* abscissa,
                                                       const std::vector<double>& c) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m512d x = _mm512_loadu_pd(abscissa + i);
        __m512d y = _mm512_setzero_pd();
        for (size_t j = c.size(); j-- > 0;) {
            __m512d product = _mm512_mul_pd(y, x);
            asm("" : "+v"(product));
            y = _mm512_add_pd(product, _mm512_set1_pd(c[j]));
        }
        const __m512d data = _mm512_maskz_cvtps_pd(0xFF, _mm256_loadu_ps(row + i));
        _mm256_storeu_ps(row + i, _mm512_maskz_cvtpd_ps(0xFF, _mm512_sub_pd(data, y)));
    }
    return i;
}
#endif

void subtractFitted(float* row, size_t n, const double* abscissa, const std::vector<double>& c) {
    size_t i = 0;
#if defined(__x86_64__) && defined(__GNUC__)
    if (vectorKernels() == VectorKernels::Avx512) i = subtractFittedAvx512(row, n, abscissa, c);
#endif
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

// The first fit's points: the baseline points in order, found without a branch on each mark,
// at most polynomialFitPoints of them evenly spread over the list. False when there are fewer
// than the coefficients.
bool chooseFitPoints(const uint8_t* mask, const FitAxis& axis, FitScratch& s) {
    const size_t n = axis.n;
    s.baseline.resize(n);
    size_t count = 0;
    for (size_t i = 0; i < n; ++i) {
        s.baseline[count] = i;
        count += mask[i] == 0;
    }
    if (count < axis.p) return false;
    const size_t m = std::min(count, polynomialFitPoints(n, static_cast<int>(axis.p) - 1));
    s.chosen.resize(m);
    for (size_t r = 0; r < m; ++r) s.chosen[r] = s.baseline[r * count / m];
    return true;
}

// After the fit c of refit `round`: whether another is due, its points then in s.chosen. The
// detector sees lines, not humps: a broad signal (an exchange-broadened OH, a probe background)
// passes for baseline and would bend the curve into itself. Fit points more than three noise
// deviations above the curve are dropped and the fit repeated.
bool refitDue(const float* row, const FitAxis& axis, const std::vector<double>& c, FitScratch& s,
              int& round) {
    if (round >= kMaxBaselineRefits) return false;
    keepPointsNotAboveCurve(row, axis, c, s);
    if (s.kept.size() == s.chosen.size() || s.kept.size() < axis.p) return false;
    s.chosen.swap(s.kept);
    ++round;
    return true;
}

std::vector<double> fitPolynomial(const float* row, const uint8_t* mask, const FitAxis& axis,
                                  FitScratch& s) {
    if (!chooseFitPoints(mask, axis, s)) return {};
    int round = 0;
    auto c = fitThrough(row, axis, s);
    while (refitDue(row, axis, c, s, round)) c = fitThrough(row, axis, s);
    return c;
}

// fitPolynomial of two rows, their fits solved side by side while both have one due.
void fitPolynomialTwo(const float* const row[2], const uint8_t* const mask[2], const FitAxis& axis,
                      FitScratch s[2], std::vector<double> c[2]) {
    bool due[2];
    int round[2] = {0, 0};
    for (int k = 0; k < 2; ++k) {
        due[k] = chooseFitPoints(mask[k], axis, s[k]);
        c[k].clear();
    }
    while (due[0] || due[1]) {
        if (due[0] && due[1]) {
            const size_t m0 = fillMatrix(row[0], axis, s[0]), m1 = fillMatrix(row[1], axis, s[1]);
            solveLeastSquaresTwo(s[0].a.data(), m0, s[1].a.data(), m1, axis.p, c[0], c[1]);
        } else {
            const int k = due[0] ? 0 : 1;
            c[k] = fitThrough(row[k], axis, s[k]);
        }
        for (int k = 0; k < 2; ++k)
            if (due[k]) due[k] = refitDue(row[k], axis, c[k], s[k], round[k]);
    }
}

// Fits the rows two at a time, their least-squares sums side by side, and subtracts each fit.
// A pair that runs out of memory stays as it was.
void subtractFittedPolynomials(float* const* rows, const uint8_t* const* masks, size_t count,
                               const FitAxis& axis) {
    thread_local FitScratch scratch[2];
    std::vector<double> c[2];
    for (size_t k = 0; k < count; k += 2) {
        const size_t here = std::min<size_t>(2, count - k);
        try {
            if (here == 2)
                fitPolynomialTwo(rows + k, masks + k, axis, scratch, c);
            else
                c[0] = fitPolynomial(rows[k], masks[k], axis, scratch[0]);
        } catch (const std::bad_alloc&) {
            continue;
        }
        for (size_t j = 0; j < here; ++j)
            if (!c[j].empty()) subtractFitted(rows[k + j], axis.n, axis.x.data(), c[j]);
    }
}

void subtractSmoothed(float* const* rows, const uint8_t* const* masks, size_t count, size_t n,
                      double lambda) {
    for (size_t k = 0; k < count; ++k) {
        try {
            std::vector<float> smooth(n);
            if (whittakerSmooth(rows[k], masks[k], n, lambda, smooth.data()))
                for (size_t i = 0; i < n; ++i) rows[k][i] -= smooth[i];
        } catch (const std::bad_alloc&) {
            // The row stays as it was.
        }
    }
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
    FitScratch scratch;
    return fitPolynomial(row, mask, fitAxis(n, order), scratch);
}

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

    // The autosampling carries its threshold from row to row, so the baseline points are those of
    // one run through the rows in order; the fits then depend on their own row only.
    const size_t rows = realRowCount(m, fIndex);
    std::vector<uint8_t> masks, detected;
    FitAxis axis;
    try {
        masks.resize(rows * n);
        detected.resize(rows);
        if (polynomial) axis = fitAxis(n, order);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    detectBaselineRows(m, fIndex, lo, n, w, masks, detected);
    forEachRealRowGroupInParallel(m, fIndex,
                                  [&](float* const* group, size_t count, size_t, size_t first) {
                                      float* part[kRowGroup];
                                      const uint8_t* mask[kRowGroup];
                                      size_t marked = 0;
                                      for (size_t k = 0; k < count; ++k) {
                                          const size_t r = first + k;
                                          if (r >= rows || !detected[r]) continue;
                                          part[marked] = group[k] + lo;
                                          mask[marked++] = masks.data() + r * n;
                                      }
                                      if (polynomial)
                                          subtractFittedPolynomials(part, mask, marked, axis);
                                      else
                                          subtractSmoothed(part, mask, marked, n, lambda);
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
        if (abscissa.size() != n) abscissa = fitAxis(n, 0).x;
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

// The processing log text.
#include "document/processing_log.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zolt {

namespace {

// "%0.<decimals>f" or "%0.<decimals>e" of a value.
struct Number {
    double value;
    int decimals;
    std::chars_format format = std::chars_format::fixed;
};
Number fixed(double v, int decimals) {
    return {v, decimals};
}
Number sci(double v, int decimals) {
    return {v, decimals, std::chars_format::scientific};
}

// Numbers are formatted as in the C locale whatever the user's locale, so the log reads the
// same everywhere.
class LogText {
public:
    LogText& operator<<(Number n) {
        char buf[400];
        text_.append(buf, std::to_chars(buf, buf + sizeof buf, n.value, n.format, n.decimals).ptr);
        return *this;
    }
    LogText& operator<<(const char* s) {
        text_ += s;
        return *this;
    }
    LogText& operator<<(int64_t i) {
        text_ += std::to_string(i);
        return *this;
    }
    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

int64_t wholeNumber(double v) {
    return std::isfinite(v) ? static_cast<int64_t>(std::clamp(v, -2147483648.0, 2147483647.0)) : 0;
}

template <typename T>
const T* stepOf(const std::vector<ProcessingStep>& steps, int dimension) {
    for (const ProcessingStep& s : steps)
        if (s.dimension == dimension)
            if (const T* data = std::get_if<T>(&s.data)) return data;
    return nullptr;
}

const char* predictionMethod(uint8_t method) {
    static const char* const kNames[] = {"Fast", "SVD", "Zhu-Bax", "Burg"};
    return method < 4 ? kNames[method] : kNames[0];
}

void suppression(LogText& log, const HighPassFilterStep& s, int d) {
    log << "\r\n\r\nSignal(s) Suppressed along f" << int64_t{d} << " at ppm = ";
    for (float f : s.frequencies) log << fixed(f, 3) << " ; ";
    log << "\r\nselectivity = " << int64_t{s.selectivity};
}

void prediction(LogText& log, const LinearPredictionStep& s, int d) {
    log << "\r\n\r\nLinear Prediction (" << predictionMethod(s.method) << ") along f" << int64_t{d};
    for (size_t k = 0; k < 3; ++k) {
        if (s.coefficients[k] == 0) continue;
        log << "\r\npoints from no. " << int64_t{s.firstPredicted[k]} << " to no. "
            << int64_t{s.lastPredicted[k]} << " predicted using " << int64_t{s.equations[k]}
            << " exp. points and assuming " << int64_t{s.coefficients[k]} << " signals";
    }
}

void transform(LogText& log, const FourierTransformStep& s, int d) {
    using namespace ft_flags;
    if ((s.flags & kApplyWeights) && (s.flags & kAnyWeighting)) {
        log << "\r\n\r\nWeights along f" << int64_t{d};
        const auto& w = s.weights;
        if (s.flags & kExponential)
            log << "\r\nexponential broadening = " << fixed(w[kWeightExponential], 2) << " Hz";
        if (s.flags & kGaussian)
            log << "\r\ngaussian multiplication = " << fixed(w[kWeightGaussian], 2) << " Hz";
        if (s.flags & kSineBell)
            log << "\r\nsine bell shifted by " << fixed(w[kWeightSineBell], 1) << " degrees";
        if (s.flags & kSquaredSineBell)
            log << "\r\nsquared sine bell shifted by " << fixed(w[kWeightSquaredSine], 1)
                << " degrees";
        if (s.flags & kTruncation) log << "\r\ncut after " << fixed(w[kWeightTruncation], 1) << "%";
        if (s.flags & kFirstPoint)
            log << "\r\nfirst point multiplied by " << fixed(w[kWeightFirstPoint], 1);
    }
    if (s.maxIstIterations != 0)
        log << "\r\n\r\niterative soft thresholding with up to " << int64_t{s.maxIstIterations}
            << " iterations";
    log << "\r\n\r\nFourier Transform along f" << int64_t{d} << " using " << int64_t{s.ftSize}
        << " points\r\n";
    if (s.shuffling != Shuffling::None)
        log << "["
            << (s.shuffling == Shuffling::PhaseSensitive ? "phase sensitive" : "echo-antiecho")
            << "]\r\n";
    if (s.flags & kQuadrature) log << "quadrature detection; ";
    if (s.flags & kConjugate) log << "conjugation; ";
    if (s.flags & kRealFt) log << "real FT; ";
    if (s.flags & kLinearPrediction) log << "LP filling; ";
    if (s.flags & kMagnitude) log << "magnitude representation; ";
}

void baseline(LogText& log, const ProcessingStep& step, const PointCountOf& pointCount) {
    const int d = step.dimension;
    if (const auto* b = std::get_if<BaseplaneStep>(&step.data)) {
        if (b->function != 0) {
            log << "\r\n\r\nAutomatic Polynomial Baseline Correction along f" << int64_t{d}
                << " of order " << int64_t{b->order} << " and moving average filter "
                << int64_t{b->movingAverage};
        } else {
            // lambda = (4 N) ^ ((9 - k) / 9): k = 9 gives 1, k = 0 gives 4 N.
            const double n = std::max<double>(pointCount ? pointCount(d) : 1, 1.0);
            const double lambda = std::exp(std::log(4.0 * n) * (9 - b->order) / 9.0);
            log << "\r\n\r\nBaseline Correction along f" << int64_t{d}
                << " by a Whittaker Smoother with lambda = " << fixed(lambda, 0)
                << " and moving average filter = " << int64_t{b->movingAverage};
        }
        if (b->restricted) {
            log << "\r\nrestricted from " << fixed(b->fromPpm, 3) << " to " << fixed(b->toPpm, 3)
                << " ppm";
        }
    } else if (const auto* p = std::get_if<PolynomialStep>(&step.data)) {
        log << "\r\n\r\nPolynomial Baseline Correction with the following coefficients :\r\n";
        for (double c : p->coefficients) log << fixed(c, 3) << " ; ";
    }
}

void dosy(LogText& log, const std::vector<ProcessingStep>& steps, uint32_t doneMask) {
    const auto* mono = stepOf<MonoExponentialFitStep>(steps, 1);
    if (mono && (doneMask & done_mask::kDosyMonoExponential)) {
        log << "\r\n\r\nDOSY monoexponential model:\r\nD from " << sci(mono->minD, 3) << " to "
            << sci(mono->maxD, 3) << "\r\nfrom " << fixed(mono->minPpm, 3) << " to "
            << fixed(mono->maxPpm, 3)
            << " ppm\r\nacceptable signal / noise = " << fixed(mono->signalToNoise, 3)
            << "\r\nrows = " << int64_t{mono->points} << "; smoothing = " << int64_t{mono->smooth}
            << "; Max width = " << int64_t{mono->maxSigma} << " points";
    }
    if (const auto* qr = stepOf<QrDosyStep>(steps, 1)) {
        log << "\r\n\r\nDOSY multi-exponential decomposition:\r\nD = ";
        for (float c : qr->diffusion) log << sci(c, 5) << " ; ";
        log << "\r\nfrom " << fixed(qr->minPpm, 3) << " to " << fixed(qr->maxPpm, 3) << " ppm";
        // The ratio is shown as a whole number here.
        log << "\r\nacceptable signal / noise = " << wholeNumber(qr->signalToNoise)
            << "\r\nsmoothing = " << int64_t{qr->smooth} << "\r\nIgnore components under "
            << int64_t{qr->overPercent} << "% of the max";
    }
}

}  // namespace

std::string processingLog(const std::vector<ProcessingStep>& steps, uint32_t doneMask,
                          const PointCountOf& pointCount) {
    LogText log;
    log << "====  Processing Parameters  ====";
    for (int d = 3; d >= 1; --d) {
        if (doneMask & done_mask::suppressed(d))
            if (const auto* s = stepOf<HighPassFilterStep>(steps, d)) suppression(log, *s, d);
        if (doneMask & done_mask::predicted(d))
            if (const auto* s = stepOf<LinearPredictionStep>(steps, d)) prediction(log, *s, d);
        if (doneMask & done_mask::transformed(d))
            if (const auto* s = stepOf<FourierTransformStep>(steps, d)) transform(log, *s, d);
    }
    for (int d = 1; d <= 3; ++d)
        for (const ProcessingStep& s : steps)
            if (s.dimension == d) baseline(log, s, pointCount);
    if (doneMask & done_mask::kSymmetrizeSquare)
        log << "\r\n\r\nsymmetrization of the square matrix";
    if (doneMask & done_mask::kT1NoiseRemoval) log << "\r\n\r\nremoval of t-1 noise";
    if (doneMask & done_mask::kTilting) log << "\r\n\r\ntilting";
    if (doneMask & done_mask::kSymmetrizeRectangular)
        log << "\r\n\r\nsymmetrization of the rectangular matrix";
    dosy(log, steps, doneMask);
    if (doneMask & done_mask::kDirectCovariance) log << "\r\n\r\ndirect covariance";
    if (doneMask & done_mask::kIndirectCovariance) log << "\r\n\r\nindirect covariance";
    log << "\r\n\r\n\r\n";
    return log.take();
}

}  // namespace zolt

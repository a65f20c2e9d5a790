#include "processing/ft_defaults.h"

#include <cmath>
#include <numbers>

#include "processing/apodization.h"
#include "processing/ft_step.h"

namespace zolt {

namespace {

using namespace ft_flags;

// With the +1 kernel of our FFT, quadrature data put frequencies above the carrier on the left
// (high ppm) as they come. Real samples (single channel, sequential, TPPI) run from the low
// edge upwards; negating every second sample (the conjugate flag seen by a real FT) turns the
// axis round.
uint16_t directFlags(uint8_t code) {
    switch (code) {
        case acquisition_mode::kQf:
        case acquisition_mode::kQseq:
            return kRealFt | kConjugate;
        default:
            return kQuadrature;
    }
}

struct IndirectMode {
    Shuffling shuffling;
    uint16_t flags;
};

IndirectMode indirectMode(uint8_t code) {
    switch (code) {
        case indirect_mode::kQseq:
        case indirect_mode::kTppi:
            return {Shuffling::PhaseSensitive, kRealFt | kConjugate | kHypercomplex};
        case indirect_mode::kStates:
        case indirect_mode::kVarianStates:
        case indirect_mode::kVarianOuterStates:
            return {Shuffling::PhaseSensitive, kQuadrature | kHypercomplex};
        case indirect_mode::kStatesTppi:  // the TPPI signs already centre the carrier
            return {Shuffling::PhaseSensitive, kHypercomplex};
        case indirect_mode::kEchoAntiEcho:
        case indirect_mode::kVarianCoefficients:
            return {Shuffling::EchoAntiEcho, kQuadrature | kHypercomplex};
        default:
            // QF and undefined: one phase-modulated signal (gradient-selected N-type), whose
            // sense is opposite to the direct axis; shown in magnitude.
            return {Shuffling::None, kQuadrature | kConjugate | kMagnitude};
    }
}

// Vendor window codes (Bruker WDW).
enum VendorWindow : int {
    kNoWindow = 0,
    kExponentialWindow = 1,
    kGaussianWindow = 2,
    kSineWindow = 3,
    kSquaredSineWindow = 4,
};

// The bells of a vendor start at pi / divisor; a divisor below 2 means a pure sine.
float sineShiftDegrees(double divisor) {
    return divisor >= 2.0 ? static_cast<float>(180.0 / divisor) : 0.0f;
}

// A Lorentz-to-Gauss window exp(-a t - b t^2) with a = pi LB (LB < 0) and the maximum at
// GB * AQ, so b = -a / (2 GB AQ). Our gaussian exp(-sigma k^2), sigma = (pi gb / 2 SW)^2 / ln 2,
// with t = k / SW gives gb = 2/pi sqrt(b ln 2).
void setGaussian(FourierTransformStep& step, const VendorProcessing& v, double complexPoints,
                 double swHz) {
    step.flags |= ft_flags::kExponential;
    step.weights[kWeightExponential] = static_cast<float>(v.lineBroadening);
    const double aq = swHz > 0.0 ? complexPoints / swHz : 0.0;
    if (!(v.lineBroadening < 0.0) || !(v.gaussianFraction > 0.0) || !(aq > 0.0)) return;
    const double b = -std::numbers::pi * v.lineBroadening / (2.0 * v.gaussianFraction * aq);
    step.flags |= ft_flags::kGaussian;
    step.weights[kWeightGaussian] =
        static_cast<float>(2.0 / std::numbers::pi * std::sqrt(b * std::log(2.0)));
}

// The vendor's window and FT size over the step's defaults; a size outside 32 ... 1 M and a
// window we have no counterpart for keep the defaults.
void applyVendorProcessing(FourierTransformStep& step, const VendorProcessing& v,
                           double complexPoints, double swHz) {
    if (!v.present) return;
    if (v.ftSize >= static_cast<int>(kMinFtSize) && v.ftSize <= static_cast<int>(kMaxFtSize))
        step.ftSize = roundFtSize(static_cast<uint64_t>(v.ftSize));
    switch (v.window) {
        case kExponentialWindow:
            step.flags |= ft_flags::kExponential;
            step.weights[kWeightExponential] = static_cast<float>(v.lineBroadening);
            break;
        case kGaussianWindow:
            setGaussian(step, v, complexPoints, swHz);
            break;
        case kSineWindow:
            step.flags |= ft_flags::kSineBell;
            step.weights[kWeightSineBell] = sineShiftDegrees(v.sineBellDivisor);
            break;
        case kSquaredSineWindow:
            step.flags |= ft_flags::kSquaredSineBell;
            step.weights[kWeightSquaredSine] = sineShiftDegrees(v.sineBellDivisor);
            break;
        default:
            break;
    }
    clampFourierTransformStep(step);
}

}  // namespace

std::optional<FourierTransformStep> defaultFourierTransformStep(const SpectrumSource& source,
                                                                int fIndex,
                                                                const VendorProcessing* vendor) {
    if (fIndex < 1 || fIndex > 3) return std::nullopt;
    const DimensionRecord& axis = source.dims[fIndex];
    if (!countsAsDimension(axis)) return std::nullopt;
    FourierTransformStep step;
    const uint8_t code = source.ftPreferences[fIndex];
    const uint64_t points = axis.pointsAfterNus ? axis.pointsAfterNus : axis.points;
    uint64_t complexPoints = points;
    if (fIndex == directFIndex(source)) {
        step.flags = directFlags(code);
        step.ftSize = roundFtSize(points);
    } else {
        const IndirectMode mode = indirectMode(code);
        step.shuffling = mode.shuffling;
        step.flags = mode.flags;
        if (mode.shuffling != Shuffling::None) complexPoints = points / 2;
        step.ftSize = roundFtSize(2 * complexPoints);
    }
    step.flags |= kApplyWeights;
    step.weights[kWeightTruncation] = 100.0f;
    step.weights[kWeightFirstPoint] = 1.0f;
    if (vendor)
        applyVendorProcessing(step, *vendor, static_cast<double>(complexPoints),
                              weightingSpectralWidth(axis.spectralWidth, axis.carrier));
    return step;
}

}  // namespace zolt

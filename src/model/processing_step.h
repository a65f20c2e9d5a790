// The steps of a document's processing history.
#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

namespace zolt {

enum class StepKind : uint16_t {
    HighPassFilter = 0,
    LinearPrediction = 1,
    FourierTransform = 2,
    Polynomial = 3,
    Baseplane = 4,
    DataReduction = 5,
    MonoExponentialFit = 6,
    QrDosy = 7,
};

namespace ft_flags {
inline constexpr uint16_t kQuadrature = 0x0001;
inline constexpr uint16_t kConjugate = 0x0002;
inline constexpr uint16_t kRealFt = 0x0004;
inline constexpr uint16_t kSubtractDc = 0x0008;
inline constexpr uint16_t kMagnitude = 0x0010;
inline constexpr uint16_t kLinearPrediction = 0x0020;
inline constexpr uint16_t kHypercomplex = 0x0040;
inline constexpr uint16_t kApplyWeights = 0x0080;
inline constexpr uint16_t kExponential = 0x0100;
inline constexpr uint16_t kGaussian = 0x0200;
inline constexpr uint16_t kSineBell = 0x0400;
inline constexpr uint16_t kSquaredSineBell = 0x0800;
inline constexpr uint16_t kTruncation = 0x1000;
inline constexpr uint16_t kFirstPoint = 0x2000;
// Transient, never saved: stop after weighting and zero-filling.
inline constexpr uint16_t kStopBeforeTransform = 0x4000;
inline constexpr uint16_t kAnyWeighting = 0x3F00;
}  // namespace ft_flags

enum class Shuffling : uint8_t { None = 0, PhaseSensitive = 1, EchoAntiEcho = 2 };

// Index of each weighting parameter in FourierTransformStep::weights.
enum WeightIndex : int {
    kWeightExponential = 0,  // Hz
    kWeightGaussian = 1,     // Hz
    kWeightSineBell = 2,     // degrees
    kWeightSquaredSine = 3,  // degrees
    kWeightTruncation = 4,   // per cent of the points kept
    kWeightFirstPoint = 5,   // multiplier
};

struct FourierTransformStep {
    uint32_t ftSize = 0;  // final size in complex points
    uint16_t flags = 0;
    Shuffling shuffling = Shuffling::None;
    uint8_t deleteFirst = 0;
    int16_t maxIstIterations = 0;  // 0: no NUS reconstruction
    std::array<float, 6> weights{};
};

struct LinearPredictionStep {
    std::array<uint16_t, 3> coefficients{};  // 0 ends the list
    std::array<uint16_t, 3> equations{};
    std::array<uint32_t, 3> firstPredicted{};
    std::array<uint32_t, 3> lastPredicted{};
    uint8_t method = 0;  // 0 Fast, 1 SVD, 2 Zhu-Bax, 3 Burg
};

struct PolynomialStep {
    int8_t order = -1;                 // negative: no polynomial, nothing saved
    std::vector<double> coefficients;  // order + 1
};

struct BaseplaneStep {
    float fromPpm = 0.0f, toPpm = 0.0f;  // meaningful when restricted
    uint8_t priority = 0;
    uint8_t function = 1;  // non-zero polynomial, 0 Whittaker smoother
    uint8_t order = 0;     // polynomial order, or the Whittaker smoothness index k
    uint8_t restricted = 0;
    int16_t movingAverage = 0;
};

struct HighPassFilterStep {
    std::vector<float> frequencies;  // ppm
    int32_t selectivity = 0;
};

struct DataReductionStep {
    float fromPpm = 0.0f, toPpm = 0.0f, binSize = 0.0f;
    int32_t offsetBins = 0;
};

struct MonoExponentialFitStep {
    float minD = 0.0f, maxD = 0.0f, signalToNoise = 0.0f, minPpm = 0.0f, maxPpm = 0.0f;
    int32_t points = 0, maxSigma = 0, smooth = 0;
    bool logScale = false;
};

struct QrDosyStep {
    std::vector<float> diffusion;
    float signalToNoise = 0.0f, minPpm = 0.0f, maxPpm = 0.0f;
    int32_t smooth = 0, mask = 0, overPercent = 0;
};

using StepData =
    std::variant<HighPassFilterStep, LinearPredictionStep, FourierTransformStep, PolynomialStep,
                 BaseplaneStep, DataReductionStep, MonoExponentialFitStep, QrDosyStep>;

struct ProcessingStep {
    uint8_t dimension = 1;  // 1 = f1, 2 = f2, 3 = f3
    StepData data;

    StepKind kind() const { return static_cast<StepKind>(data.index()); }
    // Low 16 bits the kind, high 16 bits the dimension.
    uint32_t tag() const { return (uint32_t{dimension} << 16) | static_cast<uint32_t>(kind()); }
};

// Bits of the document's mask of operations performed.
namespace done_mask {
constexpr uint32_t transformed(int d) {
    return 1u << (8 * d);
}
constexpr uint32_t suppressed(int d) {
    return 1u << (8 * d + 1);
}
constexpr uint32_t predicted(int d) {
    return 1u << (8 * d + 2);
}
inline constexpr uint32_t kTilting = 0x10;
inline constexpr uint32_t kSymmetrizeRectangular = 0x20;
inline constexpr uint32_t kSymmetrizeSquare = 0x40;
inline constexpr uint32_t kT1NoiseRemoval = 0x80;
inline constexpr uint32_t kDosyMonoExponential = 1u << 27;
inline constexpr uint32_t kDirectCovariance = 1u << 29;
inline constexpr uint32_t kIndirectCovariance = 1u << 30;
}  // namespace done_mask

struct ProcessingRecord {
    std::vector<ProcessingStep> steps;
    uint32_t doneMask = 0;
};

}  // namespace zolt

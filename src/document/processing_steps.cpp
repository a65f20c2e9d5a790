// Saving processing steps to property-list dictionaries and loading them back. Loading is
// not a plain inverse: a few rules below keep the behaviour documents have always had.
#include "document/processing_steps.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace zolt {

namespace {

using plist::Value;

constexpr const char* kName = "! Processing";
constexpr const char* kDimension = "! f-index";

// Fourier transform.
constexpr const char* kFtSize = "FT size";
constexpr const char* kShuffling = "shuffling";
constexpr const char* kIstIterations = "max IST iterations";
constexpr const char* kDeleteFirst = "delete first";
constexpr const char* kPhaseSensitive = "phase sensitive";
constexpr const char* kEchoAntiEcho = "echo anti-echo";

struct FlagKey {
    uint16_t bit;
    const char* key;
    bool required;
};
// Saved always, in this order; all but "subtract D.C." are required when loading.
constexpr std::array<FlagKey, 8> kFlagKeys{{
    {ft_flags::kConjugate, "conjugate", true},
    {ft_flags::kQuadrature, "quadrature", true},
    {ft_flags::kRealFt, "real FT", true},
    {ft_flags::kHypercomplex, "hypercomplex", true},
    {ft_flags::kMagnitude, "magnitude", true},
    {ft_flags::kLinearPrediction, "Use Linear Prediction", true},
    {ft_flags::kSubtractDc, "subtract D.C.", false},
    {ft_flags::kApplyWeights, "apply weights", true},
}};
// Each weighting parameter is saved only when its presence bit is set.
constexpr std::array<const char*, 6> kWeightKeys{
    "exp broadening", "gaussian broadening", "sine shift", "sqr sine shift",
    "truncate",       "1st point premult.",
};
constexpr std::array<uint16_t, 6> kWeightBits{
    ft_flags::kExponential,     ft_flags::kGaussian,   ft_flags::kSineBell,
    ft_flags::kSquaredSineBell, ft_flags::kTruncation, ft_flags::kFirstPoint,
};

constexpr const char* kSegments = "coeff. - equations - first and last predicted pts.";
constexpr const char* kCoefficients = "coefficients";

// Baseplane.
constexpr const char* kPriority = "priority";
constexpr const char* kOrder = "polynomial order";
constexpr const char* kMovingAverage = "moving average filter";
constexpr const char* kFromPpm = "from ppm";
constexpr const char* kToPpm = "to ppm";
constexpr const char* kFunction = "function";

constexpr const char* kFrequencies = "frequencies";
constexpr const char* kSelectivity = "selectivity";

constexpr const char* kApplyFrom = "apply from ppm";
constexpr const char* kBinSize = "size of each bin";
constexpr const char* kOffsetBins = "bins for offset correction";

constexpr const char* kMinD = "min D";
constexpr const char* kMaxD = "max D";
constexpr const char* kSignalToNoise = "signal/noise";
constexpr const char* kMinPpm = "min ppm";
constexpr const char* kMaxPpm = "max ppm";
constexpr const char* kPoints = "points";
constexpr const char* kMaxSigma = "max sigma";
constexpr const char* kSmooth = "smooth";
constexpr const char* kLogScale = "log scale";
constexpr const char* kDiffusion = "diffusion coeff.";
constexpr const char* kMask = "mask";
constexpr const char* kOverPercent = "over %";

void setReals(Value* d, const char* key, const std::vector<float>& values) {
    Value* a = plist::setArray(d, key);
    for (float v : values) plist::appendReal(a, v);
}

// Optional keys leave the field as it was when absent or of another kind.
template <typename T>
void getInt(const Value* d, const char* key, T& field) {
    if (auto i = plist::integerOf(plist::lookUp(d, key))) field = static_cast<T>(*i);
}
void getReal(const Value* d, const char* key, float& field) {
    if (auto r = plist::numberOf(plist::lookUp(d, key))) field = static_cast<float>(*r);
}

std::vector<float> getReals(const Value* d, const char* key) {
    std::vector<float> out;
    const Value* a = plist::lookUp(d, key);
    if (!a || a->kind != plist::Kind::Array) return out;
    for (const Value* item : a->items)
        if (auto r = plist::numberOf(item)) out.push_back(static_cast<float>(*r));
    return out;
}

void saveFourier(Value* d, const FourierTransformStep& s) {
    plist::setInteger(d, kFtSize, static_cast<int32_t>(s.ftSize));
    if (s.shuffling != Shuffling::None)
        plist::setString(
            d, kShuffling,
            s.shuffling == Shuffling::PhaseSensitive ? kPhaseSensitive : kEchoAntiEcho);
    if (s.maxIstIterations != 0) plist::setInteger(d, kIstIterations, s.maxIstIterations);
    for (const FlagKey& f : kFlagKeys) plist::setBoolean(d, f.key, s.flags & f.bit);
    for (size_t i = 0; i < kWeightKeys.size(); ++i)
        if (s.flags & kWeightBits[i]) plist::setReal(d, kWeightKeys[i], s.weights[i]);
    if (s.deleteFirst != 0) plist::setInteger(d, kDeleteFirst, s.deleteFirst);
}

std::optional<FourierTransformStep> loadFourier(const Value* d) {
    FourierTransformStep s;
    const auto size = plist::integerOf(plist::lookUp(d, kFtSize));
    if (!size) return std::nullopt;
    s.ftSize = static_cast<uint32_t>(*size);
    if (const std::string* text = plist::textOf(plist::lookUp(d, kShuffling));
        text && !text->empty())
        s.shuffling = (*text)[0] == 'e'   ? Shuffling::EchoAntiEcho
                      : (*text)[0] == 'p' ? Shuffling::PhaseSensitive
                                          : Shuffling::None;
    getInt(d, kIstIterations, s.maxIstIterations);
    for (const FlagKey& f : kFlagKeys) {
        const auto on = plist::booleanOf(plist::lookUp(d, f.key));
        if (!on && f.required) return std::nullopt;
        if (on.value_or(false)) s.flags |= f.bit;
    }
    // Presence alone sets the bit, whatever value the key holds.
    for (size_t i = 0; i < kWeightKeys.size(); ++i) {
        const Value* v = plist::lookUp(d, kWeightKeys[i]);
        if (!v) continue;
        s.flags |= kWeightBits[i];
        s.weights[i] = static_cast<float>(plist::numberOf(v).value_or(0.0));
    }
    getInt(d, kDeleteFirst, s.deleteFirst);
    return s;
}

bool saveLinearPrediction(Value* d, const LinearPredictionStep& s) {
    Value* a = plist::createArray();
    for (size_t i = 0; i < 3; ++i) {
        if (s.coefficients[i] == 0) continue;
        for (int32_t v :
             {int32_t{s.coefficients[i]}, int32_t{s.equations[i]},
              static_cast<int32_t>(s.firstPredicted[i]), static_cast<int32_t>(s.lastPredicted[i])})
            plist::appendInteger(a, v);
    }
    if (a->items.empty()) {
        plist::release(a);
        return false;
    }
    if (s.method != 0) plist::appendInteger(a, s.method);
    plist::addToDictionary(d, kSegments, a);
    return true;
}

LinearPredictionStep loadLinearPrediction(const Value* d) {
    LinearPredictionStep s;
    const Value* a = plist::lookUp(d, kSegments);
    if (!a || a->kind != plist::Kind::Array) return s;
    const size_t n = a->items.size();
    const size_t segments = std::min<size_t>(n / 4, 3);
    auto at = [&](size_t i) { return plist::integerOf(a->items[i]).value_or(0); };
    for (size_t k = 0; k < segments; ++k) {
        s.coefficients[k] = static_cast<uint16_t>(at(4 * k));
        s.equations[k] = static_cast<uint16_t>(at(4 * k + 1));
        s.firstPredicted[k] = static_cast<uint32_t>(at(4 * k + 2));
        s.lastPredicted[k] = static_cast<uint32_t>(at(4 * k + 3));
    }
    // Only methods below 3 are accepted, so a saved "Burg" (3) comes back as "Fast" (0);
    // documents have always behaved so.
    if (n % 4 != 0 && 4 * segments < n) {
        const int32_t method = at(4 * segments);
        if (method >= 0 && method < 3) s.method = static_cast<uint8_t>(method);
    }
    return s;
}

void saveBaseplane(Value* d, const BaseplaneStep& s) {
    plist::setInteger(d, kPriority, s.priority);
    plist::setInteger(d, kOrder, s.order);
    plist::setInteger(d, kMovingAverage, std::min<int32_t>(s.movingAverage, 127));
    if (s.restricted) {
        plist::setReal(d, kFromPpm, s.fromPpm);
        plist::setReal(d, kToPpm, s.toPpm);
    }
    plist::setString(d, kFunction, s.function != 0 ? "Polynomial" : "Whittaker");
}

BaseplaneStep loadBaseplane(const Value* d) {
    BaseplaneStep s;
    getInt(d, kPriority, s.priority);
    getInt(d, kOrder, s.order);
    // Rounded up to a power of two (the saved width is capped at 127, so 200 comes back as
    // 128); the cap keeps hostile values inside the 16-bit field.
    const int32_t saved = plist::integerOf(plist::lookUp(d, kMovingAverage)).value_or(0);
    int32_t width = 1;
    while (width < saved && width < 16384) width <<= 1;
    s.movingAverage = static_cast<int16_t>(width);
    const std::string* function = plist::textOf(plist::lookUp(d, kFunction));
    s.function = function && !function->empty() && (*function)[0] == 'W' ? 0 : 1;
    s.restricted = plist::lookUp(d, kFromPpm) != nullptr;
    getReal(d, kFromPpm, s.fromPpm);
    getReal(d, kToPpm, s.toPpm);
    return s;
}

}  // namespace

const char* stepName(StepKind kind) {
    switch (kind) {
        case StepKind::HighPassFilter:
            return "High-Pass Filter";
        case StepKind::LinearPrediction:
            return "Linear Prediction";
        case StepKind::FourierTransform:
            return "Fourier Transform";
        case StepKind::Polynomial:
            return "Polynomial";
        case StepKind::Baseplane:
            return "Baseplane Correction";
        case StepKind::DataReduction:
            return "Data Reduction";
        case StepKind::MonoExponentialFit:
            return "Mono Exponential Fit";
        case StepKind::QrDosy:
            return "QR-DOSY";
    }
    return "";
}

Value* saveStep(const ProcessingStep& step) {
    plist::Ref d(plist::createDictionary());
    plist::setString(d.get(), kName, stepName(step.kind()));
    plist::setInteger(d.get(), kDimension, step.dimension);
    Value* v = d.get();
    bool saved = true;
    std::visit(
        [&](const auto& s) {
            using T = std::decay_t<decltype(s)>;
            if constexpr (std::is_same_v<T, FourierTransformStep>) {
                saveFourier(v, s);
            } else if constexpr (std::is_same_v<T, LinearPredictionStep>) {
                saved = saveLinearPrediction(v, s);
            } else if constexpr (std::is_same_v<T, PolynomialStep>) {
                if (s.order < 0) {
                    saved = false;
                    return;
                }
                Value* a = plist::setArray(v, kCoefficients);
                for (int i = 0; i <= s.order; ++i)
                    plist::appendReal(
                        a, i < static_cast<int>(s.coefficients.size()) ? s.coefficients[i] : 0.0);
            } else if constexpr (std::is_same_v<T, BaseplaneStep>) {
                saveBaseplane(v, s);
            } else if constexpr (std::is_same_v<T, HighPassFilterStep>) {
                setReals(v, kFrequencies, s.frequencies);
                plist::setInteger(v, kSelectivity, s.selectivity);
            } else if constexpr (std::is_same_v<T, DataReductionStep>) {
                plist::setReal(v, kApplyFrom, s.fromPpm);
                plist::setReal(v, kToPpm, s.toPpm);
                plist::setReal(v, kBinSize, s.binSize);
                plist::setInteger(v, kOffsetBins, s.offsetBins);
            } else if constexpr (std::is_same_v<T, MonoExponentialFitStep>) {
                plist::setReal(v, kMinD, s.minD);
                plist::setReal(v, kMaxD, s.maxD);
                plist::setReal(v, kSignalToNoise, s.signalToNoise);
                plist::setReal(v, kMinPpm, s.minPpm);
                plist::setReal(v, kMaxPpm, s.maxPpm);
                plist::setInteger(v, kPoints, s.points);
                plist::setInteger(v, kMaxSigma, s.maxSigma);
                plist::setInteger(v, kSmooth, s.smooth);
                plist::setBoolean(v, kLogScale, s.logScale);
            } else if constexpr (std::is_same_v<T, QrDosyStep>) {
                setReals(v, kDiffusion, s.diffusion);
                plist::setReal(v, kSignalToNoise, s.signalToNoise);
                plist::setReal(v, kMinPpm, s.minPpm);
                plist::setReal(v, kMaxPpm, s.maxPpm);
                plist::setInteger(v, kSmooth, s.smooth);
                plist::setInteger(v, kMask, s.mask);
                plist::setInteger(v, kOverPercent, s.overPercent);
            }
        },
        step.data);
    return saved ? d.take() : nullptr;
}

std::optional<ProcessingStep> loadStep(const Value* d, StepLoad* outcome) {
    StepLoad ignored;
    StepLoad& result = outcome ? *outcome : ignored;
    result = StepLoad::Skipped;
    const std::string* name = plist::textOf(plist::lookUp(d, kName));
    if (!name || name->empty()) return std::nullopt;
    const char letter = (*name)[0];
    if (std::string_view("BDFHLMPQ").find(letter) == std::string_view::npos) return std::nullopt;

    result = StepLoad::Malformed;
    const auto dimension = plist::integerOf(plist::lookUp(d, kDimension));
    if (!dimension || *dimension < 1 || *dimension > 3) return std::nullopt;
    ProcessingStep step;
    step.dimension = static_cast<uint8_t>(*dimension);
    switch (letter) {
        case 'F': {
            auto ft = loadFourier(d);
            if (!ft) return std::nullopt;
            step.data = *ft;
            break;
        }
        case 'L':
            step.data = loadLinearPrediction(d);
            break;
        case 'P': {
            PolynomialStep s;
            const Value* a = plist::lookUp(d, kCoefficients);
            if (a && a->kind == plist::Kind::Array) {
                const size_t n = std::min<size_t>(a->items.size(), 128);
                for (size_t i = 0; i < n; ++i)
                    s.coefficients.push_back(plist::numberOf(a->items[i]).value_or(0.0));
            }
            s.order = static_cast<int8_t>(static_cast<int>(s.coefficients.size()) - 1);
            step.data = s;
            break;
        }
        case 'B':
            step.data = loadBaseplane(d);
            break;
        case 'H': {
            HighPassFilterStep s;
            s.frequencies = getReals(d, kFrequencies);
            getInt(d, kSelectivity, s.selectivity);
            step.data = s;
            break;
        }
        case 'D': {
            DataReductionStep s;
            getReal(d, kApplyFrom, s.fromPpm);
            getReal(d, kToPpm, s.toPpm);
            getReal(d, kBinSize, s.binSize);
            getInt(d, kOffsetBins, s.offsetBins);
            step.data = s;
            break;
        }
        case 'M': {
            MonoExponentialFitStep s;
            getReal(d, kMinD, s.minD);
            getReal(d, kMaxD, s.maxD);
            getReal(d, kSignalToNoise, s.signalToNoise);
            getReal(d, kMinPpm, s.minPpm);
            getReal(d, kMaxPpm, s.maxPpm);
            getInt(d, kPoints, s.points);
            getInt(d, kMaxSigma, s.maxSigma);
            getInt(d, kSmooth, s.smooth);
            s.logScale = plist::booleanOf(plist::lookUp(d, kLogScale)).value_or(false);
            step.data = s;
            break;
        }
        case 'Q': {
            QrDosyStep s;
            s.diffusion = getReals(d, kDiffusion);
            getReal(d, kSignalToNoise, s.signalToNoise);
            getReal(d, kMinPpm, s.minPpm);
            getReal(d, kMaxPpm, s.maxPpm);
            getInt(d, kSmooth, s.smooth);
            getInt(d, kMask, s.mask);
            getInt(d, kOverPercent, s.overPercent);
            step.data = s;
            break;
        }
    }
    result = StepLoad::Loaded;
    return step;
}

Value* saveSteps(const std::vector<ProcessingStep>& steps) {
    Value* a = plist::createArray();
    for (const ProcessingStep& s : steps) plist::appendToArray(a, saveStep(s));
    return a;
}

std::optional<std::vector<ProcessingStep>> loadSteps(const Value* array) {
    if (!array || array->kind != plist::Kind::Array) return std::nullopt;
    std::vector<ProcessingStep> steps;
    for (const Value* item : array->items) {
        StepLoad outcome;
        auto step = loadStep(item, &outcome);
        if (outcome == StepLoad::Malformed) return std::nullopt;
        if (step) steps.push_back(std::move(*step));
    }
    return steps;
}

}  // namespace zolt

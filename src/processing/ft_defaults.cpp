#include "processing/ft_defaults.h"

#include "processing/apodization.h"

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

}  // namespace

std::optional<FourierTransformStep> defaultFourierTransformStep(const SpectrumSource& source,
                                                                int fIndex) {
    if (fIndex < 1 || fIndex > 3) return std::nullopt;
    const DimensionRecord& axis = source.dims[fIndex];
    if (!countsAsDimension(axis)) return std::nullopt;
    FourierTransformStep step;
    const uint8_t code = source.ftPreferences[fIndex];
    const uint64_t points = axis.pointsAfterNus ? axis.pointsAfterNus : axis.points;
    if (fIndex == directFIndex(source)) {
        step.flags = directFlags(code);
        step.ftSize = roundFtSize(points);
    } else {
        const IndirectMode mode = indirectMode(code);
        step.shuffling = mode.shuffling;
        step.flags = mode.flags;
        const uint64_t complexPoints = mode.shuffling == Shuffling::None ? points : points / 2;
        step.ftSize = roundFtSize(2 * complexPoints);
    }
    step.flags |= kApplyWeights;
    step.weights[kWeightTruncation] = 100.0f;
    step.weights[kWeightFirstPoint] = 1.0f;
    return step;
}

FourierTransformStep* findFourierTransformStep(ProcessingRecord& record, int fIndex) {
    for (auto& s : record.steps)
        if (s.dimension == fIndex && s.kind() == StepKind::FourierTransform)
            return &std::get<FourierTransformStep>(s.data);
    return nullptr;
}

void addDefaultFourierTransformSteps(SpectrumDocument& doc) {
    for (int f = doc.source.highestTIndex; f >= 1; --f) {
        if (findFourierTransformStep(doc.processing, f)) continue;
        if (auto step = defaultFourierTransformStep(doc.source, f))
            doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(f), *step});
    }
}

}  // namespace zolt

#include "operations/transform_operations.h"

#include "operations/display_operations.h"
#include "processing/auto_phase.h"
#include "processing/ft_pipeline.h"
#include "processing/ft_step.h"

namespace zolt {

namespace {

// The step of the dimension the next transform works on.
FourierTransformStep& nextStep(SpectrumDocument& doc) {
    return fourierTransformStep(doc, doc.source.highestTIndex);
}

void setBit(uint16_t& flags, uint16_t bit, bool on) {
    flags = on ? (flags | bit) : (flags & static_cast<uint16_t>(~bit));
}

// Phase found automatically after a transform: 1-D spectra with imaginary parts whose stored
// phase is still untouched (a spectrometer phase read with the data is kept). A 2-D source does
// not qualify: after its f2 transform the rows are still time signals along f1, and the first
// of them alone (edited lines of both signs, echo and anti-echo) is no guide to the f2 phase.
bool wantsAutomaticPhase(const SpectrumDocument& d, const FourierTransformStep& step) {
    const SpectrumMatrix& m = d.matrix;
    return countDimensions(d.source) == 1 && d.source.highestTIndex == 0 && step.ftSize != 0 &&
           m.xIndex > 0 && m.xIndex < 4 && m.dims[m.xIndex].phase0 == 0.0f && !m.realOnly() &&
           !(m.state & matrix_state::kMagnitude);
}

}  // namespace

bool inTimeDomain(const SpectrumDocument& doc) {
    return doc.source.highestTIndex > 0;
}

void setFillSize(SpectrumDocument& doc, uint32_t ftSize, bool linearPrediction) {
    if (!inTimeDomain(doc)) return;
    FourierTransformStep& step = nextStep(doc);
    step.ftSize = ftSize;
    setBit(step.flags, ft_flags::kLinearPrediction, linearPrediction);
}

void setTransformOptions(SpectrumDocument& doc, const TransformOptions& options) {
    if (!inTimeDomain(doc)) return;
    uint16_t& flags = nextStep(doc).flags;
    setBit(flags, ft_flags::kQuadrature, options.quadrature);
    setBit(flags, ft_flags::kConjugate, options.conjugate);
    setBit(flags, ft_flags::kRealFt, options.realFt);
    setBit(flags, ft_flags::kSubtractDc, options.subtractDc);
}

void setShuffling(SpectrumDocument& doc, Shuffling shuffling) {
    if (inTimeDomain(doc)) nextStep(doc).shuffling = shuffling;
}

// No clamping here: the dialog keeps its fields in range, and a script may ask for a
// truncation above 200 to reach the Traficante window.
void setWeighting(SpectrumDocument& doc, const WeightingParameters& parameters) {
    if (!inTimeDomain(doc)) return;
    std::array<float, 6> values{};
    uint16_t present = 0;
    for (size_t k = 0; k < parameters.size(); ++k) {
        if (!parameters[k]) continue;
        values[k] = *parameters[k];
        present |= static_cast<uint16_t>(ft_flags::kExponential << k);
    }
    FourierTransformStep& step = nextStep(doc);
    step.weights = values;
    step.flags = static_cast<uint16_t>((step.flags & 0x00ff) | present);
}

OperationResult weightAndTransform(SpectrumDocument& doc, const WeightAndTransform& how) {
    if (!inTimeDomain(doc)) return {};
    const int f = doc.source.highestTIndex;
    FourierTransformStep& step = nextStep(doc);
    setBit(step.flags, ft_flags::kApplyWeights, how.applyWeights);
    setBit(step.flags, ft_flags::kHypercomplex, how.hypercomplex);
    setBit(step.flags, ft_flags::kStopBeforeTransform, !how.transform);
    const FtResult result = transformNextDimension(doc);
    // The pipeline may have added steps: look the step up again.
    FourierTransformStep& after = fourierTransformStep(doc, f);
    setBit(after.flags, ft_flags::kStopBeforeTransform, false);
    if (result.outcome == FtOutcome::Transformed && wantsAutomaticPhase(doc, after))
        autoPhase(doc.matrix, doc.source.highestTIndex);
    if (result.outcome == FtOutcome::Transformed) rescaleAfterDataChange(doc);
    return OperationResult{true, result.message};
}

}  // namespace zolt

// The Fourier-transform preferences of a document's next time-domain dimension, and the
// transform itself. Each does nothing to a document already in the frequency domain.
#pragma once

#include <array>
#include <optional>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// Still has dimensions in the time domain.
bool inTimeDomain(const SpectrumDocument& doc);

// FT size (one of the offered sizes) and "Use Linear Prediction" of the next transform.
void setFillSize(SpectrumDocument& doc, uint32_t ftSize, bool linearPrediction);

// The low four option bits of the next transform, in this order.
struct TransformOptions {
    bool quadrature = false, conjugate = false, realFt = false, subtractDc = false;
};
void setTransformOptions(SpectrumDocument& doc, const TransformOptions& options);

void setShuffling(SpectrumDocument& doc, Shuffling shuffling);

// The six weighting parameters in step order; a given one is stored as it is with its
// presence bit, an absent one loses its bit. The low byte of the options stays.
using WeightingParameters = std::array<std::optional<float>, 6>;
void setWeighting(SpectrumDocument& doc, const WeightingParameters& parameters);

struct WeightAndTransform {
    bool applyWeights = true;
    bool transform = true;  // false: weighted and zero-filled only, for this run
    bool hypercomplex = false;
};
// Weights and transforms the next dimension; a 1-D spectrum whose stored phase is untouched
// is then phased automatically. applied: a dimension was processed.
OperationResult weightAndTransform(SpectrumDocument& doc, const WeightAndTransform& how);

}  // namespace zolt

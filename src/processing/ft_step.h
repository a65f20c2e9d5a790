// The Fourier-transform step of a dimension: finding it, creating it with the source's
// defaults, and the ranges the Fourier-transform dialog offers for its fields.
#pragma once

#include <cstdint>

#include "model/spectrum_document.h"

namespace zolt {

// Limits of the Fourier-transform dialog.
inline constexpr float kWeightShiftLimit = 150.0f;  // exponential, gaussian, sine shifts
inline constexpr float kTruncationMin = 1.0f, kTruncationMax = 250.0f;
inline constexpr float kFirstPointMax = 3.0f;
inline constexpr int16_t kMaxIstIterations = 2000;
inline constexpr uint32_t kMinFtSize = 32;
inline constexpr uint32_t kMaxFtSize = 1u << 20;

// One of the sixteen sizes 32 x 2^i: a size that is not a power of two goes up to the next
// one, then the result is clamped to 32 ... maxSize (itself one of the sixteen).
uint32_t roundFtSize(uint64_t size, uint32_t maxSize = kMaxFtSize);

// Brings every field of the step into the dialog's ranges (out of range -> nearest limit,
// NaN -> the neutral value); IST iterations 0 stay 0 (no reconstruction).
void clampFourierTransformStep(FourierTransformStep& step);

// The Fourier-transform step of fIndex in the record, or null.
FourierTransformStep* findFourierTransformStep(ProcessingRecord& record, int fIndex);
const FourierTransformStep* findFourierTransformStep(const ProcessingRecord& record, int fIndex);

// The document's FT preferences for fIndex. When the record has none, a step with the
// source's defaults and the spectrometer's window is appended; an axis without defaults (absent
// or a pseudo-dimension) gets a blank step, so that settings always have a place.
FourierTransformStep& fourierTransformStep(SpectrumDocument& doc, int fIndex);

// Appends the default step of every time-domain axis that has none yet and has defaults.
void addDefaultFourierTransformSteps(SpectrumDocument& doc);

}  // namespace zolt

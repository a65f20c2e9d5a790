// The weighting vector of a time-domain dimension: scale, quadrature, user window functions.
#pragma once

#include <cstddef>
#include <cstdint>

#include "model/processing_step.h"

namespace zolt {

// Everything the window depends on besides the step itself.
struct WeightingInput {
    size_t n = 0;                 // complex points weighted (after shuffling, deletion, prediction)
    size_t n0 = 0;                // points of the dimension when the transform began; scale only
    float swHz = 0.0f;            // spectral width in Hz, formed in 32-bit precision
    size_t first = 0;             // first-point index (digital-filter delay), clamped to 0 ... n-1
    bool conjugateState = false;  // the matrix's complex-conjugate state
};

// Spectral width in Hz as the window sees it: ppm times MHz in 32-bit floats.
float weightingSpectralWidth(float widthPpm, float carrierMhz);
// The first point a digital-filter delay leaves: -time shift truncated, clamped to 0 ... n-1.
size_t firstPointIndex(float timeShift, size_t n);

// Fills w[0 ... n-1] with the window of the step (scale, quadrature, and with "apply weights"
// the first-point factor, exponential, gaussian, sine bells and truncation, by product).
void buildWeightingVector(const FourierTransformStep& step, const WeightingInput& in, float* w);

// True when the imaginary parts take -w: the step's conjugate flag, or the conjugate state
// with no shuffling, but not both.
bool imaginaryNegated(const FourierTransformStep& step, bool conjugateState);

// Builds the window and multiplies every row by it (imaginary parts by w or -w). Returns false,
// leaving the rows untouched, when the window cannot be allocated. im may be null.
bool applyWeighting(const FourierTransformStep& step, const WeightingInput& in, float* re,
                    float* im, size_t rows, size_t stride);

}  // namespace zolt

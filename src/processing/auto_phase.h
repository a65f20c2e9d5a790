// Automatic zero- and first-order phase correction by a Nelder-Mead simplex.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "model/spectrum_matrix.h"

namespace zolt {

struct AutoPhaseResult {
    double delta0 = 0.0;  // zero-order increment at the first point of the whole axis
    double delta1 = 0.0;  // first-order increment across the whole axis
    double cost = 0.0;    // criterion at the best vertex
    int iterations = 0;   // simplex iterations over all rounds
    int evaluations = 0;  // criterion evaluations
};

// One given peak for the peak criterion: a complex vector along the axis (n points, only
// q - 21 ... q + 21 are read) and its centre q. Several slices may share a vector.
struct PhaseSlice {
    const float* re = nullptr;
    const float* im = nullptr;
    size_t q = 0;
};

// The phase that makes one complex row (n points) absorptive; the data are not changed.
// Criteria: the default (deepest negative point of the real part, in the region without the
// first and last n/64 points), the given peaks (line-shape asymmetry; the whole row), or, when
// alternative is set, the negative part of the real spectrum over the points that the signal
// detector marks on the modulus. conjugate: the imaginary parts are read negated.
AutoPhaseResult estimatePhase(const float* re, const float* im, size_t n,
                              const std::vector<size_t>& peaks = {}, bool alternative = false,
                              bool conjugate = false);

// The peak criterion on slices already centred (no refinement window), over an axis of n
// points, with the four rounds of the peak search.
AutoPhaseResult estimatePhaseFromSlices(const std::vector<PhaseSlice>& slices, size_t n);

// `aph` on a 1-D spectrum: estimates and applies the change to the stored phase of f1. Nothing
// happens without imaginary parts (the result is then empty).
std::optional<AutoPhaseResult> autoPhase(SpectrumMatrix& m, int highestTIndex,
                                         const std::vector<size_t>& peaks = {},
                                         bool alternative = false);

struct AutoPhase2DResult {
    AutoPhaseResult direct;    // f2
    AutoPhaseResult indirect;  // f1
};

// `aph` on a 2-D spectrum. With hypercomplex halves the strongest cross peaks (local maxima of
// the hypercomplex modulus) are taken as given peaks: each one's row along f2 is combined from
// the f1-real and f1-imaginary rows with the weights of the peak point, which removes the f1
// phase and leaves a real multiple of the f2 line; the f2 phase follows from the asymmetry
// criterion, which does not mind the sign of a line (edited spectra have negative ones). Then
// the same along f1 on the columns. Without halves only f1 is phased, on the columns through
// the strongest peaks of the modulus: the f2 imaginary parts were consumed by the f1
// recombination, so f2 keeps the phase its own transform applied (`direct` stays zero).
std::optional<AutoPhase2DResult> autoPhase2D(SpectrumMatrix& m, int highestTIndex,
                                             size_t maxPeaks = 24);

}  // namespace zolt

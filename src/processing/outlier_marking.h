// The iterated three-sigma cut of the signal detector.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolt {

// Marks mask[i] for every unmarked d[i] above mean + 3 sigma of the unmarked values, and repeats
// until a pass marks nothing. Returns the threshold of the last pass (0 when nothing is
// unmarked). Each pass's mean and variance are those of sums taken in index order, one addition
// after another: the marks and the threshold are defined by that arithmetic to the last bit.
// The differences d are magnitudes (never negative).
double markOutliers(const double* d, size_t n, uint8_t* mask);

}  // namespace zolt

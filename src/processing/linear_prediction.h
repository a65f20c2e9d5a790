// Forward linear prediction that extends time-domain rows ("LP filling").
#pragma once

#include <cstddef>

namespace zolt {

// Order of the prediction for rows of n points: min(n/16, 24).
size_t predictionOrder(size_t n);

// Extends every row (r at r * stride, stride >= f) from n to f points: each new point is the
// sum of the p coefficients times the p preceding points, the coefficients estimated from
// n - p - 1 equations on the complex points in double precision (least squares through the
// normal equations). Returns false, rows untouched, when the order is 0 or the work space
// cannot be allocated; the caller then zero-fills.
bool extendByPrediction(float* re, float* im, size_t rows, size_t n, size_t f, size_t stride);

}  // namespace zolt

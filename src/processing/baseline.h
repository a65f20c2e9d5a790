// Baseline correction of the real parts, row by row along one dimension.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/message.h"
#include "model/processing_step.h"
#include "model/spectrum_document.h"
#include "processing/real_rows.h"

namespace zolt {

inline constexpr const char* kInsufficientPointsCaption = "Insufficient number of points";
inline constexpr const char* kInsufficientPointsText = "Try reducing the order of the polynomial";

// Highest polynomial order the baseline dialog and `poly` offer: the fit's work grows with the
// square of the order, so a saved step asks for no more.
inline constexpr int kMaxBaselineOrder = 7;

// Limit under which a diagonal element of R counts as zero in the polynomial fit.
inline constexpr double kQrZeroLimit = 1.1920928955078125e-7;

// Abscissa of point i of an n-point row in the polynomial fits: -1 at the first point, +1 at
// the last, which keeps the powers up to high orders well conditioned.
double normalisedAbscissa(size_t i, size_t n);
// Horner's rule; coefficients[0] is the constant term.
double evaluatePolynomial(const std::vector<double>& coefficients, double x);

// The most points that may enter the fit of an n-point row: 64*order + 8 + n/16.
size_t polynomialFitPoints(size_t n, int order);
// Least squares by Householder QR through the baseline points (mask 0) of row, at most
// polynomialFitPoints of them evenly spread over the list of baseline points. The fit is
// repeated without the baseline points lying more than three noise deviations above it, until
// none does, so that the curve passes under broad humps. Empty when fewer baseline points than
// coefficients remain.
std::vector<double> fitBaselinePolynomial(const float* row, const uint8_t* mask, size_t n,
                                          int order);

// Automatic correction of every row along fIndex (rows of the real parts; of the first half
// when the matrix holds hypercomplex halves) with the settings of a baseplane step: function
// (non-zero polynomial, 0 Whittaker), order (polynomial order or smoothness index), moving
// average (the autosampling half-width) and the optional ppm restriction. The threshold of the
// autosampling is carried from row to row. Returns the message when the polynomial order asks
// for more points than the row has; the data are then unchanged.
std::optional<Message> correctBaseline(SpectrumMatrix& m, int fIndex,
                                       const BaseplaneStep& settings);
// The same on a document, recording the baseplane step (kind 4) when it ran.
std::optional<Message> correctBaseline(SpectrumDocument& doc, int fIndex,
                                       const BaseplaneStep& settings);
// 2-D and 3-D: row-wise along the direct axis, then along each indirect axis in decreasing
// f-index, one recorded step per axis. Stops at the first message.
std::optional<Message> correctBaseplane(SpectrumDocument& doc, const BaseplaneStep& settings);

// Subtracts the polynomial with explicit coefficients (over normalisedAbscissa of the whole
// axis) from every row along fIndex.
void subtractPolynomial(SpectrumMatrix& m, int fIndex, const PolynomialStep& step);
// The same on a document, recording the polynomial step (kind 3) unless its order is negative.
void applyPolynomialStep(SpectrumDocument& doc, int fIndex, const PolynomialStep& step);

// Straight-line correction: per row, the line through the means of the first and the last
// `percent` per cent of the points (at least one point each) is subtracted.
void correctStraight(SpectrumMatrix& m, int fIndex, double percent = 5.0);

}  // namespace zolt

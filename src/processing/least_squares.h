// Linear least squares by Householder QR, for the small polynomial fits of the baselines.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

// Row stride of the matrix solveLeastSquares takes for p unknowns: p + 1 columns (the last
// holds the right-hand side) rounded up to an even count, the extra column zero.
inline size_t leastSquaresStride(size_t p) {
    return (p + 2) & ~size_t{1};
}

// Solves the m x p system stored row by row in a (stride leastSquaresStride(p), column p the
// right-hand side) in the least-squares sense; a is overwritten. A coefficient whose diagonal
// element of R falls below kQrZeroLimit is 0.
std::vector<double> solveLeastSquares(double* a, size_t m, size_t p);

// Two such systems with the same p, solved side by side: each gets the very coefficients
// solveLeastSquares gives it alone, in about the time of one, as the sums of each wait on their
// own previous terms.
void solveLeastSquaresTwo(double* a1, size_t m1, double* a2, size_t m2, size_t p,
                          std::vector<double>& c1, std::vector<double>& c2);

}  // namespace zolt

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

}  // namespace zolt

// Row kernels on split real and imaginary arrays; none of them allocates.
#pragma once

#include <cstddef>
#include <vector>

namespace zolt {

// Per row: subtracts the mean of the last n/16 points from points first ... n-1.
void subtractDc(float* data, size_t rows, size_t n, size_t stride, size_t first);
// Per row: drops the first count points and appends as many zeros, in both arrays.
void deleteFirst(float* re, float* im, size_t rows, size_t n, size_t stride, size_t count);
// Per row: points from ... to-1 become 0 in both arrays (im may be null).
void zeroTail(float* re, float* im, size_t rows, size_t from, size_t to, size_t stride);
// Per row: point k times window[k] for k < n.
void multiplyWindow(float* data, size_t rows, size_t n, size_t stride, const float* window);
// Moves row r from r*oldStride to r*newStride, copying oldStride/factor points.
void restride(float* re, float* im, size_t oldStride, size_t newStride, size_t rows, size_t factor);
// to[j * toStride + k] = from[k * fromStride + j] for k < rows, j < columns: blocks of 4 x 4
// through SSE registers where they fit, the rest point by point.
void transposeBlock(const float* from, size_t fromStride, float* to, size_t toStride, size_t rows,
                    size_t columns);
// destination[i*stride + c] = source[c*n + i] for c < m, i < n (stride at least m).
void transpose(const float* source, float* destination, size_t n, size_t m, size_t stride);
// destination[i*m + c] = source[c*n + i] for c < m, i < n.
inline void transpose(const float* source, float* destination, size_t n, size_t m) {
    transpose(source, destination, n, m, m);
}

}  // namespace zolt

#include "processing/kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "processing/row_parallel.h"

namespace zolt {

void subtractDc(float* data, size_t rows, size_t n, size_t stride, size_t first) {
    // The offset is read where the signal has decayed: the last sixteenth of the row.
    const size_t tail = n / 16;
    if (!data || tail == 0) return;
    for (size_t r = 0; r < rows; ++r) {
        float* row = data + r * stride;
        double sum = 0.0;
        for (size_t k = n - tail; k < n; ++k) sum += row[k];
        const double mean = sum / static_cast<double>(tail);
        for (size_t k = first; k < n; ++k) row[k] = static_cast<float>(row[k] - mean);
    }
}

void deleteFirst(float* re, float* im, size_t rows, size_t n, size_t stride, size_t count) {
    count = std::min(count, n);
    for (float* data : {re, im}) {
        if (!data) continue;
        for (size_t r = 0; r < rows; ++r) {
            float* row = data + r * stride;
            std::memmove(row, row + count, (n - count) * sizeof(float));
            std::fill(row + n - count, row + n, 0.0f);
        }
    }
}

void zeroTail(float* re, float* im, size_t rows, size_t from, size_t to, size_t stride) {
    if (from >= to) return;
    for (float* data : {re, im}) {
        if (!data) continue;
        for (size_t r = 0; r < rows; ++r)
            std::fill(data + r * stride + from, data + r * stride + to, 0.0f);
    }
}

void multiplyWindow(float* data, size_t rows, size_t n, size_t stride, const float* window) {
    if (!data || !window) return;
    for (size_t r = 0; r < rows; ++r) {
        float* __restrict row = data + r * stride;
        for (size_t k = 0; k < n; ++k) row[k] *= window[k];
    }
}

void restride(float* re, float* im, size_t oldStride, size_t newStride, size_t rows,
              size_t factor) {
    if (oldStride == newStride || rows < 2 || factor == 0) return;
    const size_t count = oldStride / factor;
    for (float* data : {re, im}) {
        if (!data) continue;
        // Rows move towards the end when the stride grows, so the last goes first and no row is
        // overwritten before it has moved; the other way round when it shrinks. Row 0 stays.
        if (newStride > oldStride) {
            for (size_t r = rows - 1; r > 0; --r)
                std::memmove(data + r * newStride, data + r * oldStride, count * sizeof(float));
        } else {
            for (size_t r = 1; r < rows; ++r)
                std::memmove(data + r * newStride, data + r * oldStride, count * sizeof(float));
        }
    }
}

void transposeBlock(const float* from, size_t fromStride, float* to, size_t toStride, size_t rows,
                    size_t columns) {
    size_t k0 = 0;
#if defined(__SSE2__)
    for (; k0 + 4 <= rows; k0 += 4) {
        size_t j0 = 0;
        for (; j0 + 4 <= columns; j0 += 4) {
            const float* in = from + k0 * fromStride + j0;
            __m128 r0 = _mm_loadu_ps(in), r1 = _mm_loadu_ps(in + fromStride);
            __m128 r2 = _mm_loadu_ps(in + 2 * fromStride), r3 = _mm_loadu_ps(in + 3 * fromStride);
            _MM_TRANSPOSE4_PS(r0, r1, r2, r3);
            float* out = to + j0 * toStride + k0;
            _mm_storeu_ps(out, r0);
            _mm_storeu_ps(out + toStride, r1);
            _mm_storeu_ps(out + 2 * toStride, r2);
            _mm_storeu_ps(out + 3 * toStride, r3);
        }
        for (size_t k = k0; k < k0 + 4; ++k)
            for (size_t j = j0; j < columns; ++j) to[j * toStride + k] = from[k * fromStride + j];
    }
#endif
    for (size_t k = k0; k < rows; ++k)
        for (size_t j = 0; j < columns; ++j) to[j * toStride + k] = from[k * fromStride + j];
}

void transpose(const float* source, float* destination, size_t n, size_t m, size_t stride) {
    // Tiles keep both the rows read and the rows written in cache; inside a tile, blocks of
    // 4 x 4 go through registers so that whole vectors are read and written.
    // Threads take whole bands of source rows, so each writes its own columns.
    constexpr size_t kTile = 32;
    forEachRowRange((m + kTile - 1) / kTile, 4, [&](size_t begin, size_t end) {
        for (size_t c0 = begin * kTile; c0 < std::min(m, end * kTile); c0 += kTile) {
            const size_t c1 = std::min(m, c0 + kTile);
            for (size_t i0 = 0; i0 < n; i0 += kTile)
                transposeBlock(source + c0 * n + i0, n, destination + i0 * stride + c0, stride,
                               c1 - c0, std::min(n, i0 + kTile) - i0);
        }
    });
}

}  // namespace zolt

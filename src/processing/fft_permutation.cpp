#include "processing/fft_permutation.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "processing/vector_kernels.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZOLT_PERMUTATION_X86 1
#endif

namespace zolt {
namespace {

// Index bits split as [high | middle | low], high and low kTileBits wide: reversing an index
// reverses the middle and swaps the reversed high and low parts. So the points sharing a middle
// value form a tile of rows (high) of contiguous runs (low), and tile m trades places with tile
// reverse(m) transposed. Whole rows are read into a buffer and written back from the partner's
// buffer, which replaces the scattered single swaps by runs of 2^kTileBits points.
constexpr unsigned kTileBits = 4;
constexpr size_t kTile = size_t{1} << kTileBits;

uint32_t reverseBits(uint32_t x, unsigned bits) {
    if (bits == 0) return 0;
    x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
    x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
    x = ((x >> 4) & 0x0F0F0F0Fu) | ((x & 0x0F0F0F0Fu) << 4);
    x = ((x >> 8) & 0x00FF00FFu) | ((x & 0x00FF00FFu) << 8);
    x = (x >> 16) | (x << 16);
    return x >> (32 - bits);
}

// Tile m trades places with tile reverse(m): both are read before either is written, and a
// tile that is its own partner is read and written back.
template <typename Buffer, typename Read, typename Write>
void exchangeTilePairs(size_t mids, unsigned midBits, Read read, Write write) {
    Buffer a, b;
    for (size_t mid = 0; mid < mids; ++mid) {
        const size_t partner = reverseBits(uint32_t(mid), midBits);
        if (partner < mid) continue;
        read(mid, a);
        if (partner == mid) {
            write(mid, a);
            continue;
        }
        read(partner, b);
        write(mid, b);
        write(partner, a);
    }
}

// The 4-point transform of a, b, c, d in float, as the two fused radix-2 stages compute it.
inline void radix4(const float* r, const float* x, float* outR, float* outI, float sign) {
    const float sr = r[0] + r[1], si = x[0] + x[1], tr = r[0] - r[1], ti = x[0] - x[1];
    const float ur = r[2] + r[3], ui = x[2] + x[3], vr = r[2] - r[3], vi = x[2] - x[3];
    outR[0] = sr + ur;
    outI[0] = si + ui;
    outR[1] = tr - sign * vi;
    outI[1] = ti + sign * vr;
    outR[2] = sr - ur;
    outI[2] = si - ui;
    outR[3] = tr + sign * vi;
    outI[3] = ti - sign * vr;
}

struct alignas(16) Tile {
    float re[kTile * kTile];
    float im[kTile * kTile];
};

// Copies the rows of the tile with middle value mid (rows of `width` points).
void readTile(const float* re, const float* im, size_t mid, size_t width, size_t rowStride,
              Tile& t) {
    if (width == kTile) {
        // A fixed size lets the copies become plain vector moves.
        for (size_t hi = 0; hi < kTile; ++hi) {
            const size_t base = hi * rowStride + mid * kTile;
            std::memcpy(t.re + hi * kTile, re + base, kTile * sizeof(float));
            std::memcpy(t.im + hi * kTile, im + base, kTile * sizeof(float));
        }
        return;
    }
    for (size_t hi = 0; hi < width; ++hi) {
        const size_t base = hi * rowStride + mid * width;
        std::memcpy(t.re + hi * kTile, re + base, width * sizeof(float));
        std::memcpy(t.im + hi * kTile, im + base, width * sizeof(float));
    }
}

// Writes the tile with middle value mid from the partner's buffer: point (hi, lo) takes the
// partner's point (reverse(lo), reverse(hi)); each run of four then gets its radix-4 pass.
void writeTile(float* re, float* im, size_t mid, size_t width, size_t rowStride, const uint8_t* rev,
               const Tile& from, float sign) {
    float r[kTile] = {}, x[kTile] = {};  // set so that no compiler sees a lane unset
    for (size_t hi = 0; hi < width; ++hi) {
        const size_t column = rev[hi];
        for (size_t lo = 0; lo < width; ++lo) {
            r[lo] = from.re[rev[lo] * kTile + column];
            x[lo] = from.im[rev[lo] * kTile + column];
        }
        float* outR = re + hi * rowStride + mid * width;
        float* outI = im + hi * rowStride + mid * width;
        for (size_t lo = 0; lo < width; lo += 4) radix4(r + lo, x + lo, outR + lo, outI + lo, sign);
    }
}

#ifdef ZOLT_PERMUTATION_X86
// radix4() on vectors holding one group per lane: points a, b, c, d of the groups come in as
// (r0, x0) ... (r3, x3) and leave as outputs 0 ... 3. V is __m128 or __m512, whose +, - and *
// are the lane-wise float operations.
template <typename V>
[[gnu::always_inline]] inline void radix4Lanes(V& r0, V& r1, V& r2, V& r3, V& x0, V& x1, V& x2,
                                               V& x3, const V& sign) {
    const V sr = r0 + r1, si = x0 + x1, tr = r0 - r1, ti = x0 - x1;
    const V ur = r2 + r3, ui = x2 + x3, vr = r2 - r3, vi = x2 - x3;
    const V svi = sign * vi, svr = sign * vr;
    r0 = sr + ur, x0 = si + ui;
    r1 = tr - svi, x1 = ti + svr;
    r2 = sr - ur, x2 = si - ui;
    r3 = tr + svi, x3 = ti - svr;
}

// writeTile for full 16 x 16 tiles, four groups at a time. With lo = 4A + c and hi = 4P + q,
// point (hi, lo) takes the partner's point in row 4 rev2(c) + rev2(A), column 4 rev2(q) +
// rev2(P). So for fixed A and q the four quads (rows 4 rev2(c) + rev2(A), c = 0 ... 3, columns
// 4 rev2(q) ... + 3) hold points a, b, c, d of four groups side by side, one group per lane:
// the radix-4 pass runs on them lane by lane, and a 4 x 4 transpose sends lane e to row
// 4 rev2(e) + q.
void writeFullTile(float* re, float* im, size_t mid, size_t rowStride, const Tile& from,
                   float sign) {
    constexpr size_t rev2[4] = {0, 2, 1, 3};
    const __m128 s = _mm_set1_ps(sign);
    // The tile is assembled in a buffer and then written row by row: the rows lie n/16 points
    // apart and so compete for the same cache sets, and a row written in one go is fetched once.
    Tile out;
#pragma GCC unroll 4
    for (size_t q = 0; q < 4; ++q) {
        float* outR = out.re + q * kTile;
        float* outI = out.im + q * kTile;
#pragma GCC unroll 4
        for (size_t a = 0; a < 4; ++a) {
            const size_t at = rev2[a] * kTile + 4 * rev2[q];
            const float* r = from.re + at;
            const float* x = from.im + at;
            __m128 r0 = _mm_load_ps(r), r1 = _mm_load_ps(r + 8 * kTile);
            __m128 r2 = _mm_load_ps(r + 4 * kTile), r3 = _mm_load_ps(r + 12 * kTile);
            __m128 x0 = _mm_load_ps(x), x1 = _mm_load_ps(x + 8 * kTile);
            __m128 x2 = _mm_load_ps(x + 4 * kTile), x3 = _mm_load_ps(x + 12 * kTile);
            radix4Lanes(r0, r1, r2, r3, x0, x1, x2, x3, s);
            _MM_TRANSPOSE4_PS(r0, r1, r2, r3);
            _MM_TRANSPOSE4_PS(x0, x1, x2, x3);
            // Lane e goes to row 4 rev2(e) + q.
            _mm_store_ps(outR + 4 * a, r0), _mm_store_ps(outI + 4 * a, x0);
            _mm_store_ps(outR + 8 * kTile + 4 * a, r1), _mm_store_ps(outI + 8 * kTile + 4 * a, x1);
            _mm_store_ps(outR + 4 * kTile + 4 * a, r2), _mm_store_ps(outI + 4 * kTile + 4 * a, x2);
            _mm_store_ps(outR + 12 * kTile + 4 * a, r3);
            _mm_store_ps(outI + 12 * kTile + 4 * a, x3);
        }
    }
    for (size_t hi = 0; hi < kTile; ++hi) {
        const size_t base = hi * rowStride + mid * kTile;
        std::memcpy(re + base, out.re + hi * kTile, kTile * sizeof(float));
        std::memcpy(im + base, out.im + hi * kTile, kTile * sizeof(float));
    }
}

// The same tile exchange on sixteen lanes, where a tile row of 16 points is one vector. The
// partner's rows are first regrouped by 4-point column blocks: for role R (rows R ... R + 3,
// R = 0, 8, 4, 12 for points a, b, c, d) and column block j, lane block a holds row
// R + rev2(a), columns 4j ... 4j + 3, which is the operand the four-lane code loads for
// groups a = 0 ... 3 at once. The radix-4 sums then run on sixteen lanes, and after a 4 x 4
// transpose within each block, vector e is the whole output row 4 rev2(e) + q.
struct alignas(64) Regrouped {
    // [re, im][role][column block][16 values]
    float v[2][4][4][kTile];
};

[[gnu::target("avx512f")]] inline void transposeBlocks(__m512& x0, __m512& x1, __m512& x2,
                                                       __m512& x3) {
    const __m512 t0 = _mm512_maskz_shuffle_f32x4(0xFFFF, x0, x1, 0x44),
                 t1 = _mm512_maskz_shuffle_f32x4(0xFFFF, x0, x1, 0xEE);
    const __m512 t2 = _mm512_maskz_shuffle_f32x4(0xFFFF, x2, x3, 0x44),
                 t3 = _mm512_maskz_shuffle_f32x4(0xFFFF, x2, x3, 0xEE);
    x0 = _mm512_maskz_shuffle_f32x4(0xFFFF, t0, t2, 0x88);
    x1 = _mm512_maskz_shuffle_f32x4(0xFFFF, t0, t2, 0xDD);
    x2 = _mm512_maskz_shuffle_f32x4(0xFFFF, t1, t3, 0x88);
    x3 = _mm512_maskz_shuffle_f32x4(0xFFFF, t1, t3, 0xDD);
}

// _MM_TRANSPOSE4_PS in each 128-bit block. As in the block transpose above, the zero-masked
// forms with every lane set are the plain instructions without GCC 12's false warning.
[[gnu::target("avx512f")]] inline void transposeInBlocks(__m512& r0, __m512& r1, __m512& r2,
                                                         __m512& r3) {
    const __m512d t0 = _mm512_castps_pd(_mm512_maskz_unpacklo_ps(0xFFFF, r0, r1));
    const __m512d t1 = _mm512_castps_pd(_mm512_maskz_unpackhi_ps(0xFFFF, r0, r1));
    const __m512d t2 = _mm512_castps_pd(_mm512_maskz_unpacklo_ps(0xFFFF, r2, r3));
    const __m512d t3 = _mm512_castps_pd(_mm512_maskz_unpackhi_ps(0xFFFF, r2, r3));
    r0 = _mm512_castpd_ps(_mm512_maskz_unpacklo_pd(0xFF, t0, t2));
    r1 = _mm512_castpd_ps(_mm512_maskz_unpackhi_pd(0xFF, t0, t2));
    r2 = _mm512_castpd_ps(_mm512_maskz_unpacklo_pd(0xFF, t1, t3));
    r3 = _mm512_castpd_ps(_mm512_maskz_unpackhi_pd(0xFF, t1, t3));
}

[[gnu::target("avx512f")]] void regroupTile(const float* re, const float* im, size_t mid,
                                            size_t rowStride, Regrouped& g) {
    constexpr size_t roles[4] = {0, 8, 4, 12};
    const float* parts[2] = {re + mid * kTile, im + mid * kTile};
    for (size_t part = 0; part < 2; ++part) {
        for (size_t role = 0; role < 4; ++role) {
            const float* row = parts[part] + roles[role] * rowStride;
            // Rows R + rev2(0 ... 3) = R, R + 2, R + 1, R + 3.
            __m512 x0 = _mm512_loadu_ps(row), x1 = _mm512_loadu_ps(row + 2 * rowStride);
            __m512 x2 = _mm512_loadu_ps(row + rowStride), x3 = _mm512_loadu_ps(row + 3 * rowStride);
            transposeBlocks(x0, x1, x2, x3);
            _mm512_store_ps(g.v[part][role][0], x0);
            _mm512_store_ps(g.v[part][role][1], x1);
            _mm512_store_ps(g.v[part][role][2], x2);
            _mm512_store_ps(g.v[part][role][3], x3);
        }
    }
}

[[gnu::target("avx512f")]] void writeRegroupedTile(float* re, float* im, size_t mid,
                                                   size_t rowStride, const Regrouped& g,
                                                   float sign) {
    constexpr size_t rev2[4] = {0, 2, 1, 3};
    const __m512 s = _mm512_set1_ps(sign);
    float* outR = re + mid * kTile;
    float* outI = im + mid * kTile;
    for (size_t q = 0; q < 4; ++q) {
        const size_t j = rev2[q];
        __m512 r0 = _mm512_load_ps(g.v[0][0][j]), r1 = _mm512_load_ps(g.v[0][1][j]);
        __m512 r2 = _mm512_load_ps(g.v[0][2][j]), r3 = _mm512_load_ps(g.v[0][3][j]);
        __m512 x0 = _mm512_load_ps(g.v[1][0][j]), x1 = _mm512_load_ps(g.v[1][1][j]);
        __m512 x2 = _mm512_load_ps(g.v[1][2][j]), x3 = _mm512_load_ps(g.v[1][3][j]);
        radix4Lanes(r0, r1, r2, r3, x0, x1, x2, x3, s);
        transposeInBlocks(r0, r1, r2, r3);
        transposeInBlocks(x0, x1, x2, x3);
        // Vector e is output row 4 rev2(e) + q.
        _mm512_storeu_ps(outR + q * rowStride, r0), _mm512_storeu_ps(outI + q * rowStride, x0);
        _mm512_storeu_ps(outR + (8 + q) * rowStride, r1);
        _mm512_storeu_ps(outI + (8 + q) * rowStride, x1);
        _mm512_storeu_ps(outR + (4 + q) * rowStride, r2);
        _mm512_storeu_ps(outI + (4 + q) * rowStride, x2);
        _mm512_storeu_ps(outR + (12 + q) * rowStride, r3);
        _mm512_storeu_ps(outI + (12 + q) * rowStride, x3);
    }
}

#endif

void writeTileAnyWidth(float* re, float* im, size_t mid, size_t width, size_t rowStride,
                       const uint8_t* rev, const Tile& from, float sign) {
#ifdef ZOLT_PERMUTATION_X86
    if (width == kTile) return writeFullTile(re, im, mid, rowStride, from, sign);
#endif
    writeTile(re, im, mid, width, rowStride, rev, from, sign);
}

}  // namespace

void bitReverseWithRadix4(float* re, float* im, size_t n, float sign) {
    unsigned bits = 0;
    while ((size_t{1} << bits) < n) ++bits;
    // Rows of at least four points keep each radix-4 group inside one row.
    const unsigned edge = bits >= 2 * kTileBits ? kTileBits : bits / 2;
    if (edge < 2) {
        // n = 4 or 8: one group per four points, permuted by the same rule.
        float r[8], x[8];
        for (size_t i = 0; i < n; ++i) {
            r[i] = re[reverseBits(uint32_t(i), bits)];
            x[i] = im[reverseBits(uint32_t(i), bits)];
        }
        for (size_t g = 0; g < n; g += 4) radix4(r + g, x + g, re + g, im + g, sign);
        return;
    }
    const size_t width = size_t{1} << edge;
    const unsigned midBits = bits - 2 * edge;
    const size_t mids = size_t{1} << midBits;
    const size_t rowStride = n >> edge;
    std::array<uint8_t, kTile> rev{};
    for (size_t k = 0; k < width; ++k) rev[k] = uint8_t(reverseBits(uint32_t(k), edge));

#ifdef ZOLT_PERMUTATION_X86
    // Full tiles on sixteen lanes, each regrouped as it is read, so no plain copy is made.
    if (width == kTile && vectorKernels() == VectorKernels::Avx512)
        return exchangeTilePairs<Regrouped>(
            mids, midBits, [&](size_t m, Regrouped& g) { regroupTile(re, im, m, rowStride, g); },
            [&](size_t m, const Regrouped& g) {
                writeRegroupedTile(re, im, m, rowStride, g, sign);
            });
#endif
    exchangeTilePairs<Tile>(
        mids, midBits, [&](size_t m, Tile& t) { readTile(re, im, m, width, rowStride, t); },
        [&](size_t m, const Tile& t) {
            writeTileAnyWidth(re, im, m, width, rowStride, rev.data(), t, sign);
        });
}

}  // namespace zolt

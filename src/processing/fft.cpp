#include "processing/fft.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "processing/fft_permutation.h"
#include "processing/fft_twiddles.h"
#include "processing/vector_kernels.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace zolt {
namespace {

// Twiddles are generated for this many butterflies at a time and then applied to every group
// of the stage, so that a stage walks memory in long runs instead of one stride-2h sweep per
// twiddle quad; the values are those of stepping w across the whole stage.
constexpr size_t kTwiddleBlock = 256;
// Stages whose groups fit in a block of this many points run block by block while the block
// stays in cache (2 x 64 KB), before the wider stages sweep the whole array.
constexpr size_t kCacheSpan = size_t{1} << 14;

// A stage's twiddles offset, offset + 1, ... block by block: read from its table, or
// streamed into a buffer when the stage is too wide to keep one.
class TwiddleBlocks {
public:
    TwiddleBlocks(size_t stage, int direction, StageAngle a, size_t offset)
        : table_(twiddleTable(stage, direction)), stream_(a), at_(offset) {
        if (!table_.re) stream_.skip(offset);
    }
    // The next count twiddles.
    void next(size_t count, const double*& re, const double*& im) {
        if (table_.re) {
            re = table_.re + at_;
            im = table_.im + at_;
        } else {
            stream_.next(bufR_, bufI_, count);
            re = bufR_;
            im = bufI_;
        }
        at_ += count;
    }

private:
    TwiddleTable table_;
    TwiddleStream stream_;
    size_t at_;
    alignas(64) double bufR_[kTwiddleBlock], bufI_[kTwiddleBlock];
};

// a + w b and a - w b, in place.
template <typename D>
[[gnu::always_inline]] inline void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr, const D& wi) {
    const D tr = wr * br - wi * bi;
    const D ti = wr * bi + wi * br;
    br = ar - tr;
    bi = ai - ti;
    ar = ar + tr;
    ai = ai + ti;
}

// Lane packs for the butterflies: samples widened to double for the twiddle product and the
// sums, and rounded back to float when stored, exactly as a scalar butterfly would. Packs
// travel by reference so that no wide vector crosses a call boundary.
#if defined(__x86_64__) && defined(__GNUC__)
#define ZOLT_FFT_X86 1
struct Sse2Pack {
    using D = __m128d;
    static constexpr size_t width = 2;
    static constexpr size_t groups = 1;
    static void load(const float* p, D& d) {
        d = _mm_cvtps_pd(_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(p))));
    }
    static void load(const double* p, D& d) { d = _mm_loadu_pd(p); }
    static void store(float* p, const D& d) {
        _mm_store_sd(reinterpret_cast<double*>(p), _mm_castps_pd(_mm_cvtpd_ps(d)));
    }
    static void roundToFloat(D& d) { d = _mm_cvtps_pd(_mm_cvtpd_ps(d)); }
    static void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr, const D& wi) {
        zolt::butterfly(ar, ai, br, bi, wr, wi);
    }
};

// Compiled for AVX only where it is used: the kernels below are inlined into an AVX entry
// point, chosen at run time, and these loads and stores are inlined there with them.
struct AvxPack {
    using D = __m256d;
    static constexpr size_t width = 4;
    static constexpr size_t groups = 1;
    [[gnu::target("avx")]] static inline void load(const float* p, D& d) {
        d = _mm256_cvtps_pd(_mm_loadu_ps(p));
    }
    [[gnu::target("avx")]] static inline void load(const double* p, D& d) {
        d = _mm256_loadu_pd(p);
    }
    [[gnu::target("avx")]] static inline void store(float* p, const D& d) {
        _mm_storeu_ps(p, _mm256_cvtpd_ps(d));
    }
    [[gnu::target("avx")]] static inline void roundToFloat(D& d) {
        d = _mm256_cvtps_pd(_mm256_cvtpd_ps(d));
    }
    [[gnu::target("avx")]] static inline void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr,
                                                        const D& wi) {
        zolt::butterfly(ar, ai, br, bi, wr, wi);
    }
};

// The same butterfly, with four of its six sums done by the multiply-add unit as x * (+-1) + y:
// the product is exact, so each is still one correctly rounded sum, and the sums no longer queue
// with the float-double conversions on the adders (measured faster than six plain adds). The
// products are hidden from the optimiser so that none of them can be fused into the sums.
struct AvxFmaPack : AvxPack {
    [[gnu::target("avx,fma")]] static inline void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr,
                                                            const D& wi) {
        const D one = _mm256_set1_pd(1.0), minusOne = _mm256_set1_pd(-1.0);
        D p1 = _mm256_mul_pd(wr, br), p2 = _mm256_mul_pd(wi, bi);
        D p3 = _mm256_mul_pd(wr, bi), p4 = _mm256_mul_pd(wi, br);
        asm("" : "+x"(p1), "+x"(p2), "+x"(p3), "+x"(p4));
        const D tr = _mm256_fmadd_pd(p2, minusOne, p1);  // p1 - p2
        const D ti = _mm256_fmadd_pd(p3, one, p4);       // p3 + p4
        br = _mm256_fmadd_pd(tr, minusOne, ar);          // ar - tr
        bi = _mm256_fmadd_pd(ti, minusOne, ai);          // ai - ti
        ar = _mm256_add_pd(ar, tr);
        ai = _mm256_add_pd(ai, ti);
    }
};

// Eight lanes: the same loads, sums and rounding as the four-lane pack with multiply-add. The
// conversions are the zero-masked forms with every lane set, which are the plain instructions
// but spare GCC 12 its false warning about the undefined source of the unmasked ones.
struct Avx512Pack {
    using D = __m512d;
    static constexpr size_t width = 8;
    static constexpr size_t groups = 1;
    [[gnu::target("avx512f")]] static inline void load(const float* p, D& d) {
        d = _mm512_maskz_cvtps_pd(0xFF, _mm256_loadu_ps(p));
    }
    [[gnu::target("avx512f")]] static inline void load(const double* p, D& d) {
        d = _mm512_loadu_pd(p);
    }
    [[gnu::target("avx512f")]] static inline void store(float* p, const D& d) {
        _mm256_storeu_ps(p, _mm512_maskz_cvtpd_ps(0xFF, d));
    }
    [[gnu::target("avx512f")]] static inline void roundToFloat(D& d) {
        d = _mm512_maskz_cvtps_pd(0xFF, _mm512_maskz_cvtpd_ps(0xFF, d));
    }
    [[gnu::target("avx512f")]] static inline void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr,
                                                            const D& wi) {
        const D one = _mm512_set1_pd(1.0), minusOne = _mm512_set1_pd(-1.0);
        D p1 = _mm512_mul_pd(wr, br), p2 = _mm512_mul_pd(wi, bi);
        D p3 = _mm512_mul_pd(wr, bi), p4 = _mm512_mul_pd(wi, br);
        asm("" : "+v"(p1), "+v"(p2), "+v"(p3), "+v"(p4));
        const D tr = _mm512_fmadd_pd(p2, minusOne, p1);  // p1 - p2
        const D ti = _mm512_fmadd_pd(p3, one, p4);       // p3 + p4
        br = _mm512_fmadd_pd(tr, minusOne, ar);          // ar - tr
        bi = _mm512_fmadd_pd(ti, minusOne, ai);          // ai - ti
        ar = _mm512_add_pd(ar, tr);
        ai = _mm512_add_pd(ai, ti);
    }
};

// The stage pair of half-spans 4 and 8 on eight lanes: two groups of 16 points side by side,
// lanes 0-3 from one group and 4-7 from the next, both with the same four twiddles. Each lane
// does the arithmetic of the four-lane pack, and the conversions, which bound these kernels,
// are shared by twice as many points.
struct Avx512TwoGroupPack : Avx512Pack {
    static constexpr size_t groups = 2;
    static constexpr size_t groupStride = 16;
    [[gnu::target("avx512f")]] static inline void load(const float* p, D& d) {
        const __m256 v = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(p)),
                                              _mm_loadu_ps(p + groupStride), 1);
        d = _mm512_maskz_cvtps_pd(0xFF, v);
    }
    [[gnu::target("avx512f")]] static inline void load(const double* p, D& d) {
        d = _mm512_maskz_broadcast_f64x4(0xFF, _mm256_loadu_pd(p));
    }
    [[gnu::target("avx512f")]] static inline void store(float* p, const D& d) {
        const __m256 v = _mm512_maskz_cvtpd_ps(0xFF, d);
        _mm_storeu_ps(p, _mm256_castps256_ps128(v));
        _mm_storeu_ps(p + groupStride, _mm256_extractf128_ps(v, 1));
    }
};
#else
struct ScalarPack {
    using D = double;
    static constexpr size_t width = 1;
    static constexpr size_t groups = 1;
    static void load(const float* p, D& d) { d = *p; }
    static void load(const double* p, D& d) { d = *p; }
    static void store(float* p, const D& d) { *p = static_cast<float>(d); }
    static void roundToFloat(D& d) { d = static_cast<float>(d); }
    static void butterfly(D& ar, D& ai, D& br, D& bi, const D& wr, const D& wi) {
        zolt::butterfly(ar, ai, br, bi, wr, wi);
    }
};
#endif

// One radix-2 stage of half-span h over len points.
template <typename P>
[[gnu::always_inline]] inline void radix2Stage(float* __restrict re, float* __restrict im,
                                               size_t len, size_t k, int direction, StageAngle a) {
    using D = typename P::D;
    const size_t h = size_t{4} << k;
    TwiddleBlocks w(k, direction, a, 0);
    const size_t block = std::min(h, kTwiddleBlock);
    for (size_t m = 0; m < h; m += block) {
        const double *twr, *twi;
        w.next(block, twr, twi);
        for (size_t g = m; g < len; g += 2 * h) {
            for (size_t q = 0; q < block; q += P::width) {
                const size_t i = g + q, j = i + h;
                D ar, ai, br, bi, wr, wi;
                P::load(re + i, ar), P::load(im + i, ai), P::load(re + j, br), P::load(im + j, bi);
                P::load(twr + q, wr), P::load(twi + q, wi);
                P::butterfly(ar, ai, br, bi, wr, wi);
                P::store(re + i, ar), P::store(im + i, ai);
                P::store(re + j, br), P::store(im + j, bi);
            }
        }
    }
}

// The stages of half-spans h and 2h in one sweep over len points: the four quarters of each
// group of 4h go through stage h, are rounded to float as if stored, then through stage 2h,
// whose twiddles for the second quarter are those h places further on.
template <typename P>
[[gnu::always_inline]] inline void radix2StagePair(float* __restrict re, float* __restrict im,
                                                   size_t len, size_t k, int direction,
                                                   StageAngle a, StageAngle b) {
    using D = typename P::D;
    const size_t h = size_t{4} << k;
    TwiddleBlocks w1(k, direction, a, 0), w2(k + 1, direction, b, 0), w3(k + 1, direction, b, h);
    const size_t block = std::min(h, kTwiddleBlock);
    for (size_t m = 0; m < h; m += block) {
        const double *w1r, *w1i, *w2r, *w2i, *w3r, *w3i;
        w1.next(block, w1r, w1i);
        w2.next(block, w2r, w2i);
        w3.next(block, w3r, w3i);
        for (size_t g = m; g < len; g += 4 * h * P::groups) {
            for (size_t q = 0; q < block; q += P::width / P::groups) {
                const size_t i0 = g + q, i1 = i0 + h, i2 = i1 + h, i3 = i2 + h;
                D r0, x0, r1, x1, r2, x2, r3, x3, wr, wi;
                P::load(re + i0, r0), P::load(im + i0, x0), P::load(re + i1, r1);
                P::load(im + i1, x1), P::load(re + i2, r2), P::load(im + i2, x2);
                P::load(re + i3, r3), P::load(im + i3, x3);
                P::load(w1r + q, wr), P::load(w1i + q, wi);
                P::butterfly(r0, x0, r1, x1, wr, wi);
                P::butterfly(r2, x2, r3, x3, wr, wi);
                P::roundToFloat(r0), P::roundToFloat(x0), P::roundToFloat(r1);
                P::roundToFloat(x1), P::roundToFloat(r2), P::roundToFloat(x2);
                P::roundToFloat(r3), P::roundToFloat(x3);
                P::load(w2r + q, wr), P::load(w2i + q, wi);
                P::butterfly(r0, x0, r2, x2, wr, wi);
                P::load(w3r + q, wr), P::load(w3i + q, wi);
                P::butterfly(r1, x1, r3, x3, wr, wi);
                P::store(re + i0, r0), P::store(im + i0, x0), P::store(re + i1, r1);
                P::store(im + i1, x1), P::store(re + i2, r2), P::store(im + i2, x2);
                P::store(re + i3, r3), P::store(im + i3, x3);
            }
        }
    }
}

// Stages first ... last-1 (stage k has half-span 4 << k) over len points, two at a time. The
// stages whose half-span is below P's width go to the narrow packs: N for a pair, S for a
// stage alone.
template <typename P, typename N, typename S>
[[gnu::always_inline]] inline void radix2Stages(float* re, float* im, size_t len, int direction,
                                                const StageAngle* angles, size_t first,
                                                size_t last) {
    size_t k = first;
    for (; k + 1 < last; k += 2) {
        if ((size_t{4} << k) < P::width)
            radix2StagePair<N>(re, im, len, k, direction, angles[k], angles[k + 1]);
        else
            radix2StagePair<P>(re, im, len, k, direction, angles[k], angles[k + 1]);
    }
    if (k < last) {
        if ((size_t{4} << k) < P::width)
            radix2Stage<S>(re, im, len, k, direction, angles[k]);
        else
            radix2Stage<P>(re, im, len, k, direction, angles[k]);
    }
}

// The radix-2 stages after the permutation and its radix-4 pass. The stages whose groups of 2h
// fit in a cache span run span by span; the wider stages then sweep the whole array.
template <typename P, typename N = P, typename S = N>
[[gnu::always_inline]] inline void butterflyPasses(float* re, float* im, size_t n, int direction,
                                                   const StageAngle* angles, size_t stages) {
    const size_t span = std::min(n, kCacheSpan);
    size_t local = 0;
    while ((size_t{8} << local) <= span) ++local;
    for (size_t start = 0; start < n; start += span) {
        radix2Stages<P, N, S>(re + start, im + start, span, direction, angles, 0, local);
    }
    radix2Stages<P, N, S>(re, im, n, direction, angles, local, stages);
}

#ifdef ZOLT_FFT_X86
[[gnu::target("avx512f,avx,fma")]] void butterflyPassesAvx512(float* re, float* im, size_t n,
                                                              int direction,
                                                              const StageAngle* angles,
                                                              size_t stages) {
    butterflyPasses<Avx512Pack, Avx512TwoGroupPack, AvxFmaPack>(re, im, n, direction, angles,
                                                                stages);
}

[[gnu::target("avx,fma")]] void butterflyPassesAvxFma(float* re, float* im, size_t n, int direction,
                                                      const StageAngle* angles, size_t stages) {
    butterflyPasses<AvxFmaPack>(re, im, n, direction, angles, stages);
}

[[gnu::target("avx")]] void butterflyPassesAvx(float* re, float* im, size_t n, int direction,
                                               const StageAngle* angles, size_t stages) {
    butterflyPasses<AvxPack>(re, im, n, direction, angles, stages);
}
#endif

void butterflyPassesAnyCpu(float* re, float* im, size_t n, int direction, const StageAngle* angles,
                           size_t stages) {
#ifdef ZOLT_FFT_X86
    // Four-lane kernels need at least 4 points per half-span, which h >= 4 guarantees. The
    // eight-lane ones take the stages of h = 4 two groups of 16 at a time, so from 32 points.
    const VectorKernels kernels = vectorKernels();
    if (kernels == VectorKernels::Avx512 && n >= 32)
        return butterflyPassesAvx512(re, im, n, direction, angles, stages);
    if (kernels >= VectorKernels::AvxFma)
        return butterflyPassesAvxFma(re, im, n, direction, angles, stages);
    if (kernels == VectorKernels::Avx)
        return butterflyPassesAvx(re, im, n, direction, angles, stages);
    butterflyPasses<Sse2Pack>(re, im, n, direction, angles, stages);
#else
    butterflyPasses<ScalarPack>(re, im, n, direction, angles, stages);
#endif
}

}  // namespace

void fft(float* re, float* im, size_t n, int direction) {
    if (n < 4 || n > kMaxFftSize || (n & (n - 1)) != 0) return;
    const float sign = direction > 0 ? 1.0f : -1.0f;
    bitReverseWithRadix4(re, im, n, sign);

    size_t stages = 0;
    while ((size_t{8} << stages) <= n) ++stages;
    const auto angles = stageAngles(direction);
    butterflyPassesAnyCpu(re, im, n, direction, angles.data(), stages);
}

void unscrambleRealFt(float* re, float* im, size_t n) {
    if (n < 2) return;
    const double theta = std::numbers::pi / static_cast<double>(n);
    const double c = std::cos(theta), s = std::sin(theta);
    double p = c / 2.0, q = s / 2.0;
    for (size_t i = 1, j = n - 1; i < j; ++i, --j) {
        // Even and odd halves of the packed transform, the odd one turned by e^{i pi k/n}.
        const double r = (static_cast<double>(re[j]) + re[i]) / 2.0;
        const double iv = (static_cast<double>(im[i]) - im[j]) / 2.0;
        const double a = static_cast<double>(im[i]) + im[j];
        const double b = static_cast<double>(re[j]) - re[i];
        const double u = a * p - b * q;
        const double v = b * p + a * q;
        re[i] = static_cast<float>(u + r);
        im[i] = static_cast<float>(iv + v);
        re[j] = static_cast<float>(r - u);
        im[j] = static_cast<float>(v - iv);
        const double np = p * c - q * s;
        q = q * c + p * s;
        p = np;
    }
    re[0] = re[0] + im[0];
    im[0] = 0.0f;
}

void hilbertRow(const float* re, float* im, size_t n, float* scratch) {
    for (size_t k = 0; k < n; ++k) im[k] = 0.0f;
    if (n < 32 || n > kMaxFftSize || (n & (n - 1)) != 0) return;
    for (size_t k = 0; k < n; ++k) scratch[k] = re[k];
    fft(scratch, im, n, -1);
    // Keep the positive frequencies only, doubled and divided by n; point 0 counts once.
    scratch[0] *= 0.5f;
    im[0] *= 0.5f;
    const float scale = static_cast<float>(2.0 / static_cast<double>(n));
    for (size_t k = 0; k < n / 2; ++k) {
        scratch[k] *= scale;
        im[k] *= scale;
    }
    for (size_t k = n / 2; k < n; ++k) {
        scratch[k] = 0.0f;
        im[k] = 0.0f;
    }
    fft(scratch, im, n, +1);
}

}  // namespace zolt

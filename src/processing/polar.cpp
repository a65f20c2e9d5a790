#include "processing/polar.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZOLT_POLAR_AVX512 1
#endif

#include "processing/row_parallel.h"
#include "processing/vector_kernels.h"

namespace zolt {
namespace {

// The phase is atan2 in double rounded to float. A rational approximation in double comes
// within about 2^-52 of it (measured); if both ends of that value widened by a far larger
// bound, 2^-44, round to the same float, so does the library's atan2, which lies inside.
// Otherwise, and for zeros, infinities and NaNs, the library decides: about one point in 2^19
// of random data, and every point on an axis.
constexpr double kAngleBound = 0x1p-44;

// atan(u) = u + u z P(z) / Q(z), z = u^2, for |u| <= 0.66.
constexpr double kP[5] = {-8.750608600031904122785e-1, -1.615753718733365076637e1,
                          -7.500855792314704667340e1, -1.228866684490136173410e2,
                          -6.485021904942025371773e1};
constexpr double kQ[5] = {2.485846490142306297962e1, 1.650270098316988542046e2,
                          4.328810604912902668951e2, 4.853903996359136964868e2,
                          1.945506571482613964425e2};
constexpr double kPi = std::numbers::pi, kHalfPi = kPi / 2, kQuarterPi = kPi / 4;

float libraryAngle(float re, float im) {
    return static_cast<float>(std::atan2(static_cast<double>(im), static_cast<double>(re)));
}

// The phase of one point: the approximation folded from [0, 1] into its octant, then the
// rounding test.
float polarAngle(float re, float im) {
    const double a = re, b = im, x = std::fabs(a), y = std::fabs(b);
    if (!(x < HUGE_VAL && y < HUGE_VAL) || x == 0.0 || y == 0.0) return libraryAngle(re, im);
    const bool swap = y > x;
    const double t = swap ? x / y : y / x;
    const bool big = t > 0.66;
    const double u = big ? (t - 1.0) / (t + 1.0) : t, z = u * u;
    const double p = (((kP[0] * z + kP[1]) * z + kP[2]) * z + kP[3]) * z + kP[4];
    const double q = ((((z + kQ[0]) * z + kQ[1]) * z + kQ[2]) * z + kQ[3]) * z + kQ[4];
    double r = u + u * z * p / q;
    if (big) r = kQuarterPi + r;
    if (swap) r = kHalfPi - r;
    if (a < 0.0) r = kPi - r;
    if (b < 0.0) r = -r;
    const double d = std::fabs(r) * kAngleBound;
    const float low = static_cast<float>(r - d), high = static_cast<float>(r + d);
    return low == high ? low : libraryAngle(re, im);
}

void toPolarPoints(float* re, float* im, size_t count) {
    for (size_t k = 0; k < count; ++k) {
        const double a = re[k], b = im[k];
        const float angle = polarAngle(re[k], im[k]);
        re[k] = static_cast<float>(std::sqrt(a * a + b * b));
        im[k] = angle;
    }
}

#ifdef ZOLT_POLAR_AVX512
// Eight points at a time by the same steps. The squares of the modulus are kept from being
// fused into its sum; the approximation's may be, which moves it far less than the bound. The
// zero-masked forms with every lane set are the plain instructions without GCC 12's false warning
// about their undefined sources.
[[gnu::target("avx512f")]] void toPolarAvx512(float* re, float* im, size_t count) {
    const __m512d zero = _mm512_setzero_pd(), one = _mm512_set1_pd(1.0);
    const __m512d infinity = _mm512_set1_pd(HUGE_VAL);
    size_t k = 0;
    for (; k + 8 <= count; k += 8) {
        const __m256 fa = _mm256_loadu_ps(re + k), fb = _mm256_loadu_ps(im + k);
        const __m512d a = _mm512_maskz_cvtps_pd(0xFF, fa), b = _mm512_maskz_cvtps_pd(0xFF, fb);
        __m512d aa = _mm512_mul_pd(a, a), bb = _mm512_mul_pd(b, b);
        asm("" : "+v"(aa), "+v"(bb));
        const __m256 modulus =
            _mm512_maskz_cvtpd_ps(0xFF, _mm512_maskz_sqrt_pd(0xFF, _mm512_add_pd(aa, bb)));

        const __m512d x = _mm512_abs_pd(a), y = _mm512_abs_pd(b);
        const __mmask8 usable = _mm512_cmp_pd_mask(x, infinity, _CMP_LT_OQ) &
                                _mm512_cmp_pd_mask(y, infinity, _CMP_LT_OQ) &
                                _mm512_cmp_pd_mask(x, zero, _CMP_NEQ_OQ) &
                                _mm512_cmp_pd_mask(y, zero, _CMP_NEQ_OQ);
        const __mmask8 swap = _mm512_cmp_pd_mask(y, x, _CMP_GT_OQ);
        const __m512d t =
            _mm512_div_pd(_mm512_mask_blend_pd(swap, y, x), _mm512_mask_blend_pd(swap, x, y));
        const __mmask8 big = _mm512_cmp_pd_mask(t, _mm512_set1_pd(0.66), _CMP_GT_OQ);
        const __m512d u = _mm512_mask_blend_pd(
            big, t, _mm512_div_pd(_mm512_sub_pd(t, one), _mm512_add_pd(t, one)));
        const __m512d z = _mm512_mul_pd(u, u);
        __m512d p = _mm512_set1_pd(kP[0]), q = _mm512_add_pd(z, _mm512_set1_pd(kQ[0]));
        for (int i = 1; i < 5; ++i) {
            p = _mm512_add_pd(_mm512_mul_pd(p, z), _mm512_set1_pd(kP[i]));
            q = _mm512_add_pd(_mm512_mul_pd(q, z), _mm512_set1_pd(kQ[i]));
        }
        __m512d r = _mm512_add_pd(u, _mm512_div_pd(_mm512_mul_pd(_mm512_mul_pd(u, z), p), q));
        r = _mm512_mask_add_pd(r, big, _mm512_set1_pd(kQuarterPi), r);
        r = _mm512_mask_sub_pd(r, swap, _mm512_set1_pd(kHalfPi), r);
        r = _mm512_mask_sub_pd(r, _mm512_cmp_pd_mask(a, zero, _CMP_LT_OQ), _mm512_set1_pd(kPi), r);
        r = _mm512_mask_sub_pd(r, _mm512_cmp_pd_mask(b, zero, _CMP_LT_OQ), zero, r);

        const __m512d d = _mm512_mul_pd(_mm512_abs_pd(r), _mm512_set1_pd(kAngleBound));
        const __m256 low = _mm512_maskz_cvtpd_ps(0xFF, _mm512_sub_pd(r, d));
        const __m256 high = _mm512_maskz_cvtpd_ps(0xFF, _mm512_add_pd(r, d));
        const __mmask8 decided =
            usable & _mm512_cmp_pd_mask(_mm512_maskz_cvtps_pd(0xFF, low),
                                        _mm512_maskz_cvtps_pd(0xFF, high), _CMP_EQ_OQ);

        _mm256_storeu_ps(re + k, modulus);
        _mm256_storeu_ps(im + k, low);
        if (decided != 0xFF) {
            alignas(32) float ra[8], ib[8];
            _mm256_store_ps(ra, fa), _mm256_store_ps(ib, fb);
            for (int j = 0; j < 8; ++j)
                if (!(decided >> j & 1)) im[k + j] = libraryAngle(ra[j], ib[j]);
        }
    }
    toPolarPoints(re + k, im + k, count - k);
}
#endif

void toPolar(float* re, float* im, size_t count) {
#ifdef ZOLT_POLAR_AVX512
    if (vectorKernels() == VectorKernels::Avx512) return toPolarAvx512(re, im, count);
#endif
    toPolarPoints(re, im, count);
}

}  // namespace

void togglePolar(float* re, float* im, size_t count, bool toPolar) {
    if (!re || !im) return;
    // Point by point, so a matrix is shared out among the threads in pieces.
    constexpr size_t kPiece = 4096;
    forEachRowRange((count + kPiece - 1) / kPiece, 4, [&](size_t begin, size_t end) {
        const size_t first = begin * kPiece, last = std::min(count, end * kPiece);
        if (toPolar) return zolt::toPolar(re + first, im + first, last - first);
        for (size_t k = first; k < last; ++k) {
            const double a = re[k], b = im[k];
            re[k] = static_cast<float>(a * std::cos(b));
            im[k] = static_cast<float>(a * std::sin(b));
        }
    });
}

}  // namespace zolt

#include "processing/fft.h"

#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace zolt {
namespace {

// cos(pi / 2^(k+2)) for k = 0 ... 17 by the half-angle identity cos x = sqrt(2 + 2 cos 2x) / 2;
// one entry per radix-2 stage, which is what bounds the length to 2^20.
const std::array<double, 18>& cosineTable() {
    static const std::array<double, 18> table = [] {
        std::array<double, 18> c{};
        c[0] = std::sqrt(2.0) / 2.0;
        for (size_t k = 1; k < c.size(); ++k) c[k] = std::sqrt(2.0 + 2.0 * c[k - 1]) / 2.0;
        return c;
    }();
    return table;
}

// Twiddles are generated for this many butterflies at a time and then applied to every group
// of the stage, so that a stage walks memory in long runs instead of one stride-2h sweep per
// twiddle quad; the values are the same as stepping w across the whole stage.
constexpr size_t kTwiddleBlock = 256;

void bitReverse(float* __restrict re, float* __restrict im, size_t n) {
    size_t j = 0;
    for (size_t i = 1; i < n; ++i) {
        size_t m = n >> 1;
        while (j >= m && m >= 2) {
            j -= m;
            m >>= 1;
        }
        j += m;
        if (j > i) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
    }
}

// The first two radix-2 stages fused: each group of four becomes its 4-point transform; the
// odd pair is turned by +i (direction +1) or -i (direction -1).
void radix4Pass(float* __restrict re, float* __restrict im, size_t n, float sign) {
    for (size_t g = 0; g < n; g += 4) {
        const float ar = re[g], ai = im[g], br = re[g + 1], bi = im[g + 1];
        const float cr = re[g + 2], ci = im[g + 2], dr = re[g + 3], di = im[g + 3];
        const float sr = ar + br, si = ai + bi, tr = ar - br, ti = ai - bi;
        const float ur = cr + dr, ui = ci + di, vr = cr - dr, vi = ci - di;
        re[g] = sr + ur;
        im[g] = si + ui;
        re[g + 1] = tr - sign * vi;
        im[g + 1] = ti + sign * vr;
        re[g + 2] = sr - ur;
        im[g + 2] = si - ui;
        re[g + 3] = tr + sign * vi;
        im[g + 3] = ti - sign * vr;
    }
}

// Butterflies a + w b, a - w b for `count` consecutive positions of every group of the stage,
// starting `offset` points into each upper half. Products and sums are taken in double.
template <size_t count>
void butterflies(float* __restrict re, float* __restrict im, size_t n, size_t h, size_t offset,
                 const double* __restrict wr, const double* __restrict wi) {
    for (size_t g = offset; g < n; g += 2 * h) {
        float* __restrict ar = re + g;
        float* __restrict ai = im + g;
        float* __restrict br = re + g + h;
        float* __restrict bi = im + g + h;
        for (size_t q = 0; q < count; ++q) {
            const double xr = br[q], xi = bi[q];
            const double tr = wr[q] * xr - wi[q] * xi;
            const double ti = wr[q] * xi + wi[q] * xr;
            const double yr = ar[q], yi = ai[q];
            ar[q] = static_cast<float>(yr + tr);
            ai[q] = static_cast<float>(yi + ti);
            br[q] = static_cast<float>(yr - tr);
            bi[q] = static_cast<float>(yi - ti);
        }
    }
}

template <size_t block>
void stage(float* re, float* im, size_t n, size_t h, double c, double s) {
    // e^{i theta} and its square, cube and fourth power, by complex multiplication.
    const double e1r = c, e1i = s;
    const double e2r = e1r * e1r - e1i * e1i, e2i = 2.0 * e1r * e1i;
    const double e3r = e2r * e1r - e2i * e1i, e3i = e2r * e1i + e2i * e1r;
    const double e4r = e2r * e2r - e2i * e2i, e4i = 2.0 * e2r * e2i;
    double wr = 1.0, wi = 0.0;
    alignas(64) double twr[block];
    alignas(64) double twi[block];
    for (size_t m = 0; m < h; m += block) {
        for (size_t q = 0; q < block; q += 4) {
            twr[q] = wr;
            twi[q] = wi;
            twr[q + 1] = wr * e1r - wi * e1i;
            twi[q + 1] = wr * e1i + wi * e1r;
            twr[q + 2] = wr * e2r - wi * e2i;
            twi[q + 2] = wr * e2i + wi * e2r;
            twr[q + 3] = wr * e3r - wi * e3i;
            twi[q + 3] = wr * e3i + wi * e3r;
            const double nr = wr * e4r - wi * e4i;
            wi = wr * e4i + wi * e4r;
            wr = nr;
        }
        butterflies<block>(re, im, n, h, m, twr, twi);
    }
}

}  // namespace

void fft(float* re, float* im, size_t n, int direction) {
    if (n < 4 || n > kMaxFftSize || (n & (n - 1)) != 0) return;
    bitReverse(re, im, n);
    radix4Pass(re, im, n, direction > 0 ? 1.0f : -1.0f);
    const auto& cosines = cosineTable();
    // sin(pi/h) from sin(2 pi/h) = 2 sin(pi/h) cos(pi/h), starting at sin(pi/2) = direction.
    double s = direction > 0 ? 1.0 : -1.0;
    size_t k = 0;
    for (size_t h = 4; h < n; h <<= 1, ++k) {
        const double c = cosines[k];
        s /= 2.0 * c;
        switch (h) {
            case 4:
                stage<4>(re, im, n, h, c, s);
                break;
            case 8:
                stage<8>(re, im, n, h, c, s);
                break;
            case 16:
                stage<16>(re, im, n, h, c, s);
                break;
            case 32:
                stage<32>(re, im, n, h, c, s);
                break;
            case 64:
                stage<64>(re, im, n, h, c, s);
                break;
            case 128:
                stage<128>(re, im, n, h, c, s);
                break;
            default:
                stage<kTwiddleBlock>(re, im, n, h, c, s);
                break;
        }
    }
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

#include "processing/fft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

#include "processing/vector_kernels.h"

namespace zolt {
namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;

// Recursive radix-2 reference in double, fast enough for the large sizes.
std::vector<Complex> referenceFft(const std::vector<Complex>& x, int sign) {
    const size_t n = x.size();
    if (n == 1) return x;
    std::vector<Complex> even(n / 2), odd(n / 2);
    for (size_t m = 0; m < n / 2; ++m) {
        even[m] = x[2 * m];
        odd[m] = x[2 * m + 1];
    }
    const auto e = referenceFft(even, sign), o = referenceFft(odd, sign);
    std::vector<Complex> out(n);
    for (size_t k = 0; k < n / 2; ++k) {
        const Complex t = std::polar(1.0, sign * 2.0 * kPi * double(k) / double(n)) * o[k];
        out[k] = e[k] + t;
        out[k + n / 2] = e[k] - t;
    }
    return out;
}

std::vector<Complex> randomSignal(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    std::vector<Complex> x(n);
    for (auto& v : x) v = Complex(u(rng), u(rng));
    return x;
}

// max |got - want| / max |want|
double relativeError(const std::vector<float>& re, const std::vector<float>& im,
                     const std::vector<Complex>& want, size_t count) {
    double worst = 0.0, scale = 0.0;
    for (size_t k = 0; k < count; ++k) {
        worst = std::max(worst, std::abs(Complex(re[k], im[k]) - want[k]));
        scale = std::max(scale, std::abs(want[k]));
    }
    return worst / scale;
}

double ownFftError(const std::vector<Complex>& x, int direction) {
    std::vector<float> re(x.size()), im(x.size());
    for (size_t m = 0; m < x.size(); ++m) {
        re[m] = float(x[m].real());
        im[m] = float(x[m].imag());
    }
    fft(re.data(), im.data(), x.size(), direction);
    return relativeError(re, im, referenceFft(x, direction), x.size());
}

TEST(Fft, MatchesDoublePrecisionTransformAtEverySize) {
    for (size_t n = 4; n <= (size_t{1} << 16); n *= 2)
        for (int direction : {-1, 1})
            EXPECT_LT(ownFftError(randomSignal(n, unsigned(n + direction)), direction), 1e-5)
                << "n = " << n << ", direction " << direction;
    EXPECT_LT(ownFftError(randomSignal(kMaxFftSize, 7), 1), 1e-5);  // the largest size
}

// An impulse gives a flat spectrum; e^{+2 pi i m/n} lands on the last point forward and on
// the second backward.
TEST(Fft, ImpulseAndSingleFrequencyInBothDirections) {
    const size_t n = 128;
    for (int direction : {1, -1}) {
        std::vector<float> re(n, 0.0f), im(n, 0.0f);
        re[0] = 1.0f;
        fft(re.data(), im.data(), n, direction);
        for (size_t k = 0; k < n; ++k) {
            EXPECT_FLOAT_EQ(re[k], 1.0f);
            EXPECT_FLOAT_EQ(im[k], 0.0f);
        }
        for (size_t m = 0; m < n; ++m) {
            re[m] = float(std::cos(2.0 * kPi * double(m) / double(n)));
            im[m] = float(std::sin(2.0 * kPi * double(m) / double(n)));
        }
        fft(re.data(), im.data(), n, direction);
        const size_t peak = direction > 0 ? n - 1 : 1;
        for (size_t k = 0; k < n; ++k) {
            EXPECT_NEAR(re[k], k == peak ? double(n) : 0.0, 1e-4) << k;
            EXPECT_NEAR(im[k], 0.0, 1e-4) << k;
        }
    }
}

// FNV-1a over the bits of the outputs, real parts then imaginary parts.
uint64_t outputFingerprint(const std::vector<float>& re, const std::vector<float>& im) {
    uint64_t h = 14695981039346656037ull;
    for (const auto* a : {&re, &im})
        for (float f : *a) {
            uint32_t bits;
            std::memcpy(&bits, &f, sizeof bits);
            for (int k = 0; k < 4; ++k) {
                h ^= (bits >> (8 * k)) & 0xFFu;
                h *= 1099511628211ull;
            }
        }
    return h;
}

// The fingerprints of the transforms of every length and direction against the pinned ones.
void expectPinnedOutputs(const uint64_t* pinned, int kernelSet) {
    size_t at = 0;
    for (unsigned bits = 2; bits <= 20; ++bits)
        for (int direction : {-1, 1}) {
            const size_t n = size_t{1} << bits;
            uint64_t state = uint64_t{bits} * 2 + (direction > 0);
            auto next = [&] {
                state = state * 6364136223846793005ull + 1442695040888963407ull;
                return float(int64_t(state >> 40) - (int64_t{1} << 23)) / float(1 << 23);
            };
            std::vector<float> re(n), im(n);
            for (size_t k = 0; k < n; ++k) {
                re[k] = next();
                im[k] = next();
            }
            fft(re.data(), im.data(), n, direction);
            EXPECT_EQ(outputFingerprint(re, im), pinned[at++])
                << "n = " << n << ", direction " << direction << ", kernel set " << kernelSet;
        }
}

// Every output bit of every length and direction is pinned, so that a reorganised kernel (a
// different permutation order, vector width or stage grouping) cannot change one stored point.
// Each set of vector kernels this processor runs must give them, so that a document processed
// on another machine keeps its numbers. The input comes from a 64-bit LCG, not a library
// distribution, to be the same everywhere.
TEST(Fft, OutputBitsArePinnedAtEveryLengthAndDirectionForEveryKernelSet) {
    const uint64_t pinned[] = {
        0x798dc14000d651f2ull, 0x03effe3a1d75c202ull, 0x48ce82773379e0d8ull, 0xe3e92fe622253b51ull,
        0xbc69756238e60f94ull, 0x324737eb0b8abf9full, 0x6ed1df8fb5567864ull, 0xb49ef4699c2acaf9ull,
        0xdc264dd174938b55ull, 0x1f18b717aaa8a2d9ull, 0xb1557f351e31214full, 0x1b2702865ea743a8ull,
        0x32f92717b1112e66ull, 0x0783907a46c747f9ull, 0x172120abce0ef2b2ull, 0xbac30062ccfe7b45ull,
        0x9d19d0f30e2f3f4cull, 0xecd45cfdbeee7093ull, 0x099c1baf9e273a24ull, 0x25b6572eb2b03568ull,
        0x2d9618dfa600df1full, 0xdde5fdac7ad3a09bull, 0x6a1fd7c84552264full, 0x8b4437914602aa27ull,
        0x4e65cd5e18a99ee8ull, 0x1b484815d89d3c6aull, 0xba8751cedfef292aull, 0x6576d2143c4a527full,
        0xc36106c9bb31948eull, 0xd02160bb6dfd0609ull, 0x8d2670bffa6a96c0ull, 0xbd2a1d434c26757cull,
        0xd83f3ce2a781da05ull, 0xe2bce0bc02d2ca31ull, 0xfae38d570e5378a0ull, 0x0688418971076bdeull,
        0x2261d95069fe83c2ull, 0x7761b11fa86bd00eull,
    };
    const VectorKernels widest = vectorKernels();
    for (auto kernels : {VectorKernels::Baseline, VectorKernels::Avx, VectorKernels::AvxFma,
                         VectorKernels::Avx512}) {
        if (kernels > widest) break;
        capVectorKernels(kernels);
        expectPinnedOutputs(pinned, static_cast<int>(kernels));
    }
    capVectorKernels(VectorKernels::Avx512);
}

TEST(Fft, InvalidLengthLeavesDataAlone) {
    std::vector<float> re{1, 2, 3, 4, 5, 6}, im(6, 0.0f);
    fft(re.data(), im.data(), 6, 1);
    EXPECT_EQ(re, (std::vector<float>{1, 2, 3, 4, 5, 6}));
    fft(re.data(), im.data(), 2, 1);
    EXPECT_EQ(re, (std::vector<float>{1, 2, 3, 4, 5, 6}));
}

TEST(RealFt, UnscrambledPackedTransformIsFirstHalfOfRealSpectrum) {
    for (size_t n : {size_t{4}, size_t{64}, size_t{4096}}) {
        std::mt19937 rng{unsigned(n)};
        std::uniform_real_distribution<float> u(-1.0f, 1.0f);
        std::vector<Complex> real(2 * n);
        std::vector<float> re(n), im(n);
        for (size_t m = 0; m < n; ++m) {
            re[m] = u(rng);
            im[m] = u(rng);
            real[2 * m] = re[m];
            real[2 * m + 1] = im[m];
        }
        fft(re.data(), im.data(), n, 1);
        unscrambleRealFt(re.data(), im.data(), n);
        EXPECT_LT(relativeError(re, im, referenceFft(real, 1), n), 1e-5) << n;
        EXPECT_EQ(im[0], 0.0f);
    }
}

// A cosine gains its sine as imaginary part; rows too short or not powers of two get zeros.
TEST(Hilbert, CosineGainsSineAndUnfitRowsGetZeros) {
    for (size_t n : {size_t{16}, size_t{32}, size_t{48}, size_t{2048}}) {
        std::vector<float> re(n), im(n, 5.0f), scratch(n);
        for (size_t m = 0; m < n; ++m) re[m] = float(std::cos(2.0 * kPi * 5.0 * double(m) / n));
        const auto before = re;
        hilbertRow(re.data(), im.data(), n, scratch.data());
        const bool fit = n >= 32 && (n & (n - 1)) == 0;
        for (size_t m = 0; m < n; ++m)
            EXPECT_NEAR(im[m], fit ? std::sin(2.0 * kPi * 5.0 * double(m) / n) : 0.0, 1e-5) << n;
        EXPECT_EQ(re, before);
    }
}

}  // namespace
}  // namespace zolt

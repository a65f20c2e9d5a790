// The costs the automatic phase correction minimises on one complex row. Each is built once
// from the row (copies of the values it reads) and then evaluated for trial phases (a, b): zero
// order a at the first point it holds, slope b per point.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zolt {

inline constexpr size_t kPhaseHalfLine = 20;  // points on either side of a line centre
// The centre may move by one point towards the phased maximum.
inline constexpr size_t kPhaseSliceSpan = 2 * kPhaseHalfLine + 3;

// Default criterion: minus the deepest negative point of the phased real part.
struct DeepestNegative {
    std::vector<float> re, im, blockMax;
    std::vector<uint32_t> order;  // blocks by decreasing modulus

    DeepestNegative(const float* r, const float* i, size_t count, bool conjugate);
    double operator()(double a, double b) const;
};

// Alternative criterion: the energy of the negative phased real values over the signal points,
// relative to the energy of their moduli.
struct NegativeSignal {
    std::vector<float> re, im;
    std::vector<uint8_t> mask;
    double norm = 0.0;

    NegativeSignal(const float* r, const float* i, size_t count, bool conjugate);
    double operator()(double a, double b) const;
};

// Peak criterion: the asymmetry of each phased line about its centre, over its modulus.
struct Asymmetry {
    struct Line {
        std::array<float, kPhaseSliceSpan> re{}, im{};
        size_t first = 0;  // index of re[0] along the axis
        double modulus = 0.0;
    };
    std::vector<Line> lines;

    // The line centred on q of a row (q - 21 ... q + 21 are read); lines of zero modulus at q
    // are left out.
    void add(const float* r, const float* i, size_t q, bool conjugate);
    double operator()(double a, double b) const;
};

}  // namespace zolt

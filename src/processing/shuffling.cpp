#include "processing/shuffling.h"

namespace zolt {

namespace {

void phaseSensitiveRow(float* re, float* im, float* re2, float* im2, size_t half) {
    for (size_t k = 0; k < half; ++k) {
        const float a = re[2 * k], b = re[2 * k + 1];
        const float c = im[2 * k], d = im[2 * k + 1];
        if (re2) {
            re2[k] = c;
            im2[k] = d;
        }
        re[k] = a;
        im[k] = b;
    }
}

// No factor of one half: E + A and A - E as they come.
void echoAntiEchoRow(float* re, float* im, float* re2, float* im2, size_t half) {
    for (size_t k = 0; k < half; ++k) {
        const float reE = re[2 * k], reA = re[2 * k + 1];
        const float imE = im[2 * k], imA = im[2 * k + 1];
        if (re2) {
            re2[k] = imA + imE;
            im2[k] = reE - reA;
        }
        re[k] = reA + reE;
        im[k] = imA - imE;
    }
}

}  // namespace

void shuffleRows(Shuffling mode, const ShuffleRows& s) {
    if (mode == Shuffling::None || !s.re || !s.im) return;
    const size_t half = s.n / 2;
    const bool second = s.re2 && s.im2;
    for (size_t r = 0; r < s.rows; ++r) {
        float* re = s.re + r * s.stride;
        float* im = s.im + r * s.stride;
        float* re2 = second ? s.re2 + r * s.stride2 : nullptr;
        float* im2 = second ? s.im2 + r * s.stride2 : nullptr;
        if (mode == Shuffling::PhaseSensitive)
            phaseSensitiveRow(re, im, re2, im2, half);
        else
            echoAntiEchoRow(re, im, re2, im2, half);
    }
}

}  // namespace zolt

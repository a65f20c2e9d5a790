#include "io/bruker/bruker_time_shift.h"

#include <array>
#include <cstdint>

namespace zolt {

namespace {

constexpr int kColumns = 21;

// Decimation factors of the first 20 columns; larger ones, up to 2048, use column 21.
constexpr std::array<int, kColumns - 1> kDecimations = {
    2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 64, 96, 128, 192, 256, 384, 512, 768, 1024, 1536};

// Twice the delay times the decimation, per firmware version 10 to 15.
constexpr int32_t kDoubledDelays[6][kColumns] = {
    {179,   201,   533,   709,   1097,  1449,  2225,  2929,   4481,   5889,  8993,
     11809, 18017, 23649, 36065, 47329, 72161, 94689, 144353, 189409, 288737},
    {184,   219,   384,   602,   852,   1668,  2312,   3368,   4656,   6768,  9344,
     13568, 18560, 27392, 36992, 50040, 73856, 110336, 147584, 220928, 295040},
    {184,   219,   384,   602,   852,   1668,  2292,   3369,   4616,   6768,  9264,
     13568, 18560, 27392, 36992, 50040, 73856, 110336, 147584, 220928, 295040},
    {11, 17, 23, 35, 47, 71, 95, 143, 191, 287, 383, 575},
    {60, 90, 118, 179, 244, 360, 492, 724, 980, 1444, 1958, 2886, 3912, 5768, 7820, 11532},
    {0, 110, 58, 152, 202, 318, 418, 642, 842, 1290, 1690, 2586, 3386},
};

}  // namespace

double digitalFilterDelay(int dspfvs, int decim, double grpdly) {
    if (dspfvs >= 20) return grpdly;
    if (dspfvs < 10 || dspfvs > 15 || decim < 2 || decim > 2048) return 0.0;
    // The first tabulated decimation not below DECIM: DECIM 5 shares the column of 6.
    int column = kColumns - 1;
    for (int c = 0; c < kColumns - 1; ++c) {
        if (kDecimations[c] >= decim) {
            column = c;
            break;
        }
    }
    return kDoubledDelays[dspfvs - 10][column] * 0.5 / decim;
}

}  // namespace zolt

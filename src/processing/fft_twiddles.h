// The twiddle factors of the radix-2 stages of the complex FFT.
#pragma once

#include <array>
#include <cstddef>

namespace zolt {

// The radix-2 stages: stage k has half-span 4 << k. Eighteen of them follow the radix-4 pass
// at the largest length, 2^20.
inline constexpr size_t kFftStages = 18;

// cos and sin of the stage angle pi/h.
struct StageAngle {
    double c = 1.0, s = 0.0;
};

// Stage k's angle: its cosine cos(pi / 2^(k+2)) from a table made by the half-angle identity
// cos x = sqrt(2 + 2 cos 2x) / 2, its sine by sin(2x) = 2 sin x cos x downwards from
// sin(pi/2) = direction (+1 or -1).
std::array<StageAngle, kFftStages> stageAngles(int direction);

// The twiddles of one stage in order: w = 1, then w e^{i theta}, w e^{2i theta},
// w e^{3i theta} by complex multiplication, and w advanced by e^{4i theta} per quad. Its code
// is out of line, in plain double arithmetic, so that no caller compiled for a wider
// instruction set can fuse its multiply-adds.
struct TwiddleStream {
    explicit TwiddleStream(StageAngle a);

    // The next count values (a multiple of 4).
    void next(double* __restrict tr, double* __restrict ti, size_t count);
    void skip(size_t count);

private:
    void advance();

    double e1r, e1i, e2r, e2i, e3r, e3i, e4r, e4i;
    double wr = 1.0, wi = 0.0;
};

// The whole twiddle stream of a stage, h values, kept once made.
struct TwiddleTable {
    const double* re = nullptr;
    const double* im = nullptr;
};

// The stages up to this one have tables (h <= 2^15, 2 x 1 MB for both directions); the wider
// ones, used once per transform, stream their twiddles instead.
inline constexpr size_t kTabledStages = 14;

// Stage k's table for the direction; empty when k >= kTabledStages.
TwiddleTable twiddleTable(size_t stage, int direction);

}  // namespace zolt

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
// w e^{3i theta} by complex multiplication, and w advanced by e^{4i theta} per quad.
struct TwiddleStream {
    explicit TwiddleStream(StageAngle a)
        : e1r(a.c),
          e1i(a.s),
          e2r(e1r * e1r - e1i * e1i),
          e2i(2.0 * e1r * e1i),
          e3r(e2r * e1r - e2i * e1i),
          e3i(e2r * e1i + e2i * e1r),
          e4r(e2r * e2r - e2i * e2i),
          e4i(2.0 * e2r * e2i) {}

    // count is a multiple of 4.
    void next(double* __restrict tr, double* __restrict ti, size_t count) {
        for (size_t q = 0; q < count; q += 4) {
            tr[q] = wr;
            ti[q] = wi;
            tr[q + 1] = wr * e1r - wi * e1i;
            ti[q + 1] = wr * e1i + wi * e1r;
            tr[q + 2] = wr * e2r - wi * e2i;
            ti[q + 2] = wr * e2i + wi * e2r;
            tr[q + 3] = wr * e3r - wi * e3i;
            ti[q + 3] = wr * e3i + wi * e3r;
            advance();
        }
    }
    void skip(size_t count) {
        for (size_t q = 0; q < count; q += 4) advance();
    }

private:
    void advance() {
        const double nr = wr * e4r - wi * e4i;
        wi = wr * e4i + wi * e4r;
        wr = nr;
    }

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

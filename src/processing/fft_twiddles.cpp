#include "processing/fft_twiddles.h"

#include <cmath>
#include <vector>

namespace zolt {
namespace {

// cos(pi / 2^(k+2)) for k = 0 ... 17; one entry per radix-2 stage, which is what bounds the
// length to 2^20.
const std::array<double, kFftStages>& cosineTable() {
    static const std::array<double, kFftStages> table = [] {
        std::array<double, kFftStages> c{};
        c[0] = std::sqrt(2.0) / 2.0;
        for (size_t k = 1; k < c.size(); ++k) c[k] = std::sqrt(2.0 + 2.0 * c[k - 1]) / 2.0;
        return c;
    }();
    return table;
}

// Stage k's h = 4 << k values start at (4 << k) - 4, after those of the narrower stages.
struct DirectionTables {
    explicit DirectionTables(int direction) : re((size_t{4} << kTabledStages) - 4), im(re.size()) {
        const auto angles = stageAngles(direction);
        for (size_t k = 0; k < kTabledStages; ++k) {
            const size_t at = (size_t{4} << k) - 4;
            TwiddleStream(angles[k]).next(re.data() + at, im.data() + at, size_t{4} << k);
        }
    }
    std::vector<double> re, im;
};

}  // namespace

TwiddleStream::TwiddleStream(StageAngle a)
    : e1r(a.c),
      e1i(a.s),
      e2r(e1r * e1r - e1i * e1i),
      e2i(2.0 * e1r * e1i),
      e3r(e2r * e1r - e2i * e1i),
      e3i(e2r * e1i + e2i * e1r),
      e4r(e2r * e2r - e2i * e2i),
      e4i(2.0 * e2r * e2i) {}

void TwiddleStream::next(double* __restrict tr, double* __restrict ti, size_t count) {
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

void TwiddleStream::skip(size_t count) {
    for (size_t q = 0; q < count; q += 4) advance();
}

void TwiddleStream::advance() {
    const double nr = wr * e4r - wi * e4i;
    wi = wr * e4i + wi * e4r;
    wr = nr;
}

std::array<StageAngle, kFftStages> stageAngles(int direction) {
    const auto& cosines = cosineTable();
    std::array<StageAngle, kFftStages> angles;
    double s = direction > 0 ? 1.0 : -1.0;
    for (size_t k = 0; k < kFftStages; ++k) {
        s /= 2.0 * cosines[k];
        angles[k] = {cosines[k], s};
    }
    return angles;
}

TwiddleTable twiddleTable(size_t stage, int direction) {
    if (stage >= kTabledStages) return {};
    static const DirectionTables forward(+1), backward(-1);
    const DirectionTables& t = direction > 0 ? forward : backward;
    const size_t at = (size_t{4} << stage) - 4;
    return {t.re.data() + at, t.im.data() + at};
}

}  // namespace zolt

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

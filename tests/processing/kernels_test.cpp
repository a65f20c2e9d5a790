#include "processing/kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace zolt {
namespace {

std::vector<float> ramp(size_t n, float start = 1.0f) {
    std::vector<float> v(n);
    std::iota(v.begin(), v.end(), start);
    return v;
}

TEST(DcSubtraction, AveragesLastSixteenthAndChangesOnlyFromFirstPoint) {
    // Two rows of 64 points in a stride of 70; the gap after each row must stay as it is.
    std::vector<float> data = ramp(140);
    const std::vector<float> before = data;
    subtractDc(data.data(), 2, 64, 70, 10);
    for (size_t r = 0; r < 2; ++r) {
        const float* row = before.data() + r * 70;
        const double mean = (double(row[60]) + row[61] + row[62] + row[63]) / 4.0;
        for (size_t k = 0; k < 70; ++k) {
            const float want = k >= 10 && k < 64 ? float(row[k] - mean) : row[k];
            EXPECT_EQ(data[r * 70 + k], want) << "row " << r << " point " << k;
        }
    }
    // Rows shorter than sixteen points are left alone.
    data = ramp(15);
    subtractDc(data.data(), 1, 15, 15, 0);
    EXPECT_EQ(data, ramp(15));
}

TEST(Restride, GrowingMovesRowsWithoutOverwritingShrinkingKeepsTheirFraction) {
    std::vector<float> re(24, -1.0f), im(24, -1.0f);
    const std::vector<float> rows = ramp(12);
    std::copy(rows.begin(), rows.end(), re.begin());
    std::copy(rows.begin(), rows.end(), im.begin());
    restride(re.data(), im.data(), 4, 8, 3, 1);
    for (size_t r = 0; r < 3; ++r)
        for (size_t k = 0; k < 4; ++k) {
            EXPECT_EQ(re[r * 8 + k], rows[r * 4 + k]);
            EXPECT_EQ(im[r * 8 + k], rows[r * 4 + k]);
        }
    re = ramp(24);
    restride(re.data(), nullptr, 8, 4, 3, 2);
    EXPECT_EQ(std::vector<float>(re.begin(), re.begin() + 12),
              (std::vector<float>{1, 2, 3, 4, 9, 10, 11, 12, 17, 18, 19, 20}));
}

// Tile and 4 x 4 block remainders on both sides; a wider destination stride leaves the gaps.
TEST(Transpose, LargerThanOneTileKeepsEveryElement) {
    const size_t n = 70, m = 45;
    const std::vector<float> source = ramp(n * m);
    for (size_t stride : {m, m + 3}) {
        std::vector<float> out(n * stride, -1.0f);
        transpose(source.data(), out.data(), n, m, stride);
        for (size_t c = 0; c < stride; ++c)
            for (size_t i = 0; i < n; ++i)
                ASSERT_EQ(out[i * stride + c], c < m ? source[c * n + i] : -1.0f);
    }
}

}  // namespace
}  // namespace zolt

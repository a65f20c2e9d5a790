#include "processing/dimension_rotation.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace zolt {
namespace {

using Index = std::array<size_t, 4>;  // point along record 0 (halves), f1, f2, f3

// Storage position: the contiguous axis fastest, the others in decreasing f-index, halves last.
size_t position(const SpectrumMatrix& m, int contiguous, const Index& at) {
    std::vector<int> order{contiguous};
    for (int f = 3; f >= 0; --f)
        if (f != contiguous) order.push_back(f);
    size_t pos = 0, scale = 1;
    for (int f : order) {
        pos += at[f] * scale;
        scale *= m.dims[f].points ? m.dims[f].points : 1;
    }
    return pos;
}

template <typename F>
void forEachPoint(const SpectrumMatrix& m, F f) {
    auto n = [&](int k) -> size_t { return m.dims[k].points ? m.dims[k].points : 1; };
    for (size_t a = 0; a < n(0); ++a)
        for (size_t b = 0; b < n(1); ++b)
            for (size_t c = 0; c < n(2); ++c)
                for (size_t d = 0; d < n(3); ++d) f(Index{a, b, c, d});
}

float code(const Index& at) {
    return float(at[0] * 1000000 + at[1] * 10000 + at[2] * 100 + at[3]);
}

SpectrumMatrix labelled(std::array<uint32_t, 4> points, int contiguous, bool complex = true) {
    SpectrumMatrix m;
    for (int f = 0; f < 4; ++f) m.dims[f].points = points[f];
    m.contiguous = uint8_t(contiguous);
    m.re.resize(m.pointCount());
    if (complex) m.im.resize(m.pointCount());
    forEachPoint(m, [&](const Index& at) {
        m.re[position(m, contiguous, at)] = code(at);
        if (complex) m.im[position(m, contiguous, at)] = -code(at);
    });
    return m;
}

void expectLayout(const SpectrumMatrix& m, int contiguous) {
    EXPECT_EQ(m.contiguous, contiguous);
    forEachPoint(m, [&](const Index& at) {
        ASSERT_EQ(m.re[position(m, contiguous, at)], code(at));
        if (!m.im.empty()) {
            ASSERT_EQ(m.im[position(m, contiguous, at)], -code(at));
        }
    });
}

TEST(DimensionRotation, TwoDimensionalRowsBecomeColumnsAndBack) {
    // 3 rows of 5 real points along f2: rotating f1 gives 5 rows of 3.
    SpectrumMatrix m = labelled({1, 3, 5, 1}, 2, false);
    ASSERT_TRUE(rotateToContiguous(m, 1));
    EXPECT_EQ(m.re[1], code({0, 1, 0, 0}));
    EXPECT_EQ(m.re[3], code({0, 0, 1, 0}));
    EXPECT_TRUE(m.im.empty());
    expectLayout(m, 1);
    ASSERT_TRUE(rotateToContiguous(m, 2));
    expectLayout(m, 2);
}

// Hypercomplex halves are transposed each on its own: the second starts halfway through.
TEST(DimensionRotation, EveryThreeDimensionalRotationKeepsEveryPoint) {
    for (int from = 1; from <= 3; ++from)
        for (int to = 1; to <= 3; ++to) {
            SCOPED_TRACE(testing::Message() << from << " -> " << to);
            SpectrumMatrix m = labelled({2, 3, 4, 5}, from);
            ASSERT_TRUE(rotateToContiguous(m, to));
            expectLayout(m, to);
            EXPECT_EQ(m.re[60], code({1, 0, 0, 0}));
        }
}

TEST(DimensionRotation, RefusesArraysThatDoNotMatchTheRecordsAndBadIndices) {
    SpectrumMatrix m = labelled({1, 3, 5, 1}, 2);
    m.re.pop_back();
    const auto re = m.re, im = m.im;
    EXPECT_FALSE(rotateToContiguous(m, 1));
    EXPECT_EQ(m.re, re);
    EXPECT_EQ(m.im, im);
    EXPECT_EQ(m.contiguous, 2);
    EXPECT_FALSE(rotateToContiguous(m, 0));
    EXPECT_FALSE(rotateToContiguous(m, 4));
}

TEST(DimensionRotation, OnePointAxisNeedsNoDataMove) {
    SpectrumMatrix m = labelled({1, 1, 8, 1}, 2);
    const auto re = m.re;
    ASSERT_TRUE(rotateToContiguous(m, 1));
    EXPECT_EQ(m.contiguous, 1);
    EXPECT_EQ(m.re, re);
}

}  // namespace
}  // namespace zolt

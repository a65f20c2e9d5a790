#include "processing/dimension_rotation.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
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

// Written straight at a wider stride: the same points as the plain rotation, zeros between
// the lines and after them, and an imaginary part of zeros for real data.
TEST(DimensionRotation, IntoRowsPlacesEachLineAtTheStrideAndZerosTheRest) {
    struct Case {
        std::array<uint32_t, 4> points;
        int from, to;
        bool complex;
    };
    for (const Case& c : {Case{{1, 3, 5, 1}, 2, 1, false}, Case{{1, 3, 5, 1}, 2, 2, true},
                          Case{{1, 3, 4, 5}, 3, 1, true}}) {
        SCOPED_TRACE(testing::Message() << c.from << " -> " << c.to);
        SpectrumMatrix plain = labelled(c.points, c.from, c.complex);
        SpectrumMatrix m = plain;
        ASSERT_TRUE(rotateToContiguous(plain, c.to));
        const size_t n = c.points[c.to], rows = plain.re.size() / n, stride = n + 3;
        ASSERT_TRUE(rotateIntoRows(m, c.to, stride, rows * stride + 7));
        EXPECT_EQ(m.contiguous, c.to);
        ASSERT_EQ(m.re.size(), rows * stride + 7);
        ASSERT_EQ(m.im.size(), m.re.size());
        for (size_t k = 0; k < m.re.size(); ++k) {
            const size_t r = k / stride, i = k % stride;
            const bool point = r < rows && i < n;
            ASSERT_EQ(m.re[k], point ? plain.re[r * n + i] : 0.0f) << k;
            ASSERT_EQ(m.im[k], point && c.complex ? plain.im[r * n + i] : 0.0f) << k;
        }
    }
}

// Separate planes (slower axes or halves), two transpositions, a stride shorter than a line or an
// array too short for the lines are left to the plain rotation.
TEST(DimensionRotation, IntoRowsRefusesWhatOneTranspositionCannotDo) {
    const SpectrumMatrix threeD = labelled({1, 3, 4, 5}, 3), halves = labelled({2, 3, 5, 1}, 2);
    for (auto [from, f, stride, size] :
         {std::tuple{threeD, 2, 4, 60}, std::tuple{labelled({1, 3, 4, 5}, 1), 3, 5, 60},
          std::tuple{halves, 1, 3, 30}, std::tuple{labelled({1, 3, 5, 1}, 2), 1, 2, 30},
          std::tuple{labelled({1, 3, 5, 1}, 2), 1, 4, 19}}) {
        SpectrumMatrix m = from;
        EXPECT_FALSE(rotateIntoRows(m, f, size_t(stride), size_t(size)));
        EXPECT_EQ(m.re, from.re);
        EXPECT_EQ(m.contiguous, from.contiguous);
    }
}

}  // namespace
}  // namespace zolt

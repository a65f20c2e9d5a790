// Two least-squares systems solved side by side give each the bits it gets alone: rows of
// different counts either way round, every fixed width of columns and a wide one, and a zero
// column that is not reflected.
#include "processing/least_squares.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zolt {
namespace {

std::vector<double> randomSystem(size_t m, size_t p, unsigned seed, bool zeroColumn) {
    std::mt19937 gen(seed);
    std::normal_distribution<double> value(0.0, 1.0);
    const size_t stride = leastSquaresStride(p);
    std::vector<double> a(m * stride, 0.0);
    for (size_t i = 0; i < m; ++i)
        for (size_t j = 0; j <= p; ++j) a[i * stride + j] = zeroColumn && j == 1 ? 0.0 : value(gen);
    return a;
}

TEST(LeastSquares, TwoSystemsSideBySideAreSolvedAsAlone) {
    for (size_t p : {1u, 2u, 4u, 8u, 9u, 14u}) {
        for (const auto& [m1, m2] :
             {std::pair{40u, 25u}, std::pair{16u, 33u}, std::pair{20u, 20u}}) {
            for (bool zero : {false, true}) {
                auto a1 = randomSystem(m1, p, 1 + m1, zero),
                     a2 = randomSystem(m2, p, 2 + m2, false);
                auto b1 = a1, b2 = a2;
                const auto alone1 = solveLeastSquares(b1.data(), m1, p);
                const auto alone2 = solveLeastSquares(b2.data(), m2, p);
                std::vector<double> c1, c2;
                solveLeastSquaresTwo(a1.data(), m1, a2.data(), m2, p, c1, c2);
                EXPECT_EQ(c1, alone1) << p << " " << m1 << " " << zero;
                EXPECT_EQ(c2, alone2) << p << " " << m2;
                EXPECT_EQ(a1, b1);
                EXPECT_EQ(a2, b2);
            }
        }
    }
}

}  // namespace
}  // namespace zolt

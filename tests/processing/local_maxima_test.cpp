#include "processing/local_maxima.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <utility>

#include "processing/row_parallel.h"
#include "test_data.h"

namespace zolt {
namespace {

std::set<size_t> columns(const std::vector<LocalMaximum>& maxima) {
    std::set<size_t> out;
    for (const auto& m : maxima) out.insert(m.i2);
    return out;
}

TEST(LocalMaxima, RowEdgesPlateausAndNonPositiveValues) {
    const std::vector<double> row = {5, 1, 3, 3, 0, -2, 4, 2};
    const auto value = [&](size_t i1, size_t i2) { return row.at(i1 * row.size() + i2); };
    // The first point has no left neighbour to beat it; both points of a plateau count; zero and
    // negative values never do.
    const auto all = strongestLocalMaxima(value, 1, row.size(), 0, 0, 10);
    EXPECT_EQ(columns(all), (std::set<size_t>{0, 2, 3, 6}));
    EXPECT_EQ(all.front().i2, 0u);
    EXPECT_EQ(all[1].i2, 6u);
    EXPECT_EQ(columns(strongestLocalMaxima(value, 1, row.size(), 0, 0, 2)),
              (std::set<size_t>{0, 6}));
    EXPECT_EQ(columns(strongestLocalMaxima(value, 1, row.size(), 0, 1, 10)),
              (std::set<size_t>{2, 3, 6}));
}

TEST(LocalMaxima, DiagonalNeighboursCountOnAPlane) {
    // 3 x 3 plane: the centre beats its row and column but not the corner below right.
    const double plane[3][3] = {{0, 1, 0}, {1, 4, 1}, {0, 1, 6}};
    const auto value = [&](size_t i1, size_t i2) { return plane[i1][i2]; };
    const auto all = strongestLocalMaxima(value, 3, 3, 0, 0, 10);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(std::make_pair(all[0].i1, all[0].i2), std::make_pair(size_t{2}, size_t{2}));
    EXPECT_TRUE(strongestLocalMaxima(value, 3, 3, 1, 1, 10).empty());
}

TEST(LocalMaxima, TallestLineOfAspirinIsTheLargestModulus) {
    const auto doc = testdata::openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    const SpectrumMatrix& m = doc->matrix;
    const size_t n = m.dims[1].points;
    const auto modulus = [&](size_t, size_t k) { return std::hypot(double{m.re[k]}, m.im[k]); };
    const auto top = strongestLocalMaxima(modulus, 1, n, 0, 1, 5);
    ASSERT_EQ(top.size(), 5u);
    double largest = 0.0;
    for (size_t k = 1; k + 1 < n; ++k) largest = std::max(largest, modulus(0, k));
    EXPECT_EQ(top[0].value, largest);
    for (size_t i = 1; i < top.size(); ++i) EXPECT_LE(top[i].value, top[i - 1].value);
}

bool same(const std::vector<LocalMaximum>& a, const std::vector<LocalMaximum>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.value == y.value && x.i1 == y.i1 && x.i2 == y.i2;
    });
}

// The line-wise search on the row threads returns what the row-by-row scan returns, element for
// element, whichever axis the lines follow and however many threads share them: on a real
// plane, and on planes of few different values, where ties make the partial sort's order hang
// on the order of the scan.
TEST(LocalMaxima, LineWiseSearchMatchesTheRowScan) {
    const auto doc = testdata::openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    const SpectrumMatrix& m = doc->matrix;
    const size_t n1 = m.dims[1].points, n2 = m.dims[2].points;
    std::vector<std::vector<double>> planes(1, std::vector<double>(n1 * n2));
    for (size_t i = 0; i < n1 * n2; ++i)
        planes[0][i] = double{m.re[i]} * m.re[i] + double{m.im[i]} * m.im[i];
    std::mt19937 random(7);
    for (int levels : {3, 50}) {
        planes.emplace_back(n1 * n2);
        for (double& v : planes.back()) v = static_cast<double>(random() % levels);
    }
    for (const auto& plane : planes) {
        const auto at = [&](size_t i1, size_t i2) { return plane[i1 * n2 + i2]; };
        for (size_t count : {0, 1, 24, 5000}) {
            const auto expected = strongestLocalMaxima(at, n1, n2, 9, 1, count);
            for (bool alongRows : {true, false}) {
                GridLines grid{n1, n2, 9, 1, alongRows, {}};
                grid.values = [&](size_t j, double* out) {
                    const size_t n = alongRows ? n2 : n1;
                    for (size_t k = 0; k < n; ++k) out[k] = alongRows ? at(j, k) : at(k, j);
                    return *std::max_element(out, out + n);
                };
                for (size_t threads : {1, 3}) {
                    setRowThreads(threads);
                    EXPECT_TRUE(same(strongestLocalMaxima(grid, count), expected))
                        << count << " " << alongRows << " " << threads;
                }
            }
        }
    }
    setRowThreads(0);
}

}  // namespace
}  // namespace zolt

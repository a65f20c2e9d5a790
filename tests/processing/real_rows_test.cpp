// The rows of a strided axis as the baseline passes see them: gathered in tiles (whole and
// partial, row counts off the 4 x 4 blocks) and written back exactly.
#include "processing/real_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zolt {
namespace {

TEST(RealRows, StridedRowsAreGatheredAndWrittenBackPointForPoint) {
    for (uint32_t n1 : {3u, 7u, 8u, 13u}) {
        for (uint32_t n2 : {5u, 16u, 21u, 37u}) {
            SpectrumMatrix m;
            m.dims[1].points = n1;
            m.dims[2].points = n2;
            m.contiguous = 2;
            m.re.resize(size_t{n1} * n2);
            for (size_t i = 0; i < m.re.size(); ++i) m.re[i] = static_cast<float>(i);
            // Along f1, row j holds the points j, j + n2, j + 2 n2, ...
            std::vector<float> seen;
            ASSERT_TRUE(forEachRealRowRead(m, 1, [&](const float* row, size_t n) {
                ASSERT_EQ(n, n1);
                seen.insert(seen.end(), row, row + n);
            }));
            ASSERT_EQ(seen.size(), m.re.size());
            // The same rows in groups, read in any order.
            std::vector<float> buffer;
            for (size_t g = realRowGroupCount(m, 1); g-- > 0;) {
                const float* rows[kRowGroup];
                size_t first = 0;
                const size_t count = readRealRowGroup(m, 1, g, buffer, rows, first);
                ASSERT_GT(count, 0u);
                for (size_t k = 0; k < count; ++k)
                    ASSERT_TRUE(std::equal(rows[k], rows[k] + n1, seen.begin() + (first + k) * n1));
            }
            for (size_t j = 0; j < n2; ++j)
                for (size_t k = 0; k < n1; ++k)
                    ASSERT_EQ(seen[j * n1 + k], static_cast<float>(k * n2 + j)) << n1 << "x" << n2;
            ASSERT_TRUE(forEachRealRowGroupInParallel(
                m, 1, [&](float* const* rows, size_t count, size_t n, size_t first) {
                    for (size_t j = 0; j < count; ++j)
                        for (size_t k = 0; k < n; ++k)
                            rows[j][k] = static_cast<float>((first + j) * 1000 + k);
                }));
            for (size_t k = 0; k < n1; ++k)
                for (size_t j = 0; j < n2; ++j)
                    ASSERT_EQ(m.re[k * n2 + j], static_cast<float>(j * 1000 + k))
                        << n1 << "x" << n2;
        }
    }
}

}  // namespace
}  // namespace zolt

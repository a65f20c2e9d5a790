// The selection of the baseline refits' median against std::nth_element: the same value on
// lists with ties, runs and every position.
#include "processing/selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace zolt {
namespace {

TEST(Selection, FindsWhatASortPutsAtEveryPosition) {
    std::mt19937 rng(3);
    std::uniform_int_distribution<int> few(0, 5);
    std::normal_distribution<double> wide(0.0, 1e3);
    for (size_t n : {1, 2, 17, 33, 100, 517}) {
        for (int kind = 0; kind < 4; ++kind) {
            std::vector<double> list(n);
            for (size_t i = 0; i < n; ++i)
                list[i] = kind == 0   ? wide(rng)
                          : kind == 1 ? few(rng)                     // many ties
                          : kind == 2 ? static_cast<double>(i)       // sorted
                                      : static_cast<double>(n - i);  // reversed
            std::vector<double> sorted = list;
            std::sort(sorted.begin(), sorted.end());
            for (size_t k = 0; k < n; ++k) {
                std::vector<double> work = list;
                ASSERT_EQ(selectNth(work.data(), n, k), sorted[k]) << n << " " << kind << " " << k;
            }
        }
    }
}

TEST(Selection, ListsWithANanGoToTheLibrary) {
    std::vector<double> list = {3.0, NAN, 1.0, 2.0, 5.0, 4.0};
    std::vector<double> library = list;
    std::nth_element(library.begin(), library.begin() + 2, library.end());
    const double expected = library[2];
    const double got = selectNth(list.data(), list.size(), 2);
    EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected)));
}

}  // namespace
}  // namespace zolt

#include "io/bruker/bruker_time_shift.h"

#include <gtest/gtest.h>

namespace zolt {
namespace {

TEST(BrukerTimeShift, TableRowsAndColumns) {
    EXPECT_DOUBLE_EQ(digitalFilterDelay(10, 2, 0), 44.75);
    EXPECT_NEAR(digitalFilterDelay(10, 24, 0), 61.0208, 1e-4);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(12, 8, 0), 53.25);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(11, 16, 0), 2312 * 0.5 / 16);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(15, 2, 0), 0.0);  // the table's own zero
    EXPECT_DOUBLE_EQ(digitalFilterDelay(13, 256, 0), 0.0);
}

TEST(BrukerTimeShift, UntabulatedDecimationsUseTheNextColumn) {
    // DECIM 5 shares the column of 6, but divides by its own value.
    EXPECT_DOUBLE_EQ(digitalFilterDelay(10, 5, 0), 709 * 0.5 / 5);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(10, 1536, 0), 189409 * 0.5 / 1536);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(10, 1537, 0), 288737 * 0.5 / 1537);
    EXPECT_DOUBLE_EQ(digitalFilterDelay(10, 2048, 0), 288737 * 0.5 / 2048);
}

TEST(BrukerTimeShift, OutsideTheTableThereIsNoDelay) {
    EXPECT_EQ(digitalFilterDelay(10, 1, 70), 0.0);
    EXPECT_EQ(digitalFilterDelay(10, 2049, 70), 0.0);
    EXPECT_EQ(digitalFilterDelay(9, 24, 70), 0.0);
    for (int version = 16; version <= 19; ++version)
        EXPECT_EQ(digitalFilterDelay(version, 24, 70), 0.0);
    EXPECT_EQ(digitalFilterDelay(0, 1, -1), 0.0);
}

TEST(BrukerTimeShift, NewerFirmwareStatesItsGroupDelay) {
    EXPECT_EQ(digitalFilterDelay(20, 3637, 67.9873504638672), 67.9873504638672);
    EXPECT_EQ(digitalFilterDelay(21, 3640, 76), 76.0);
}

}  // namespace
}  // namespace zolt

#include "io/bruker/bruker_time_shift.h"

#include <gtest/gtest.h>

namespace zolt {
namespace {

TEST(BrukerTimeShift, TableUntabulatedDecimationsAndNewerFirmware) {
    struct Case {
        int version, decimation;
        double groupDelay, delay;
    };
    const Case cases[] = {
        // Rows and columns of the table; 15 / 2 and 13 / 256 are the table's own zeros.
        {10, 2, 0, 44.75},
        {10, 24, 0, 61.0208333},
        {12, 8, 0, 53.25},
        {11, 16, 0, 2312 * 0.5 / 16},
        {15, 2, 0, 0.0},
        {13, 256, 0, 0.0},
        // Untabulated decimations share the next column but divide by their own value.
        {10, 5, 0, 709 * 0.5 / 5},
        {10, 1536, 0, 189409 * 0.5 / 1536},
        {10, 1537, 0, 288737 * 0.5 / 1537},
        {10, 2048, 0, 288737 * 0.5 / 2048},
        // Outside the table there is no delay.
        {10, 1, 70, 0.0},
        {10, 2049, 70, 0.0},
        {9, 24, 70, 0.0},
        {16, 24, 70, 0.0},
        {19, 24, 70, 0.0},
        {0, 1, -1, 0.0},
        // Newer firmware states its group delay.
        {20, 3637, 67.9873504638672, 67.9873504638672},
        {21, 3640, 76, 76.0}};
    for (const Case& c : cases)
        EXPECT_NEAR(digitalFilterDelay(c.version, c.decimation, c.groupDelay), c.delay, 1e-7)
            << c.version << " / " << c.decimation;
}

}  // namespace
}  // namespace zolt

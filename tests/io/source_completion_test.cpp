#include "io/source_completion.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zolt {
namespace {

SpectrumSource withPoints(uint32_t p1, uint32_t p2, uint32_t p3) {
    SpectrumSource s;
    s.dims[1].points = p1;
    s.dims[2].points = p2;
    s.dims[3].points = p3;
    for (int f = 1; f <= 3; ++f) {
        s.dims[f].spectralWidth = 12.0f;
        s.dims[f].carrier = 500.0f;
    }
    return s;
}

TEST(SourceCompletion, XEndsOnTheDirectAxisAndASecondPassChangesNothing) {
    struct Case {
        uint32_t p1, p2, p3;
        int x, y, z;
    };
    // The last case has no middle axis: it is skipped.
    for (const Case& c : {Case{2048, 0, 0, 1, 0, 0}, Case{128, 1024, 1, 2, 1, 0},
                          Case{16, 64, 512, 3, 2, 1}, Case{32, 1, 512, 3, 1, 0}}) {
        auto s = withPoints(c.p1, c.p2, c.p3);
        for (int pass = 1; pass <= 2; ++pass) {
            completeSource(s);
            EXPECT_EQ(s.xIndex, c.x) << c.p1 << " pass " << pass;
            EXPECT_EQ(s.yIndex, c.y) << c.p1 << " pass " << pass;
            EXPECT_EQ(s.zIndex, c.z) << c.p1 << " pass " << pass;
        }
    }
    auto s = withPoints(2048, 0, 0);
    completeSource(s);
    for (int f : {0, 2, 3}) EXPECT_EQ(s.dims[f].points, 1u) << f;
    // A block size of zero becomes the default; a stated one stays.
    EXPECT_EQ(s.blockSize, kDefaultBlockSize);
    s.blockSize = 1024;
    completeSource(s);
    EXPECT_EQ(s.blockSize, 1024u);
}

TEST(SourceCompletion, AxesGetMinimumWidthAndCarrier) {
    auto s = withPoints(64, 256, 0);
    s.dims[2].spectralWidth = 0.0099f;
    s.dims[2].carrier = 0.5f;
    s.dims[1].spectralWidth = std::nanf("");
    s.dims[1].carrier = 1.0f;
    completeSource(s);
    for (int f : {1, 2}) {
        EXPECT_EQ(s.dims[f].spectralWidth, 10.0f) << f;
        EXPECT_EQ(s.dims[f].carrier, 1.0f) << f;
    }
    // One-point axes are left alone apart from their count.
    s = withPoints(0, 64, 0);
    s.dims[1].spectralWidth = 0.0f;
    completeSource(s);
    EXPECT_EQ(s.dims[1].points, 1u);
    EXPECT_EQ(s.dims[1].spectralWidth, 0.0f);
}

}  // namespace
}  // namespace zolt

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

TEST(SourceCompletion, XEndsOnTheDirectAxis) {
    auto s = withPoints(2048, 0, 0);
    completeSource(s);
    EXPECT_EQ(s.xIndex, 1);
    EXPECT_EQ(s.yIndex, 0);
    EXPECT_EQ(s.dims[2].points, 1u);
    EXPECT_EQ(s.dims[3].points, 1u);
    EXPECT_EQ(s.dims[0].points, 1u);
    s = withPoints(128, 1024, 1);
    completeSource(s);
    EXPECT_EQ(s.xIndex, 2);
    EXPECT_EQ(s.yIndex, 1);
    EXPECT_EQ(s.zIndex, 0);
    s = withPoints(16, 64, 512);
    completeSource(s);
    EXPECT_EQ(s.xIndex, 3);
    EXPECT_EQ(s.yIndex, 2);
    EXPECT_EQ(s.zIndex, 1);
    // A missing middle axis is skipped.
    s = withPoints(32, 1, 512);
    completeSource(s);
    EXPECT_EQ(s.xIndex, 3);
    EXPECT_EQ(s.yIndex, 1);
}

TEST(SourceCompletion, CompletingTwiceChangesNothing) {
    auto s = withPoints(16, 64, 512);
    completeSource(s);
    const SpectrumSource once = s;
    completeSource(s);
    EXPECT_EQ(s.xIndex, once.xIndex);
    EXPECT_EQ(s.yIndex, once.yIndex);
    EXPECT_EQ(s.zIndex, once.zIndex);
}

TEST(SourceCompletion, AxesGetMinimumWidthAndCarrier) {
    auto s = withPoints(64, 256, 0);
    s.dims[2].spectralWidth = 0.0099f;
    s.dims[2].carrier = 0.5f;
    s.dims[1].spectralWidth = std::nanf("");
    s.dims[1].carrier = 1.0f;
    completeSource(s);
    EXPECT_EQ(s.dims[2].spectralWidth, 10.0f);
    EXPECT_EQ(s.dims[2].carrier, 1.0f);
    EXPECT_EQ(s.dims[1].spectralWidth, 10.0f);
    EXPECT_EQ(s.dims[1].carrier, 1.0f);
    // One-point axes are left alone apart from their count.
    s = withPoints(0, 64, 0);
    s.dims[1].spectralWidth = 0.0f;
    completeSource(s);
    EXPECT_EQ(s.dims[1].points, 1u);
    EXPECT_EQ(s.dims[1].spectralWidth, 0.0f);
}

TEST(SourceCompletion, BlockSizeZeroBecomesTheDefault) {
    auto s = withPoints(64, 0, 0);
    completeSource(s);
    EXPECT_EQ(s.blockSize, kDefaultBlockSize);
    s.blockSize = 1024;
    completeSource(s);
    EXPECT_EQ(s.blockSize, 1024u);
}

}  // namespace
}  // namespace zolt

#include "model/dimension_record.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/spectrum_source.h"

namespace zolt {
namespace {

DimensionRecord axis(uint32_t n, float width, float lowest, float carrier = 400.0f) {
    DimensionRecord d;
    d.points = n;
    d.spectralWidth = width;
    d.lowestPpm = lowest;
    d.carrier = carrier;
    return d;
}

TEST(DimensionRecord, PointsAreBinCentresAndPpmOutsideTheAxisClamps) {
    const auto d = axis(4, 10.0f, 0.0f);
    EXPECT_DOUBLE_EQ(ppmOfPoint(d, 0), 8.75);
    EXPECT_DOUBLE_EQ(ppmOfPoint(d, 3), 1.25);
    EXPECT_EQ(pointOfPpm(d, 10.0), 0);
    EXPECT_EQ(pointOfPpm(d, 0.0), 3);
    EXPECT_EQ(pointOfPpm(d, 6.3), 1);
    const auto wide = axis(1024, 12.0f, -1.0f);
    EXPECT_EQ(pointOfPpm(wide, 100.0), 0);
    EXPECT_EQ(pointOfPpm(wide, -100.0), 1023);
    EXPECT_EQ(pointOfPpm(wide, std::nan("")), 0);
}

TEST(DimensionRecord, PseudoAndShortAxesDoNotCount) {
    SpectrumSource s;
    s.dims[2] = axis(8192, 12.0f, -1.0f);
    setAtom(s.dims[2], "H");
    s.dims[1].points = 0;
    EXPECT_EQ(countDimensions(s), 1);
    makePseudoDimension(s.dims[1], 16);
    s.dims[1].points = 16;
    EXPECT_TRUE(isPseudoDimension(s.dims[1]));
    EXPECT_FLOAT_EQ(s.dims[1].lowestPpm, -16.0f);
    EXPECT_FLOAT_EQ(s.dims[1].spectralWidth, 16.0f);
    EXPECT_EQ(countDimensions(s), 1);
    EXPECT_EQ(directFIndex(s), 2);
    setAtom(s.dims[1], "C");
    EXPECT_EQ(countDimensions(s), 2);
}

TEST(SpectrumSource, InterleavedRealOnlyAndConjugateExcludeEachOther) {
    using namespace source_flags;
    EXPECT_EQ(normalisedFlags(kInterleaved | kRealOnly | kComplexConjugate | kLittleEndian),
              kInterleaved | kLittleEndian);
    EXPECT_EQ(normalisedFlags(kRealOnly | kComplexConjugate), kRealOnly);
    EXPECT_EQ(normalisedFlags(kComplexConjugate), kComplexConjugate);
}

}  // namespace
}  // namespace zolt

// The peak list as the clipboard receives it, to the byte.
#include <gtest/gtest.h>

#include <cmath>

#include "operations/analysis_tables.h"
#include "operations/peak_operations.h"

namespace zolt {
namespace {

DimensionRecord axis(uint32_t n, float width, float mhz) {
    DimensionRecord d;
    d.points = n, d.spectralWidth = width, d.carrier = mhz;
    return d;
}

// Two Gaussian lines (sigma 1.5 points) on points 20 and 40 of 64, 10 Hz apart each.
SpectrumDocument oneD() {
    SpectrumDocument d;
    d.matrix.xIndex = 1;
    d.matrix.dims[1] = axis(64, 6.4f, 100.0f);
    d.matrix.re.assign(64, 0.0f);
    for (auto [centre, height] : {std::pair{20, 1000.0}, std::pair{40, 500.0}})
        for (int i = 0; i < 64; ++i)
            d.matrix.re[i] += float(height * std::exp(-(i - centre) * (i - centre) / 4.5));
    d.peaks.oneD = {2.41f, 4.39f};  // refined again before they are written
    return d;
}

TEST(PeakTable, OneDimensionWithAndWithoutWidthsTabsOrCommas) {
    SpectrumDocument d = oneD();
    const std::string rows =
        " 001\t      4.4000\t      440.00\t        1000\r\n"
        " 002\t      2.4000\t      240.00\t         500\r\n";
    EXPECT_EQ(peakTableText(d, false),
              "line \t        ppm \t         Hz \t  intensity\r\n\r\n" + rows);
    EXPECT_EQ(d.peaks.oneD, (std::vector<float>{2.4f, 4.4f}));
    // The header is written twice on one line; the symmetric half-height crossings make the
    // width exactly 4 points of 10 Hz.
    EXPECT_EQ(peakTableTextWithWidths(d, true),
              "line ,        ppm ,         Hz ,  intensityline ,        ppm ,         Hz ,  "
              "intensity\r\n\r\n"
              " 001,      4.4000,      440.00,        1000        40.0\r\n"
              " 002,      2.4000,      240.00,         500        40.0\r\n");
}

TEST(PeakTable, TwoAndThreeDimensionsSortedWithTheNearestPoint) {
    SpectrumDocument d;
    SpectrumMatrix& m = d.matrix;
    m.xIndex = 2, m.yIndex = 1, m.contiguous = 2;
    m.dims[1] = axis(8, 8.0f, 100.0f);    // row r at 7.5 - r ppm
    m.dims[2] = axis(16, 16.0f, 100.0f);  // column c at 15.5 - c ppm
    m.re.assign(8 * 16, 0.0f);
    m.re[2 * 16 + 5] = 1234.4f, m.re[6 * 16 + 9] = -77.6f;
    d.peaks.twoD = {{10.5f, 5.5f}, {6.5f, 1.5f}};
    const std::string text =
        "line \t   ppm (f-2) \t   ppm (f-1) \t   intensity\r\n\r\n"
        " 001\t      6.5000\t      1.5000\t         -78\r\n"
        " 002\t     10.5000\t      5.5000\t        1234\r\n";
    EXPECT_EQ(peakTableText(d, false), text);
    EXPECT_EQ(peakTableTextWithWidths(d, false), text);
    EXPECT_EQ(d.peaks.twoD[0], (std::array<float, 2>{6.5f, 1.5f}));

    // f3 horizontal and contiguous, f2 vertical, f1 the third axis.
    m.xIndex = 3, m.yIndex = 2, m.zIndex = 1, m.contiguous = 3;
    m.dims[3] = axis(4, 4.0f, 100.0f);  // 3.5 - c
    m.dims[1] = axis(2, 2.0f, 100.0f);  // 1.5 - p
    m.re.assign(2 * 16 * 4, 0.0f);
    m.re[(1 * 16 + 3) * 4 + 2] = 99.0f;
    d.peaks.threeD = {{1.5f, 12.5f, 0.5f}};
    EXPECT_EQ(peakTableText(d, true),
              "line ,   ppm (f-3) ,   ppm (f-2) ,   ppm (f-1) ,   intensity\r\n\r\n"
              " 001,      1.5000,     12.5000,      0.5000,          99\r\n");
}

}  // namespace
}  // namespace zolt

// The processing log of real two-dimensional experiments, opened and transformed as the
// program does it, read to the character.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "document/processing_log.h"
#include "test_data.h"

namespace zolt {
namespace {

using testdata::openTransformed;

std::string logOf(const SpectrumDocument& doc) {
    return processingLog(doc.processing, [&](int d) { return int64_t{doc.matrix.dims[d].points}; });
}

// Axis fd transformed sets bit number 8 d: 0x100 for f1, 0x10000 for f2.
constexpr uint32_t kBothTransformed = 0x100 | 0x10000;

TEST(ProcessingLogRealData, EchoAntiEchoHsqcNamesItsShufflingOnF1) {
    // f2: TD 1024 (512 complex points, AQ_mod DQD); f1: TD 256 read as 128 echo / anti-echo
    // pairs (FnMODE 6). Both axes take the spectrometer's processing: squared cosine bells
    // (WDW 4, SSB 2) and 1024 points (SI).
    const auto doc = openTransformed("cyclosporin-hsqc");
    ASSERT_TRUE(doc);
    EXPECT_EQ(doc->processing.doneMask, kBothTransformed);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\nWeights along f1"
              "\r\nsquared sine bell shifted by 90.0 degrees"
              "\r\n\r\nFourier Transform along f1 using 1024 points\r\n"
              "[echo-antiecho]\r\n"
              "quadrature detection; "
              "\r\n\r\n\r\n");
}

TEST(ProcessingLogRealData, MagnitudeCosyListsConjugationAndMagnitudeOnF1) {
    // f2: TD 2048 (1024 complex points); f1: TD 128 of one phase-modulated signal (FnMODE QF),
    // shown in magnitude. Both axes take the spectrometer's sine bells (WDW 3, SSB 0) and its
    // 1024 points.
    const auto doc = openTransformed("cyclosporin-cosy");
    ASSERT_TRUE(doc);
    EXPECT_EQ(doc->processing.doneMask, kBothTransformed);
    EXPECT_EQ(logOf(*doc),
              "====  Processing Parameters  ===="
              "\r\n\r\nWeights along f2"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\n\r\nFourier Transform along f2 using 1024 points\r\n"
              "quadrature detection; "
              "\r\n\r\nWeights along f1"
              "\r\nsine bell shifted by 0.0 degrees"
              "\r\n\r\nFourier Transform along f1 using 1024 points\r\n"
              "quadrature detection; conjugation; magnitude representation; "
              "\r\n\r\n\r\n");
}

}  // namespace
}  // namespace zolt

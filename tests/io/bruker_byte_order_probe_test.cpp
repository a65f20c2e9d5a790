#include <gtest/gtest.h>

#include <fstream>

#include "io/byte_order_probe.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace source_flags;

// Small 32-bit values written in one byte order, so that their high bytes are 0 or 0xFF.
std::string smallValues(size_t count, bool bigEndian) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i) {
        const int32_t v = (i % 2 ? -1 : 1) * static_cast<int32_t>(1000 + 37 * i);
        for (int b = 0; b < 4; ++b)
            bytes.push_back(static_cast<char>(v >> 8 * (bigEndian ? 3 - b : b)));
    }
    return bytes;
}

// The flags the probe leaves on a file of `content` read as `points` points.
uint32_t probed(const std::string& content, uint32_t points, uint32_t flags = 0,
                NumberType type = NumberType::Long, uint32_t header = 0) {
    SpectrumSource s;
    s.rawPath = testdata::freshTempDir("probe") + "/fid";
    if (!content.empty()) std::ofstream(s.rawPath, std::ios::binary) << content;
    s.dims[1].points = points;
    s.flags = flags;
    s.numberType = type;
    s.headerSize = header;
    probeByteOrder(s);
    return s.flags;
}

TEST(ByteOrderProbe, SignFillBytesTellTheHighEnd) {
    EXPECT_EQ(probed(smallValues(256, true), 64, kMagnitude), kMagnitude);
    EXPECT_EQ(probed(smallValues(256, false), 64), kLittleEndian);
    EXPECT_EQ(probed(std::string(1024, '\0'), 64), kLittleEndian);  // a tie
    EXPECT_EQ(probed("", 64), kLittleEndian);                       // a missing file: a tie
    // A file shorter than the span is sampled at its end.
    EXPECT_EQ(probed(smallValues(16, true), 4096), 0u);
}

TEST(ByteOrderProbe, SamplesEndAtFourBytesPerPoint) {
    // Big-endian values up to byte 4 x 64; beyond that, bytes that look little-endian.
    EXPECT_EQ(probed(smallValues(64, true) + smallValues(200, false), 64), 0u);
    // Real-only data are sampled over half the span, 16-bit data over half again.
    const std::string half = smallValues(32, true) + smallValues(200, false);
    EXPECT_EQ(probed(half, 64, kRealOnly), kRealOnly);
    EXPECT_EQ(probed(half, 128, kRealOnly, NumberType::Short), kRealOnly);
    // The header shifts the sample.
    EXPECT_EQ(
        probed(std::string(512, '\x7f') + smallValues(64, true), 64, 0, NumberType::Long, 512), 0u);
}

TEST(ByteOrderProbe, LeavesOtherSourcesAlone) {
    EXPECT_EQ(probed(smallValues(64, false), 64, 0, NumberType::Float), 0u);
    EXPECT_EQ(probed(smallValues(64, false), 64, kVarianBinary), kVarianBinary);
}

}  // namespace
}  // namespace zolt

#include <gtest/gtest.h>

#include <fstream>

#include "io/bruker_reader.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace source_flags;

// Small 32-bit values written in one byte order, so that their high bytes are 0 or 0xFF.
std::string smallValues(size_t count, bool bigEndian, int width = 4) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i) {
        const int32_t v = (i % 2 ? -1 : 1) * static_cast<int32_t>(1000 + 37 * i);
        for (int b = 0; b < width; ++b) {
            const int shift = bigEndian ? 8 * (width - 1 - b) : 8 * b;
            bytes.push_back(static_cast<char>((v >> shift) & 0xFF));
        }
    }
    return bytes;
}

SpectrumSource sourceFor(const std::string& content, uint32_t points) {
    const std::string path = testdata::freshTempDir("probe") + "/fid";
    std::ofstream(path, std::ios::binary) << content;
    SpectrumSource s;
    s.rawPath = path;
    s.dims[1].points = points;
    return s;
}

TEST(ByteOrderProbe, SignFillBytesTellTheHighEnd) {
    auto big = sourceFor(smallValues(256, true), 64);
    big.flags = kMagnitude;
    probeByteOrder(big);
    EXPECT_EQ(big.flags, kMagnitude);
    auto little = sourceFor(smallValues(256, false), 64);
    probeByteOrder(little);
    EXPECT_EQ(little.flags, kLittleEndian);
    // All zeros is a tie: little-endian.
    auto zeros = sourceFor(std::string(1024, '\0'), 64);
    probeByteOrder(zeros);
    EXPECT_EQ(zeros.flags, kLittleEndian);
}

TEST(ByteOrderProbe, SamplesEndAtFourBytesPerPoint) {
    // Big-endian values up to byte 4 x 64; beyond that, bytes that look little-endian.
    const std::string content = smallValues(64, true) + smallValues(200, false);
    auto s = sourceFor(content, 64);
    probeByteOrder(s);
    EXPECT_EQ(s.flags & kLittleEndian, 0u);
    // Real-only data are sampled over half the span, 16-bit data over half again.
    s = sourceFor(smallValues(32, true) + smallValues(200, false), 64);
    s.flags = kRealOnly;
    probeByteOrder(s);
    EXPECT_EQ(s.flags & kLittleEndian, 0u);
    s = sourceFor(smallValues(32, true) + smallValues(200, false), 128);
    s.numberType = NumberType::Short;
    s.flags = kRealOnly;
    probeByteOrder(s);
    EXPECT_EQ(s.flags & kLittleEndian, 0u);
    // The header shifts the sample.
    s = sourceFor(std::string(512, '\x7f') + smallValues(64, true), 64);
    s.headerSize = 512;
    probeByteOrder(s);
    EXPECT_EQ(s.flags & kLittleEndian, 0u);
}

TEST(ByteOrderProbe, LeavesOtherSourcesAlone) {
    auto floats = sourceFor(smallValues(64, false), 64);
    floats.numberType = NumberType::Float;
    probeByteOrder(floats);
    EXPECT_EQ(floats.flags, 0u);
    auto varian = sourceFor(smallValues(64, false), 64);
    varian.flags = kVarianBinary;
    probeByteOrder(varian);
    EXPECT_EQ(varian.flags, kVarianBinary);
    // A file shorter than the span is sampled at its end; a missing one is a tie.
    auto shortFile = sourceFor(smallValues(16, true), 4096);
    probeByteOrder(shortFile);
    EXPECT_EQ(shortFile.flags & kLittleEndian, 0u);
    SpectrumSource missing;
    missing.rawPath = testdata::freshTempDir("probe") + "/none";
    missing.dims[1].points = 64;
    probeByteOrder(missing);
    EXPECT_EQ(missing.flags, kLittleEndian);
}

}  // namespace
}  // namespace zolt

#include "io/raw_loader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "io/bruker/bruker_reader.h"
#include "test_data.h"

namespace zolt {
namespace {

using Bytes = std::vector<unsigned char>;
namespace sf = source_flags;

// Encoders written independently of the loader: the word's bytes in the requested order.
void putWord(Bytes& out, uint64_t word, int n, bool little) {
    for (int i = 0; i < n; ++i) {
        const int shift = 8 * (little ? i : n - 1 - i);
        out.push_back(static_cast<unsigned char>(word >> shift));
    }
}

void put(Bytes& out, NumberType t, double v, bool little) {
    switch (t) {
        case NumberType::Long:
            putWord(out, static_cast<uint32_t>(static_cast<int32_t>(v)), 4, little);
            break;
        case NumberType::Short:
            putWord(out, static_cast<uint16_t>(static_cast<int16_t>(v)), 2, little);
            break;
        case NumberType::Bits24:
            putWord(out, static_cast<uint32_t>(static_cast<int32_t>(v)) & 0xFFFFFF, 3, little);
            break;
        case NumberType::Float:
            putWord(out, std::bit_cast<uint32_t>(static_cast<float>(v)), 4, little);
            break;
        case NumberType::Double:
            putWord(out, std::bit_cast<uint64_t>(v), 8, little);
            break;
        default:
            FAIL() << "not a binary type";
    }
}

class RawLoaderTest : public ::testing::Test {
protected:
    std::string dir = testdata::freshTempDir("raw-loader");
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::string write(const Bytes& bytes, const std::string& name = "data") {
        const std::string path = dir + "/" + name;
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return path;
    }

    // A source of `rows` rows of `points` points; 1 row makes it 1-D.
    static SpectrumSource source(const std::string& path, NumberType t, uint32_t flags,
                                 uint32_t points, uint32_t rows = 1) {
        SpectrumSource s;
        s.rawPath = path;
        s.numberType = t;
        s.flags = flags;
        s.blockSize = kDefaultBlockSize;
        s.xIndex = rows > 1 ? 2 : 1;
        s.dims[s.xIndex].points = points;
        if (rows > 1) s.dims[1].points = rows, s.yIndex = 1;
        return s;
    }
};

TEST_F(RawLoaderTest, EveryNumberTypeDecodesInBothByteOrders) {
    struct Case {
        NumberType type;
        std::vector<double> values;
    };
    const std::vector<Case> cases = {
        {NumberType::Long, {1, -1, 2147483520.0, -2147483648.0, 123456, -654321}},
        {NumberType::Short, {1, -1, 32767, -32768, 1234, -4321}},
        {NumberType::Bits24, {1, -1, 8388607, -8388608, 65536, -70000}},
        {NumberType::Float, {0.5, -0.25, 3.0e30, -1.0e-30, 1234.5, -7.75}},
        {NumberType::Double, {0.5, -0.25, 3.0e30, -1.0e-30, 1234.5, -7.75}},
    };
    for (const auto& c : cases)
        for (bool little : {false, true}) {
            SCOPED_TRACE(std::string(numberTypeName(c.type)) + (little ? " LE" : " BE"));
            Bytes b;
            for (double v : c.values) put(b, c.type, v, little);
            auto m = loadMatrix(source(write(b), c.type, little ? sf::kLittleEndian : 0, 3));
            ASSERT_TRUE(m);
            ASSERT_EQ(m->re.size(), 3u);
            ASSERT_EQ(m->im.size(), 3u);
            for (size_t i = 0; i < 3; ++i) {
                EXPECT_EQ(m->re[i], static_cast<float>(c.values[2 * i]));
                EXPECT_EQ(m->im[i], static_cast<float>(c.values[2 * i + 1]));
            }
        }
}

TEST_F(RawLoaderTest, OutOfRangeDoublesBecomeInfinities) {
    Bytes b;
    put(b, NumberType::Double, 1e300, true);
    put(b, NumberType::Double, -1e300, true);
    auto m = loadMatrix(source(write(b), NumberType::Double, sf::kLittleEndian, 1));
    ASSERT_TRUE(m);
    EXPECT_TRUE(std::isinf(m->re[0]) && m->re[0] > 0);
    EXPECT_TRUE(std::isinf(m->im[0]) && m->im[0] < 0);
}

TEST_F(RawLoaderTest, ShortsAcrossStagingChunksKeepTheirPlace) {
    Bytes b;
    const uint32_t points = 5000;  // 10,000 values: three chunks of the staging buffer
    for (uint32_t i = 0; i < 2 * points; ++i)
        put(b, NumberType::Short, (i % 30000) - 15000.0, false);
    auto m = loadMatrix(source(write(b), NumberType::Short, 0, points));
    ASSERT_TRUE(m);
    for (uint32_t p : {0u, 2047u, 2048u, 4095u, 4096u, 4999u}) {
        EXPECT_EQ(m->re[p], static_cast<float>((2 * p % 30000) - 15000.0)) << p;
        EXPECT_EQ(m->im[p], static_cast<float>(((2 * p + 1) % 30000) - 15000.0)) << p;
    }
}

TEST_F(RawLoaderTest, BlockMatrixTilesBecomePlainRows) {
    // 8 x 4 real matrix in tiles 4 wide and 2 high; value = row * 100 + column.
    const int width = 4, height = 2, cols = 8, rows = 4;
    Bytes b;
    for (int tr = 0; tr < rows / height; ++tr)
        for (int tc = 0; tc < cols / width; ++tc)
            for (int k = 0; k < height; ++k)
                for (int c = 0; c < width; ++c)
                    put(b, NumberType::Long, (tr * height + k) * 100 + tc * width + c, true);
    auto s = source(write(b, "2rr"), NumberType::Long,
                    sf::kRealOnly | sf::kBlockMatrix | sf::kLittleEndian, cols, rows);
    s.blockSize = width * width * 8;
    s.subMatrixHeight = height;
    auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_TRUE(m->im.empty());
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) EXPECT_EQ(m->re[r * cols + c], r * 100 + c) << r << "," << c;
    s.blockSize = 100;  // not the square of a tile width
    EXPECT_FALSE(loadMatrix(s));
    s.blockSize = 3 * 3 * 8;  // tiles that do not divide the columns
    EXPECT_FALSE(loadMatrix(s));
}

// Real-only rows and a header to skip are read from real processed and NMRPipe files.
TEST_F(RawLoaderTest, InterleavedAndConjugateLayouts) {
    Bytes b;
    for (int v : {1, 2, 3, 4, 5, 6, 7, 8}) put(b, NumberType::Long, v, false);
    const std::string path = write(b);
    // Each row: its real values, then its imaginary values; "interleaved" wins over "real only".
    auto inter = loadMatrix(source(path, NumberType::Long, sf::kInterleaved | sf::kRealOnly, 2, 2));
    ASSERT_TRUE(inter);
    EXPECT_EQ(inter->re, (std::vector<float>{1, 2, 5, 6}));
    EXPECT_EQ(inter->im, (std::vector<float>{3, 4, 7, 8}));
    EXPECT_FALSE(inter->realOnly());

    auto conj = loadMatrix(source(path, NumberType::Long, sf::kComplexConjugate, 4));
    ASSERT_TRUE(conj);
    EXPECT_EQ(conj->re, (std::vector<float>{1, 3, 5, 7}));
    EXPECT_EQ(conj->im, (std::vector<float>{-2, -4, -6, -8}));
    EXPECT_TRUE(conj->state & matrix_state::kComplexConjugate);
}

TEST_F(RawLoaderTest, MatrixCarriesAxesIndicesAndState) {
    Bytes b;
    for (int v = 0; v < 8; ++v) put(b, NumberType::Float, v, true);
    auto s = source(write(b), NumberType::Float, sf::kLittleEndian | sf::kMagnitude, 4);
    s.dims[1].spectralWidth = 12.5f;
    s.dims[1].timeShift = -61.0f;
    s.dims[2].points = 0;  // a saved 0 is a 1-point axis
    s.phaseable = {0, 1, 1, 0};
    auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->dims[1].spectralWidth, 12.5f);
    EXPECT_EQ(m->dims[1].timeShift, -61.0f);
    for (int f : {0, 2, 3}) EXPECT_EQ(m->dims[f].points, 1u);
    EXPECT_EQ(m->pointCount(), 4u);
    EXPECT_EQ(m->contiguous, 1);
    EXPECT_EQ(m->xIndex, 1);
    EXPECT_EQ(m->dimensions, 1);
    EXPECT_EQ(m->phaseable, s.phaseable);
    EXPECT_EQ(m->state,
              matrix_state::kMagnitude | matrix_state::kF2Phaseable | matrix_state::kWorkRow);
    EXPECT_EQ(m->workRow.size(), 4u);
}

TEST_F(RawLoaderTest, InMemorySourcesNeedNoFile) {
    SpectrumSource s = source("", NumberType::InMemory, 0, 3);
    s.memory = {1, -1, 2, -2, 3, -3};
    auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->re, (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(m->im, (std::vector<float>{-1, -2, -3}));
    s.memory.pop_back();  // a buffer in memory must be whole
    EXPECT_FALSE(loadMatrix(s));
    s.flags = sf::kRealOnly;
    s.memory = {4, 5, 6};
    EXPECT_EQ(loadMatrix(s)->re, (std::vector<float>{4, 5, 6}));
}

TEST_F(RawLoaderTest, TruncatedLastRowIsZeroFilledOnlyWhenMostlyThere) {
    // Two rows of 4 complex points; the file loses values from the end of the last row.
    auto file = [&](int values) {
        Bytes b;
        for (int v = 1; v <= values; ++v) put(b, NumberType::Long, v, false);
        return source(write(b), NumberType::Long, 0, 4, 2);
    };
    auto m = loadMatrix(file(13));  // 3 of 8 values of row 2 missing
    ASSERT_TRUE(m);
    EXPECT_EQ(m->re, (std::vector<float>{1, 3, 5, 7, 9, 11, 13, 0}));
    EXPECT_EQ(m->im, (std::vector<float>{2, 4, 6, 8, 10, 12, 0, 0}));
    EXPECT_TRUE(loadMatrix(file(12)));   // exactly half of the last row
    EXPECT_FALSE(loadMatrix(file(11)));  // more than half missing
    EXPECT_FALSE(loadMatrix(file(4)));   // rows missing altogether
    EXPECT_FALSE(loadMatrix(file(0)));
}

TEST_F(RawLoaderTest, HostileSizesAreRefusedBeforeAllocating) {
    const std::string path = write(Bytes(64, 0));
    const auto refused = [](SpectrumSource s, auto change) {
        change(s);
        return !loadMatrix(s);
    };
    const auto plain = source(path, NumberType::Long, 0, 4);
    // 2^31 x 2^31 points overflow any size; 2^32 - 1 fits in 64 bits but not under the matrix
    // limit; 2^27 is under the limit and far beyond the file.
    EXPECT_TRUE(refused(plain, [](auto& s) { s.dims[1].points = s.dims[2].points = 1u << 31; }));
    EXPECT_TRUE(refused(plain, [](auto& s) { s.dims[1].points = 0xFFFFFFFFu; }));
    EXPECT_TRUE(refused(plain, [](auto& s) { s.dims[1].points = 1u << 27; }));
    EXPECT_TRUE(refused(plain, [](auto& s) { s.headerSize = 0xFFFFFFFFu; }));
    // Padding that makes stride x rows exceed 2^50; tiles beyond any size.
    EXPECT_TRUE(refused(source(path, NumberType::Long, 0, 1, 1u << 20),
                        [](auto& s) { s.blockHeader = 0xFFFFFFFFu; }));
    EXPECT_TRUE(refused(source(path, NumberType::Long, sf::kRealOnly | sf::kBlockMatrix, 4, 4),
                        [](auto& s) { s.blockSize = 0xFFFFFFF8u; }));
}

TEST_F(RawLoaderTest, MissingFilesAndUndecodedFormsGiveNothing) {
    Bytes b(64, 0);
    const std::string path = write(b);
    EXPECT_FALSE(loadMatrix(source(dir + "/absent", NumberType::Long, 0, 4)));
    EXPECT_FALSE(loadMatrix(source(dir, NumberType::Long, 0, 4)));  // a folder
    for (auto t :
         {NumberType::AsciiSqueezed, NumberType::Text, NumberType::NoData, NumberType::SpinSystem})
        EXPECT_FALSE(loadMatrix(source(path, t, 0, 4))) << numberTypeName(t);
    EXPECT_FALSE(loadMatrix(source(path, NumberType::Long, sf::kVarianBinary, 4)));
    EXPECT_TRUE(loadMatrix(source(path, NumberType::Long, 0, 4)));
}

TEST_F(RawLoaderTest, SingleRawValuesAtAByteOffset) {
    Bytes b = {0x00, 0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF};
    auto s = source(write(b), NumberType::Long, 0, 1);
    EXPECT_EQ(readRawValue(s, 1), static_cast<float>(0x12345678));
    s.flags = sf::kLittleEndian;
    EXPECT_EQ(readRawValue(s, 1), static_cast<float>(0x78563412));
    s.numberType = NumberType::Short;
    EXPECT_EQ(readRawValue(s, 5), -1.0f);
    EXPECT_FALSE(readRawValue(s, 6));  // one byte short of a value
    const unsigned char bits24[] = {0x80, 0x00, 0x01};
    EXPECT_EQ(decodeRawValue(bits24, NumberType::Bits24, false), -8388607.0f);
    EXPECT_EQ(decodeRawValue(bits24, NumberType::Bits24, true), 65664.0f);
}

// Real spectrometer data, decoded here by hand from the file's bytes.
int32_t wordAt(const std::string& bytes, size_t offset, bool little) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i)
        v |= uint32_t{static_cast<unsigned char>(bytes.at(offset + i))}
             << (8 * (little ? i : 3 - i));
    return static_cast<int32_t>(v);
}

// Value `at` of the matrix is the word at `offset`; for complex data its imaginary part is the
// word after it.
void expectWord(const SpectrumMatrix& m, size_t at, const std::string& bytes, size_t offset,
                bool little) {
    EXPECT_EQ(m.re.at(at), static_cast<float>(wordAt(bytes, offset, little))) << at;
    if (m.im.empty()) return;
    EXPECT_EQ(m.im.at(at), static_cast<float>(wordAt(bytes, offset + 4, little))) << at;
}

std::optional<SpectrumMatrix> readAndLoad(const std::string& folder, bool processed = false) {
    auto r = readBrukerFolder(folder, {.threeD = false, .processed = processed});
    return r ? loadMatrix(r->source) : std::nullopt;
}

// The raw sets are loaded by every test of the transform; their processed spectra here.
TEST(RawLoaderRealData, EveryProcessedSpectrumLoadsAsRealRows) {
    for (const char* name : {"aspirin-1h-processed", "strychnine-1h", "cyclosporin-cosy",
                             "cosy-nus", "t1rho-1h", "inversion-recovery"}) {
        SCOPED_TRACE(name);
        const auto source = readBrukerFolder(testdata::bruker(name), {.processed = true});
        auto m = loadMatrix(source.value().source);
        ASSERT_TRUE(m);
        EXPECT_TRUE(m->realOnly());
        EXPECT_EQ(m->re.size(), pointProduct(source->source.dims));
        EXPECT_TRUE(m->im.empty());
    }
    // The words of aspirin's 1r (BYTORDP 0).
    const std::string processed = testdata::bruker("aspirin-1h-processed");
    const std::string r1 = testdata::readFile(processed + "/pdata/1/1r");
    const auto m = readAndLoad(processed, true);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size() * 4, r1.size());
    for (size_t p : {0u, 12345u, 32767u}) expectWord(*m, p, r1, 4 * p, true);
}

TEST(RawLoaderRealData, PaddedSerRowsBuiltFromRealRows) {
    // The first 125 complex points of three real COSY rows, each row padded to 1 kB, with
    // acquisition files that describe exactly that.
    const std::string original = testdata::bruker("cyclosporin-cosy");
    const std::string ser = testdata::readFile(original + "/ser");
    const std::string dir = testdata::freshTempDir("padded-ser");
    auto rewriteTd = [&](const std::string& file, const std::string& from, const std::string& to) {
        std::string text = testdata::readFile(original + "/" + file);
        const size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos);
        std::ofstream(dir + "/" + file, std::ios::binary) << text.replace(at, from.size(), to);
    };
    rewriteTd("acqus", "##$TD= 2048", "##$TD= 250");
    rewriteTd("acqu2s", "##$TD= 128", "##$TD= 3");
    {
        std::ofstream out(dir + "/ser", std::ios::binary);
        for (size_t row = 0; row < 3; ++row)
            out << ser.substr(row * 8192, 1000) << std::string(24, '\x55');
    }
    const auto r = readBrukerFolder(dir);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.blockSize, 1024u);
    EXPECT_EQ(r->source.blockHeader, 24u);
    auto m = loadMatrix(r->source);
    std::filesystem::remove_all(dir);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size(), 375u);
    for (size_t row = 0; row < 3; ++row)
        for (size_t p : {0u, 60u, 124u})
            expectWord(*m, row * 125 + p, ser, row * 8192 + p * 8, true);
}

TEST(RawLoaderRealData, ProcessedTilesBecomeRows) {
    // 2048 x 2048 points in tiles of 128 x 128 (XDIM 128 on both axes).
    const std::string folder = testdata::bruker("cosy-nus");
    const std::string rr = testdata::readFile(folder + "/pdata/1/2rr");
    auto m = readAndLoad(folder, true);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size(), 2048u * 2048u);
    for (auto [r, c] : {std::pair<size_t, size_t>{0, 0},
                        {5, 130},
                        {127, 128},
                        {1000, 2047},
                        {2047, 1},
                        {1024, 1024}}) {
        const size_t tile = (r / 128) * 16 + c / 128;
        expectWord(*m, r * 2048 + c, rr, (tile * 128 * 128 + (r % 128) * 128 + c % 128) * 4, true);
    }
}

}  // namespace
}  // namespace zolt

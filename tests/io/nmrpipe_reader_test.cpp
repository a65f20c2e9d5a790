// NMRPipe files written from the bruker-data-test sets: the 1H FID of aspirin, its transformed
// real spectrum and the cyclosporin HSQC FID, read as they are, byte-swapped and damaged.
#include "io/nmrpipe/nmrpipe_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/document_opening.h"
#include "io/data_set_opening.h"
#include "io/format_recognition.h"
#include "io/nmrpipe/nmrpipe_header.h"
#include "io/raw_loader.h"
#include "processing/ft_pipeline.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
namespace sf = source_flags;

std::string pipeFile(const std::string& name) {
    return testdata::shared("nmrpipe/" + name);
}

// The data come with the project's shared test data; without them there is nothing to read.
#define REQUIRE_PIPE_DATA()                      \
    if (!fs::exists(pipeFile("aspirin-1h.fid"))) \
    GTEST_SKIP() << "no NMRPipe test data in " << testdata::shared("nmrpipe")

// The file with every 4-byte word reversed: the same data as a big-endian machine writes them.
std::string byteSwapped(const std::string& bytes) {
    std::string out = bytes;
    for (size_t i = 0; i + 4 <= out.size(); i += 4) {
        std::swap(out[i], out[i + 3]);
        std::swap(out[i + 1], out[i + 2]);
    }
    return out;
}

class NmrPipeReader : public ::testing::Test {
protected:
    std::string dir = testdata::freshTempDir("nmrpipe");
    void TearDown() override { fs::remove_all(dir); }

    std::string write(const std::string& name, const std::string& bytes) const {
        const std::string path = dir + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    static std::optional<DataSetRead> open(const std::string& path, Message& failure) {
        return readDataSet(path, recognizeFormat(path), {}, failure);
    }
};

TEST_F(NmrPipeReader, ComplexFidIsOneDimensionalTimeDomainWithItsAxis) {
    REQUIRE_PIPE_DATA();
    Message failure;
    const auto r = open(pipeFile("aspirin-1h.fid"), failure);
    ASSERT_TRUE(r) << failure.text;
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.provenance + " " + s.fileName, "NMRPipe aspirin-1h.fid");
    // Width and origin are the header's 4789.27197 and -143.076385 Hz over 300.13 MHz.
    EXPECT_EQ(testdata::sourceText(s),
              "float; little endian, loose native file, interleaved, NMRPipe complex data; header "
              "2048; block 32768 + 0; time domain 1; x 1 y 0 z 0; ft 32 0 0; phaseable 1 0 0\n"
              "f1: 8192 1H sw 15.95732 lo -0.4767147 at 300.13 shift 0");
    // The header holds 0 degrees Celsius.
    EXPECT_FLOAT_EQ(r->metadata.temperature, 273.15f);

    // Each row keeps its real values before its imaginary ones.
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size(), 8192u);
    ASSERT_EQ(m->im.size(), 8192u);
    const std::string bytes = testdata::readFile(pipeFile("aspirin-1h.fid"));
    float firstImaginary = 0;
    std::memcpy(&firstImaginary, bytes.data() + 2048 + 8192 * 4 + 4 * 70, 4);
    EXPECT_EQ(m->im[70], firstImaginary);
}

TEST_F(NmrPipeReader, BigEndianCopyReadsTheSameNumbersAndAxes) {
    REQUIRE_PIPE_DATA();
    for (const char* name : {"aspirin-1h.fid", "hsqc.fid"}) {
        SCOPED_TRACE(name);
        const std::string swapped = write(name, byteSwapped(testdata::readFile(pipeFile(name))));
        Message failure;
        const auto little = open(pipeFile(name), failure);
        const auto big = open(swapped, failure);
        ASSERT_TRUE(little && big) << failure.text;
        EXPECT_EQ(big->source.flags, little->source.flags & ~sf::kLittleEndian);
        for (int f = 1; f <= 2; ++f) {
            EXPECT_EQ(big->source.dims[f].points, little->source.dims[f].points);
            EXPECT_EQ(big->source.dims[f].lowestPpm, little->source.dims[f].lowestPpm);
            EXPECT_EQ(big->source.dims[f].isotope, little->source.dims[f].isotope);
        }
        const auto a = loadMatrix(little->source), b = loadMatrix(big->source);
        ASSERT_TRUE(a && b);
        EXPECT_EQ(a->re, b->re);
        EXPECT_EQ(a->im, b->im);
    }
}

TEST_F(NmrPipeReader, FidTransformedLikeTheBrukerOneGivesTheSameSpectrum) {
    REQUIRE_PIPE_DATA();
    Message failure;
    auto pipe = readDocument(pipeFile("aspirin-1h.fid"), Preferences{}, failure);
    ASSERT_TRUE(pipe) << failure.text;
    auto bruker = testdata::openExperiment("aspirin-1h");
    ASSERT_TRUE(bruker);
    // The header keeps neither the spectrometer's window nor its digital-filter delay: the
    // Bruker document lends both, so that both FIDs go through the same steps.
    pipe->processing = bruker->processing;
    pipe->source.dims[1].timeShift = bruker->source.dims[1].timeShift;
    pipe->matrix.dims[1].timeShift = bruker->matrix.dims[1].timeShift;
    ASSERT_TRUE(testdata::transformAll(*pipe));
    ASSERT_TRUE(testdata::transformAll(*bruker));
    ASSERT_EQ(pipe->matrix.re.size(), bruker->matrix.re.size());
    EXPECT_GE(testdata::correlation(pipe->matrix.re, bruker->matrix.re), 0.99);

    // The origin the converter wrote is the frequency of the FID's last point: one point of
    // the 8192 above the low edge of the Bruker axis.
    const DimensionRecord &ours = pipe->matrix.dims[1], &theirs = bruker->matrix.dims[1];
    const double fidPoint = theirs.spectralWidth / 8192;
    EXPECT_NEAR(ours.lowestPpm - theirs.lowestPpm, fidPoint, 0.05 * fidPoint);
    // Widths in ppm of the base frequency and of the transmitter's.
    EXPECT_NEAR(ours.spectralWidth, theirs.spectralWidth, 2e-4);
    SpectrumMatrix aligned = pipe->matrix;
    aligned.dims[1].lowestPpm -= static_cast<float>(fidPoint);
    EXPECT_GE(testdata::correlationOverPpm(aligned, bruker->matrix), 0.99);
    EXPECT_GE(testdata::correlationOverPpm(aligned, bruker->matrix, true), 0.99);
}

TEST_F(NmrPipeReader, TransformedRealSpectrumHasItsPeaksWhereTheBrukerOneHas) {
    REQUIRE_PIPE_DATA();
    Message failure;
    const auto r = open(pipeFile("aspirin-1h.ft1"), failure);
    ASSERT_TRUE(r) << failure.text;
    const SpectrumSource& s = r->source;
    EXPECT_EQ(testdata::sourceText(s),
              "float; little endian, loose native file, real only; header 2048; block 65536 + 0; "
              "time domain 0; x 1 y 0 z 0; ft 32 0 0; phaseable 0 0 0\n"
              "f1: 16384 1H sw 15.95732 lo -0.4776885 at 300.13 shift 0");  // origin -143.368637 Hz
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_TRUE(m->state & matrix_state::kRealOnly);
    EXPECT_TRUE(m->im.empty());

    auto doc = readDocument(pipeFile("aspirin-1h.ft1"), Preferences{}, failure);
    ASSERT_TRUE(doc) << failure.text;
    EXPECT_EQ(doc->matrix.re, m->re);
    EXPECT_EQ(testdata::transformAll(*doc), true);  // nothing left in the time domain
    EXPECT_EQ(doc->matrix.re, m->re);

    const auto vendor = testdata::vendorSpectrum("aspirin-1h-processed");
    ASSERT_TRUE(vendor);
    // Not phased: the largest absolute real value of a line lies within its width (2 Hz).
    const auto ours = testdata::strongestPeaks(*m, 5, false, 8);
    const auto theirs = testdata::strongestPeaks(*vendor, 5, false, 8);
    ASSERT_EQ(ours.size(), 5u);
    for (const auto& p : theirs) {
        double nearest = 1e9;
        for (const auto& q : ours) nearest = std::min(nearest, std::abs(q.xPpm - p.xPpm));
        EXPECT_LT(nearest, 2.0 / 300.13) << "peak at " << p.xPpm << " ppm";
    }
}

TEST_F(NmrPipeReader, HsqcFidIsTwoDimensionalWithCarbonAndProtonAxes) {
    REQUIRE_PIPE_DATA();
    Message failure;
    const auto r = open(pipeFile("hsqc.fid"), failure);
    ASSERT_TRUE(r) << failure.text;
    const SpectrumSource& s = r->source;
    EXPECT_EQ(countDimensions(s), 2);
    // f2: 6009.61523 Hz at 500.13 MHz; f1: 20833.334 Hz from -1451.3204 Hz at 125.75779 MHz.
    EXPECT_EQ(testdata::sourceText(s),
              "float; little endian, loose native file, interleaved, NMRPipe complex data; header "
              "2048; block 2048 + 0; time domain 2; x 2 y 1 z 0; ft 0 32 0; phaseable 1 1 0\n"
              "f1: 256 13C sw 165.6624 lo -11.5406 at 125.7578 shift 0\n"
              "f2: 512 1H sw 12.01611 lo -1.281584 at 500.13 shift 0");
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->re.size(), 256u * 512);
    // The last row of the file is its last 512 real and 512 imaginary values.
    const std::string bytes = testdata::readFile(pipeFile("hsqc.fid"));
    float lastImaginary = 0;
    std::memcpy(&lastImaginary, bytes.data() + bytes.size() - 4, 4);
    EXPECT_EQ(m->im.back(), lastImaginary);

    // Opened as a document it transforms along both axes.
    auto doc = readDocument(pipeFile("hsqc.fid"), Preferences{}, failure);
    ASSERT_TRUE(doc) << failure.text;
    EXPECT_EQ(doc->matrix.dimensions, 2);
    EXPECT_EQ(doc->source.provenance, "NMRPipe");
    ASSERT_TRUE(testdata::transformAll(*doc));
    EXPECT_EQ(doc->source.highestTIndex, 0);
}

// Header words edited in a copy of the aspirin FID.
class NmrPipeHeaderEdits : public NmrPipeReader {
protected:
    std::string withWords(const std::vector<std::pair<int, float>>& words) const {
        std::string bytes = testdata::readFile(pipeFile("aspirin-1h.fid"));
        for (const auto& [word, value] : words) std::memcpy(&bytes[4 * word], &value, 4);
        return write("edited.fid", bytes);
    }
};

// A transposed file takes the indirect parameters for its rows (75.5 MHz, 15100 Hz from
// 755 Hz); rows of a 1-D file are a pseudo-dimension; the transformed flags of both axes count
// but never below a spectrum.
TEST_F(NmrPipeHeaderEdits, TranspositionRowsAndFlagsOfTheHeader) {
    REQUIRE_PIPE_DATA();
    using namespace nmrpipe_word;
    const std::pair<std::vector<std::pair<int, float>>, const char*> cases[] = {
        {{{kTransposed, 1},
          {kIndirectObserve, 75.5f},
          {kIndirectSweepWidth, 15100},
          {kIndirectOrigin, 755}},
         "float; little endian, loose native file, interleaved, NMRPipe complex data; header 2048; "
         "block 32768 + 0; time domain 1; x 1 y 0 z 0; ft 32 0 0; phaseable 1 0 0\n"
         "f1: 8192 Y sw 200 lo 10 at 75.5 shift 0"},
        {{{kDirectSize, 1024}, {kRowCount, 8}},
         "float; little endian, loose native file, interleaved, NMRPipe complex data; header 2048; "
         "block 4096 + 0; time domain 1; x 2 y 1 z 0; ft 0 32 0; phaseable 0 1 0\n"
         "f1: 8 .. sw 8 lo -8 at 8 shift 0\n"
         "f2: 1024 1H sw 15.95732 lo -0.4767147 at 300.13 shift 0"},
        {{{kMagnitudeFlag, 1},
          {kTemperature, 25},
          {kDirectTransformed, 1},
          {kIndirectTransformed, 1}},
         "float; little endian, loose native file, magnitude, interleaved, NMRPipe complex data; "
         "header 2048; block 32768 + 0; time domain 0; x 1 y 0 z 0; ft 32 0 0; phaseable 1 0 0\n"
         "f1: 8192 1H sw 15.95732 lo -0.4767147 at 300.13 shift 0"},
    };
    for (const auto& [words, text] : cases) {
        Message failure;
        const auto r = open(withWords(words), failure);
        ASSERT_TRUE(r) << failure.text;
        EXPECT_EQ(testdata::sourceText(r->source), text);
    }
    Message failure;
    EXPECT_FLOAT_EQ(open(withWords({{kTemperature, 25}}), failure)->metadata.temperature, 298.15f);
}

TEST_F(NmrPipeHeaderEdits, DamagedFilesAreRefusedWithTheirMessage) {
    REQUIRE_PIPE_DATA();
    using namespace nmrpipe_word;
    const std::string fid = testdata::readFile(pipeFile("aspirin-1h.fid"));
    const std::string incoherent = "This NMRPipe file seems incoherent";
    struct Case {
        std::string name, path;
    };
    const Case headerFaults[] = {
        {"header cut short", write("short.fid", fid.substr(0, 2047))},
        {"no points", withWords({{kDirectSize, 0}})},
        {"fractional rows", withWords({{kRowCount, 1.5f}})},
        {"huge size", withWords({{kDirectSize, 3e9f}})},
        {"not a number", withWords({{kRowCount, std::nanf("")}})},
    };
    for (const Case& c : headerFaults) {
        SCOPED_TRACE(c.name);
        Message failure;
        auto doc = readDocument(c.path, Preferences{}, failure);
        EXPECT_FALSE(doc);
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, incoherent);
    }
    // A header that promises more data than the file holds fails when the points are read.
    const Case dataFaults[] = {
        {"data cut in half", write("half.fid", fid.substr(0, 2048 + 16384))},
        {"rows beyond the end", withWords({{kRowCount, 100000}})},
    };
    for (const Case& c : dataFaults) {
        SCOPED_TRACE(c.name);
        Message failure;
        auto doc = readDocument(c.path, Preferences{}, failure);
        EXPECT_FALSE(doc);
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, "Error found while trying to read data-points");
    }
}

}  // namespace
}  // namespace zolt

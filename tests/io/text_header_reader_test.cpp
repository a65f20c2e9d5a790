// Text-header files (">>> End of header <<<" before little-endian complex doubles), built here
// around the aspirin FID of bruker-data-test.
#include "io/text_header/text_header_reader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/document_opening.h"
#include "io/data_set_opening.h"
#include "io/format_recognition.h"
#include "io/raw_loader.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

std::string header(const std::string& vectorSize, const std::string& rows = "1",
                   const std::string& parts = "1") {
    return ">>> Begin of header <<<\r\n"
           "PatientName: phantom\r\n"
           "MRFrequency: 300.13\r\n"
           "Nucleus: 1H\r\n"
           "DwellTime: 208.8\r\n"
           "VectorSize: " +
           vectorSize +
           "\r\n"
           "NumberOfRows: " +
           rows +
           "\r\n"
           "NumberOfColumns: 1\r\n"
           "NumberOf3DParts: " +
           parts +
           "\r\n"
           ">>> End of header <<<\r\n";
}

// The aspirin FID (big-endian 32-bit integers) as little-endian doubles.
std::string aspirinAsDoubles() {
    const std::string fid = testdata::readFile(testdata::bruker("aspirin-1h") + "/fid");
    std::string out;
    for (size_t i = 0; i + 4 <= fid.size(); i += 4) {
        uint32_t word = 0;
        for (int k = 0; k < 4; ++k) word = word << 8 | static_cast<unsigned char>(fid[i + k]);
        const auto v = static_cast<int32_t>(word);
        const auto bits = std::bit_cast<uint64_t>(static_cast<double>(v));
        for (int k = 0; k < 8; ++k) out += static_cast<char>(bits >> (8 * k));
    }
    return out;
}

class TextHeaderReader : public ::testing::Test {
protected:
    std::string dir = testdata::freshTempDir("text-header");
    void TearDown() override { fs::remove_all(dir); }

    std::string write(const std::string& bytes, const std::string& name = "scan.rda") const {
        const std::string path = dir + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
};

TEST_F(TextHeaderReader, AspirinFidBehindAHeaderOpensAsTheBrukerOne) {
    const std::string head = header("8192");
    const std::string path = write(head + aspirinAsDoubles());
    ASSERT_EQ(recognizeFormat(path), FormatCode::Siemens);
    Message failure;
    const auto r = readDataSet(path, FormatCode::Siemens, {}, failure);
    ASSERT_TRUE(r) << failure.text;
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.provenance, "Siemens");
    EXPECT_EQ(s.headerSize, head.size());
    // 208.8 microseconds: 4789.27 Hz, centred on the carrier.
    EXPECT_EQ(testdata::sourceText(s),
              "double; little endian, loose native file; header 197; block 131072 + 0; time domain "
              "1; x 1 y 0 z 0; ft 32 0 0; phaseable 1 0 0\n"
              "f1: 8192 1H sw 15.95732 lo -7.978662 at 300.13 shift 0");

    const auto ours = loadMatrix(s);
    auto bruker = testdata::openExperiment("aspirin-1h");
    ASSERT_TRUE(ours && bruker);
    EXPECT_EQ(ours->re, bruker->matrix.re);
    EXPECT_EQ(ours->im, bruker->matrix.im);
}

TEST_F(TextHeaderReader, RowsAndPartsBecomePseudoDimensions) {
    for (const auto& [parts, text] :
         {std::pair{"3",
                    "double; little endian, loose native file; header 196; block 4096 + 0; time "
                    "domain 1; x 0 y 0 z 0; ft 0 0 32; phaseable 0 0 1\n"
                    "f1: 3 .. sw 3 lo -3 at 3 shift 0\n"
                    "f2: 4 .. sw 4 lo -4 at 4 shift 0\n"
                    "f3: 256 1H sw 15.95732 lo -7.978662 at 300.13 shift 0"},
          std::pair{"1",
                    "double; little endian, loose native file; header 196; block 4096 + 0; time "
                    "domain 1; x 0 y 0 z 0; ft 0 32 0; phaseable 0 1 0\n"
                    "f1: 4 .. sw 4 lo -4 at 4 shift 0\n"
                    "f2: 256 1H sw 15.95732 lo -7.978662 at 300.13 shift 0"}}) {
        const auto s = parseTextHeader(header("256", "4", parts));
        ASSERT_TRUE(s);
        EXPECT_EQ(testdata::sourceText(*s), text);
        EXPECT_EQ(countDimensions(*s), 1);
    }
}

TEST_F(TextHeaderReader, LabelsAreComparedOnTheirFirstCharacters) {
    // "DwellTim" is all that is compared of the first five labels; twelve of the others.
    std::string text = header("64");
    text.replace(text.find("DwellTime:"), 10, "DwellTimeUs:");
    text.replace(text.find("Nucleus: 1H"), 11, "Nucleus: 31P");
    const auto s = parseTextHeader(text);
    ASSERT_TRUE(s);
    EXPECT_EQ(s->dims[1].isotope, 31);
    EXPECT_EQ(s->dims[1].atom[0], 'P');
    text.replace(text.find("NumberOfColumns:"), 16, "NumberOfColour:");
    EXPECT_FALSE(parseTextHeader(text));
}

TEST_F(TextHeaderReader, IncompleteHeadersAreIncoherent) {
    const std::string good = header("64");
    struct Case {
        const char* name;
        std::string text;
    };
    auto without = [&](const std::string& part) {
        std::string t = good;
        t.erase(t.find(part), part.size());
        return t;
    };
    const Case cases[] = {
        {"no dwell time", without("DwellTime: 208.8\r\n")},
        {"no end of header", without(">>> End of header <<<\r\n")},
        {"no vector size", without("VectorSize: 64\r\n")},
        {"zero points", header("0")},
        {"fractional points", header("12.5")},
        {"huge row count", header("64", "99999999999")},
        {"header beyond the bytes read", std::string(2600, ' ') + good},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Message failure;
        EXPECT_FALSE(readDocument(write(c.text + std::string(1024, '\0')), Preferences{}, failure));
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, "This Siemens file seems incoherent");
    }
    // A whole header whose data stop early fails on the points.
    Message failure;
    EXPECT_FALSE(
        readDocument(write(header("8192") + std::string(100, '\0')), Preferences{}, failure));
    EXPECT_EQ(failure.text, "Error found while trying to read data-points");
}

}  // namespace
}  // namespace zolt

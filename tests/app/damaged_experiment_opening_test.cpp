// Real experiments damaged the ways files get damaged (cut short, parameters out of range),
// opened as the program opens them: a document of what is really there, or the message.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/document_opening.h"
#include "io/format_recognition.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// A copy of the parameter files of a real experiment, with one parameter line replaced and
// the raw file cut to `rawBytes` (all of it when npos).
class DamagedCopy {
public:
    // With `processed`, the spectrometer's processed data (pdata) come along.
    DamagedCopy(const std::string& name, const std::string& rawName, size_t rawBytes,
                bool processed = false)
        : original_(testdata::bruker(name)), dir_(testdata::freshTempDir("damaged")) {
        for (const char* file : {"acqus", "acqu2s", "pulseprogram"})
            if (fs::exists(original_ + "/" + file))
                fs::copy_file(original_ + "/" + file, dir_ + "/" + file);
        if (processed) fs::copy(original_ + "/pdata", dir_ + "/pdata", fs::copy_options::recursive);
        raw_ = testdata::readFile(original_ + "/" + rawName);
        std::ofstream(dir_ + "/" + rawName, std::ios::binary) << raw_.substr(0, rawBytes);
    }
    ~DamagedCopy() { fs::remove_all(dir_); }

    void replace(const std::string& file, const std::string& from, const std::string& to) {
        std::string text = testdata::readFile(dir_ + "/" + file);
        const size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        std::ofstream(dir_ + "/" + file, std::ios::binary) << text;
    }

    std::unique_ptr<SpectrumDocument> open(Message& failure) const {
        return readDocument(dir_, Preferences{}, failure);
    }
    // The 32-bit word at a byte offset of the original raw file.
    int32_t word(size_t offset, bool little) const {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v |= uint32_t{static_cast<unsigned char>(raw_.at(offset + i))}
                 << (8 * (little ? i : 3 - i));
        return static_cast<int32_t>(v);
    }

private:
    std::string original_, dir_, raw_;
};

void expectFailure(const Message& failure, const char* text) {
    EXPECT_EQ(failure.caption, "Failed to Read the file");
    EXPECT_EQ(failure.text, text);
}

TEST(DamagedExperimentOpening, TdOfTwoToThe31OnAnFidIsRefusedWithoutAllocating) {
    for (const char* td : {"2147483648", "2147483647", "4294967295", "99999999999"}) {
        SCOPED_TRACE(td);
        DamagedCopy copy("aspirin-1h", "fid", std::string::npos);
        copy.replace("acqus", "##$TD= 16384", std::string("##$TD= ") + td);
        Message failure;
        EXPECT_FALSE(copy.open(failure));
        expectFailure(failure, "Error found while trying to read data-points");
    }
}

TEST(DamagedExperimentOpening, TdOfTwoToThe31OnASerKeepsItsRowsButRefusesSuchRows) {
    DamagedCopy rows("cyclosporin-cosy", "ser", std::string::npos);
    rows.replace("acqu2s", "##$TD= 128", "##$TD= 2147483648");
    Message failure;
    const auto doc = rows.open(failure);
    ASSERT_TRUE(doc) << failure.text;
    EXPECT_EQ(doc->matrix.dims[1].points, 128u);
    EXPECT_EQ(doc->matrix.re.size(), 128u * 1024u);

    DamagedCopy points("cyclosporin-cosy", "ser", std::string::npos);
    points.replace("acqus", "##$TD= 2048", "##$TD= 2147483648");
    EXPECT_FALSE(points.open(failure));
    expectFailure(failure, "This Bruker file seems incoherent");
}

TEST(DamagedExperimentOpening, SerCutInsideARowKeepsTheCompleteRows) {
    // 8192 bytes a row: 100 rows and a half.
    DamagedCopy copy("cyclosporin-cosy", "ser", 100 * 8192 + 4096);
    Message failure;
    const auto doc = copy.open(failure);
    ASSERT_TRUE(doc) << failure.text;
    const SpectrumMatrix& m = doc->matrix;
    ASSERT_EQ(m.dims[1].points, 100u);
    ASSERT_EQ(m.re.size(), 100u * 1024u);
    for (size_t row : {0u, 99u})
        for (size_t p : {0u, 1023u}) {
            EXPECT_EQ(m.re[row * 1024 + p],
                      static_cast<float>(copy.word(row * 8192 + p * 8, true)));
            EXPECT_EQ(m.im[row * 1024 + p],
                      static_cast<float>(copy.word(row * 8192 + p * 8 + 4, true)));
        }
}

TEST(DamagedExperimentOpening, SerShorterThanOneRowIsIncoherent) {
    for (size_t bytes : {size_t{0}, size_t{8191}}) {
        SCOPED_TRACE(bytes);
        DamagedCopy copy("cyclosporin-cosy", "ser", bytes);
        Message failure;
        EXPECT_FALSE(copy.open(failure));
        expectFailure(failure, "This Bruker file seems incoherent");
    }
}

TEST(DamagedExperimentOpening, DamagedRawDataAreReportedNotReplacedByTheProcessedSpectrum) {
    // A ser cut inside its first row, then one whose TD asks for rows longer than the file.
    DamagedCopy cut("cyclosporin-cosy", "ser", 8191, true);
    DamagedCopy td("cyclosporin-cosy", "ser", std::string::npos, true);
    td.replace("acqus", "##$TD= 2048", "##$TD= 2147483648");
    for (const DamagedCopy* copy : {&cut, &td}) {
        Message failure;
        EXPECT_FALSE(copy->open(failure));
        expectFailure(failure, "This Bruker file seems incoherent");
    }
}

TEST(DamagedExperimentOpening, FidCutShortGivesTheDataPointMessageOrItsCompletePart) {
    // The FID is one row: with most of it there the rest reads as zeros, with less it is refused.
    {
        DamagedCopy copy("aspirin-1h", "fid", 6000 * 8);
        Message failure;
        const auto doc = copy.open(failure);
        ASSERT_TRUE(doc) << failure.text;
        ASSERT_EQ(doc->matrix.re.size(), 8192u);
        EXPECT_EQ(doc->matrix.re[5999], static_cast<float>(copy.word(5999 * 8, false)));
        EXPECT_EQ(doc->matrix.re[6000], 0.0f);
        EXPECT_EQ(doc->matrix.im[8191], 0.0f);
    }
    DamagedCopy copy("aspirin-1h", "fid", 3000 * 8);
    Message failure;
    EXPECT_FALSE(copy.open(failure));
    expectFailure(failure, "Error found while trying to read data-points");
}

}  // namespace
}  // namespace zolt

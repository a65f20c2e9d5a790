// Opening goes through the reader table: a format gains its reader with one function and one
// row, and a recognised format whose reader fails, or has none yet, says which format it is.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/document_opening.h"
#include "base/files.h"
#include "base/paths.h"
#include "io/data_set_walk.h"
#include "io/reader_table.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// A format of these tests alone: the line "points <n>", then the 32-bit integers of a FID in
// whatever byte order the spectrometer wrote them. Recognised as ASCII by its extension.
std::optional<DataSetRead> readPointsFile(const std::string& path, const ReadOptions&) {
    const std::string head = readFileHead(path, 64);
    const size_t end = head.find('\n');
    unsigned points = 0;
    if (end == std::string::npos || std::sscanf(head.c_str(), "points %u", &points) != 1 ||
        points == 0)
        return std::nullopt;
    DataSetRead read;
    SpectrumSource& s = read.source;
    s.rawPath = path;
    s.fileName = fromPath(toPath(path).filename());
    s.flags = source_flags::kLooseNativeFile;
    s.numberType = NumberType::Long;
    s.headerSize = static_cast<uint32_t>(end + 1);
    s.dims[1].points = points;
    s.highestTIndex = 1;
    return read;
}

// The program's rows with the test format's before them: the first row of a code wins.
std::vector<ReaderRow> withPointsFormat() {
    std::vector<ReaderRow> rows{{FormatCode::Ascii, "ASCII", readPointsFile, nullptr}};
    rows.insert(rows.end(), readerTable().begin(), readerTable().end());
    return rows;
}

// The little-endian FID of cyclosporin (32768 complex points) behind a points line.
class ReaderTableOpening : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = testdata::freshTempDir("reader-table");
        fs::create_directories(dir_ + "/sets");
        file_ = dir_ + "/sets/cyclosporin.txt";
        write("points 32768\n");
    }
    void TearDown() override { fs::remove_all(dir_); }

    void write(const std::string& header) const {
        std::ofstream(file_, std::ios::binary)
            << header << testdata::readFile(testdata::bruker("cyclosporin-1h") + "/fid");
    }
    std::unique_ptr<SpectrumDocument> open(const std::string& path, Message& failure,
                                           std::span<const ReaderRow> rows = readerTable()) {
        return readDocument(path, Preferences{}, failure, rows);
    }

    std::string dir_, file_;
};

TEST_F(ReaderTableOpening, ANewFormatOpensAsADocumentWithOneRow) {
    const std::vector<ReaderRow> rows = withPointsFormat();
    Message failure;
    const auto doc = open(file_, failure, rows);
    ASSERT_TRUE(doc) << failure.text;
    // What the reader left to the opener: the format's name, the display axis, the byte order.
    EXPECT_EQ(doc->source.provenance, "ASCII");
    EXPECT_EQ(doc->source.xIndex, 1);
    EXPECT_TRUE(doc->source.flags & source_flags::kLittleEndian);
    const auto bruker = testdata::openExperiment("cyclosporin-1h");
    ASSERT_TRUE(bruker);
    EXPECT_EQ(doc->matrix.re, bruker->matrix.re);
    EXPECT_EQ(doc->matrix.im, bruker->matrix.im);
    EXPECT_NE(findFourierTransformStep(doc->processing, 1), nullptr);
    EXPECT_EQ(doc->windowName, fs::path(dir_).filename().string() + "/sets/cyclosporin.txt");

    std::vector<std::string> found;
    const auto collect = [&](const std::string& path) {
        found.push_back(path);
        return true;
    };
    walkDataSets(dir_, collect);
    EXPECT_TRUE(found.empty());
    walkDataSets(dir_, collect, rows);
    EXPECT_EQ(found, std::vector<std::string>{file_});
}

TEST_F(ReaderTableOpening, ARecognisedFormatWithoutAWorkingReaderIsIncoherent) {
    const auto expectFailure = [](const Message& failure, const char* text) {
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, text);
    };
    Message failure;
    EXPECT_FALSE(open(file_, failure));
    expectFailure(failure, "This ASCII file seems incoherent");
    write("points none\n");
    EXPECT_FALSE(open(file_, failure, withPointsFormat()));
    expectFailure(failure, "This ASCII file seems incoherent");

    // Recognised by its procpar, a Varian experiment whose fid is missing.
    const std::string varian = testdata::shared("varian/missing.fid");
    failure = {};
    EXPECT_FALSE(open(varian, failure));
    expectFailure(failure, "This Varian file seems incoherent");
    // Its absent fid named directly is a path that does not exist.
    failure = {};
    EXPECT_FALSE(open(varian + "/fid", failure));
    expectFailure(failure, "This file or folder does not exist");

    std::ofstream(dir_ + "/notes.dat") << "no spectrum here";
    EXPECT_FALSE(open(dir_ + "/notes.dat", failure, withPointsFormat()));
    expectFailure(failure, "This format is unknown");
}

}  // namespace
}  // namespace zolt

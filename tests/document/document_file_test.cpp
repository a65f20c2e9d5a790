#include "document/document_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "document/sample_document.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using testing_documents::sampleDocument;

class DocumentFile : public ::testing::Test {
protected:
    void SetUp() override { dir_ = testdata::freshTempDir("document"); }
    void TearDown() override { fs::remove_all(dir_); }
    std::string dir_;
};

TEST_F(DocumentFile, TreeHoldsTheSourceWithItsFixedKeys) {
    const SpectrumDocument doc = sampleDocument(dir_);
    plist::Ref tree(buildDocumentTree(doc));
    const std::string text = plist::write(tree.get());
    EXPECT_NE(text.find("<key>! last use</key>\n\t<string>1995-10-08T07:57:45Z</string>"),
              std::string::npos);
    EXPECT_NE(text.find("<key>! write with version</key>\n\t<integer>711</integer>"),
              std::string::npos);
    EXPECT_NE(text.find("<key>! read with version</key>\n\t<integer>141</integer>"),
              std::string::npos);
    EXPECT_NE(text.find("<key>! content</key>\n\t<string>generic NMR spectrum</string>"),
              std::string::npos);
    // Flags by presence; "interleaved" is written as false.
    EXPECT_NE(text.find("<key>interleaved</key>\n\t\t<false/>"), std::string::npos);
    EXPECT_NE(text.find("<key>little endian</key>\n\t\t<true/>"), std::string::npos);
    EXPECT_NE(text.find("<key>y index</key>"), std::string::npos);
    EXPECT_EQ(text.find("<key>z index</key>"), std::string::npos);
    EXPECT_NE(text.find("<key>points after NUS reconstruction</key>"), std::string::npos);
    EXPECT_NE(text.find("<key>performed processing</key>"), std::string::npos);
    // A raw FID: every dimension is still in the time domain, no phaseable list.
    EXPECT_EQ(text.find("<key>phaseable dimensions</key>"), std::string::npos);
    // Untiled data: no sub-matrix height.
    EXPECT_EQ(text.find("<key>height of each sub-matrix</key>"), std::string::npos);
    // The analysis lists and the further pages are there even while they are empty.
    for (const char* key : {"peaks", "multiplets", "pages"})
        EXPECT_NE(text.find(std::string("<key>") + key + "</key>\n\t<array>\n\t</array>\n"),
                  std::string::npos)
            << key;
}

TEST_F(DocumentFile, SourceSurvivesTheRoundTrip) {
    const SpectrumDocument doc = sampleDocument(dir_);
    const std::string path = dir_ + "/ser.zolt";
    ASSERT_TRUE(saveDocument(doc, path, false).ok);
    DocumentRead read = readDocumentFile(path);
    ASSERT_TRUE(read.document) << read.message.caption << ": " << read.message.text;
    const SpectrumSource& s = read.document->source;
    EXPECT_EQ(s.flags, doc.source.flags);  // "interleaved" read back although saved false
    EXPECT_EQ(s.dims[2].timeShift, -76.0f);
    EXPECT_EQ(s.dims[1].atom[0], 'C');
    EXPECT_EQ(s.dims[3].points, 1u);
    EXPECT_EQ(read.document->metadata.title, "cyclosporin\nHSQC");
    EXPECT_EQ(read.document->processing.doneMask, done_mask::transformed(2));
    // Everything else written comes back as it was: the same document writes the same tree.
    plist::Ref before(buildDocumentTree(doc)), after(buildDocumentTree(*read.document));
    EXPECT_EQ(plist::write(after.get()), plist::write(before.get()));
}

TEST_F(DocumentFile, SubMatrixHeightIsWrittenWhenSetAndReadOnlyFromOneTo255) {
    SpectrumDocument doc = sampleDocument(dir_);
    doc.source.flags |= source_flags::kBlockMatrix;
    const std::string path = dir_ + "/ser.zolt";
    const std::string key = "<key>height of each sub-matrix</key>";
    const auto heightAfterSaving = [&](uint8_t height) {
        doc.source.subMatrixHeight = height;
        EXPECT_TRUE(saveDocument(doc, path, false).ok);
        return testdata::readFile(path);
    };
    const auto heightRead = [&](const std::string& text) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
        DocumentRead r = readDocumentFile(path);
        EXPECT_TRUE(r.document);
        return r.document ? int{r.document->source.subMatrixHeight} : -1;
    };
    // Square tiles (0) are the default of a reader of the file: no key, and 0 again.
    const std::string square = heightAfterSaving(0);
    EXPECT_EQ(square.find(key), std::string::npos);
    EXPECT_EQ(heightRead(square), 0);
    const std::string sixteen = heightAfterSaving(16);
    const std::string line = key + "\n\t\t<integer>16</integer>\n";
    ASSERT_NE(sixteen.find(line), std::string::npos);
    EXPECT_EQ(heightRead(sixteen), 16);
    // Values outside 1 ... 255 are not a height.
    for (const auto& [saved, expected] : std::vector<std::pair<std::string, int>>{
             {"1", 1}, {"255", 255}, {"0", 0}, {"256", 0}, {"-1", 0}, {"65537", 0}}) {
        std::string text = sixteen;
        text.replace(text.find(line), line.size(),
                     key + "\n\t\t<integer>" + saved + "</integer>\n");
        EXPECT_EQ(heightRead(text), expected) << saved;
    }
}

TEST_F(DocumentFile, NewerReadVersionIsRefused) {
    const SpectrumDocument doc = sampleDocument(dir_);
    const std::string path = dir_ + "/ser.zolt";
    ASSERT_TRUE(saveDocument(doc, path, false).ok);
    std::string text = testdata::readFile(path);
    const std::string from = "<integer>141</integer>";
    text.replace(text.find(from), from.size(), "<integer>712</integer>");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    DocumentRead refused = readDocumentFile(path);
    EXPECT_FALSE(refused.document);
    EXPECT_EQ(refused.message.caption, "This file requires another version of Zolt");
    EXPECT_EQ(refused.message.text,
              "You can either update your copy of the program or rename the *.zolt file");

    text.replace(text.find("<integer>712</integer>"), 22, "<integer>711</integer>");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    DocumentRead accepted = readDocumentFile(path);
    ASSERT_TRUE(accepted.document);
    EXPECT_EQ(accepted.document->readWithVersion, 711);
}

TEST_F(DocumentFile, BackUpKeepsThePreviousVersion) {
    SpectrumDocument doc = sampleDocument(dir_);
    const std::string path = dir_ + "/ser.zolt";
    ASSERT_TRUE(saveDocument(doc, path, true).ok);
    const std::string first = testdata::readFile(path);
    doc.metadata.title = "second";
    ASSERT_TRUE(saveDocument(doc, path, true).ok);
    EXPECT_EQ(testdata::readFile(dir_ + "/ser.back"), first);
    EXPECT_NE(testdata::readFile(path).find("<string>second</string>"), std::string::npos);
    // No temporary file is left behind.
    int files = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir_)) ++files;
    EXPECT_EQ(files, 3);  // ser, ser.zolt, ser.back
}

TEST_F(DocumentFile, FileThatCannotBeCreatedKeepsThePreviousDocument) {
    SpectrumDocument doc = sampleDocument(dir_);
    const std::string path = dir_ + "/ser.zolt";
    ASSERT_TRUE(saveDocument(doc, path, true).ok);
    const std::string before = testdata::readFile(path);
    // A disk that fills up while the new file is written (a file-size limit of 1 KiB): even
    // root cannot get past it.
    doc.metadata.title = "lost";
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = saved;
    tiny.rlim_cur = 1024;
    setrlimit(RLIMIT_FSIZE, &tiny);
    const SaveResult r = saveDocument(doc, path, true);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.message.caption, "There was a System Error");
    EXPECT_EQ(r.message.text, "Failed to Create the File");
    EXPECT_EQ(testdata::readFile(path), before);
    EXPECT_FALSE(fs::exists(dir_ + "/ser.back"));
    int files = 0;  // the partial file is gone too
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir_)) ++files;
    EXPECT_EQ(files, 2);
    // Nor can a file in a missing folder.
    const SaveResult missing = saveDocument(doc, dir_ + "/missing/ser.zolt", false);
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.message.caption, "There was a System Error");
}

TEST_F(DocumentFile, MovedRawDataAreFoundByTheDocumentName) {
    const SpectrumDocument doc = sampleDocument(dir_);
    ASSERT_TRUE(saveDocument(doc, dir_ + "/run7.zolt", false).ok);
    // The saved name is absent; the document's own base name with the saved extension
    // (none here) is tried next.
    fs::rename(dir_ + "/ser", dir_ + "/run7");
    DocumentRead moved = readDocumentFile(dir_ + "/run7.zolt");
    ASSERT_TRUE(moved.document);
    EXPECT_EQ(moved.document->source.rawPath, dir_ + "/run7");
    fs::remove(dir_ + "/run7");
    DocumentRead missing = readDocumentFile(dir_ + "/run7.zolt");
    EXPECT_FALSE(missing.document);
    EXPECT_EQ(missing.message.caption, "Failed to Read the file");
}

TEST_F(DocumentFile, HostileDocumentsAreRefusedQuietly) {
    for (const std::string& text :
         {std::string(""), std::string("garbage"), std::string("<plist><array><integer>1"),
          std::string("<dict><key>spectroscopy</key><string>x</string></dict>"),
          std::string(100000, '<')}) {
        std::ofstream(dir_ + "/bad.zolt", std::ios::trunc) << text;
        DocumentRead r = readDocumentFile(dir_ + "/bad.zolt");
        EXPECT_FALSE(r.document);
        EXPECT_EQ(r.message.caption, "Failed to Read the file");
    }
}

}  // namespace
}  // namespace zolt

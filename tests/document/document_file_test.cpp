// Document files: the tree and its fixed keys, the round trip, and the file against a hostile
// user and a failing disk: links planted where the document is saved, raw data named outside the
// document's folder, numbers no integer can hold, and keys of a newer program that must survive
// a save.
#include "document/document_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "document/sample_document.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using testing_documents::sampleDocument;

// The sample document saved as ser.zolt beside its raw file.
class DocumentFile : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = testdata::freshTempDir("document");
        path_ = dir_ + "/ser.zolt";
        ASSERT_TRUE(saveDocument(sampleDocument(dir_), path_, false).ok);
        saved_ = testdata::readFile(path_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // The saved document with the value element after `key` replaced.
    std::string withValue(const std::string& key, const std::string& element) const {
        std::string text = saved_;
        const std::string tag = "<key>" + key + "</key>";
        const size_t at = text.find('<', text.find(tag) + tag.size());
        text.replace(at, text.find('\n', at) - at, element);
        return text;
    }
    DocumentRead readText(const std::string& text) const {
        std::ofstream(path_, std::ios::binary | std::ios::trunc) << text;
        return readDocumentFile(path_);
    }
    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir_)) names.push_back(e.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string dir_, path_, saved_;
};

TEST_F(DocumentFile, TreeHoldsTheSourceWithItsFixedKeys) {
    for (const char* part :
         {"<key>! last use</key>\n\t<string>1995-10-08T07:57:45Z</string>",
          "<key>! write with version</key>\n\t<integer>711</integer>",
          "<key>! read with version</key>\n\t<integer>141</integer>",
          "<key>! content</key>\n\t<string>generic NMR spectrum</string>",
          // Flags by presence; "interleaved" is written as false.
          "<key>interleaved</key>\n\t\t<false/>", "<key>little endian</key>\n\t\t<true/>",
          "<key>y index</key>", "<key>points after NUS reconstruction</key>",
          "<key>performed processing</key>",
          // The analysis lists and the further pages are there even while they are empty.
          "<key>peaks</key>\n\t<array>\n\t</array>\n",
          "<key>multiplets</key>\n\t<array>\n\t</array>\n",
          "<key>pages</key>\n\t<array>\n\t</array>\n"})
        EXPECT_NE(saved_.find(part), std::string::npos) << part;
    // No third axis; a raw FID has every dimension in the time domain, so no phaseable list;
    // untiled data have no sub-matrix height.
    for (const char* key : {"z index", "phaseable dimensions", "height of each sub-matrix"})
        EXPECT_EQ(saved_.find(std::string("<key>") + key + "</key>"), std::string::npos) << key;
}

TEST_F(DocumentFile, SourceSurvivesTheRoundTrip) {
    const SpectrumDocument doc = sampleDocument(dir_);
    DocumentRead read = readDocumentFile(path_);
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
    const std::string key = "<key>height of each sub-matrix</key>";
    const auto heightAfterSaving = [&](uint8_t height) {
        doc.source.subMatrixHeight = height;
        EXPECT_TRUE(saveDocument(doc, path_, false).ok);
        return testdata::readFile(path_);
    };
    const auto heightRead = [&](const std::string& text) {
        DocumentRead r = readText(text);
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

TEST_F(DocumentFile, FileThatCannotBeCreatedKeepsThePreviousDocument) {
    SpectrumDocument doc = sampleDocument(dir_);
    // A disk that fills up while the new file is written (a file-size limit of 1 KiB): even
    // root cannot get past it.
    doc.metadata.title = "lost";
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = saved;
    tiny.rlim_cur = 1024;
    setrlimit(RLIMIT_FSIZE, &tiny);
    const SaveResult r = saveDocument(doc, path_, true);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.message.caption, "There was a System Error");
    EXPECT_EQ(r.message.text, "Failed to Create the File");
    EXPECT_EQ(testdata::readFile(path_), saved_);
    // No backup was made, and the partial file is gone too.
    EXPECT_EQ(entries(), (std::vector<std::string>{"ser", "ser.zolt"}));
    // Nor can a file in a missing folder.
    const SaveResult missing = saveDocument(doc, dir_ + "/missing/ser.zolt", false);
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.message.caption, "There was a System Error");
}

TEST_F(DocumentFile, MovedRawDataAreFoundByTheDocumentName) {
    ASSERT_TRUE(saveDocument(sampleDocument(dir_), dir_ + "/run7.zolt", false).ok);
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
        DocumentRead r = readText(text);
        EXPECT_FALSE(r.document);
        EXPECT_EQ(r.message.caption, "Failed to Read the file");
    }
}

TEST_F(DocumentFile, LinkUnderTheDocumentNameIsNeitherFollowedNorReplaced) {
    std::ofstream(dir_ + "/elsewhere") << "precious";
    fs::remove(path_);
    fs::create_symlink("elsewhere", path_);
    for (bool backUp : {false, true}) {
        const SaveResult r = saveDocument(sampleDocument(dir_), path_, backUp);
        EXPECT_FALSE(r.ok);
        EXPECT_EQ(r.message.caption, "There was a System Error");
        EXPECT_EQ(r.message.text, "Failed to Create the File");
        EXPECT_TRUE(fs::is_symlink(path_));
        EXPECT_EQ(testdata::readFile(dir_ + "/elsewhere"), "precious");
        EXPECT_EQ(entries(), (std::vector<std::string>{"elsewhere", "ser", "ser.zolt"}));
    }
}

TEST_F(DocumentFile, LinksPlantedBesideTheDocumentAreNotFollowed) {
    std::ofstream(dir_ + "/elsewhere") << "precious";
    // Names a careless writer would use for its temporary file, and the backup's name.
    const std::vector<std::string> planted = {"ser.zolt.partial", "ser.zolt.tmp", "ser.zolt~",
                                              "ser.tmp", "ser.back"};
    for (const std::string& name : planted) fs::create_symlink("elsewhere", dir_ + "/" + name);
    SpectrumDocument doc = sampleDocument(dir_);
    doc.metadata.title = "second";
    ASSERT_TRUE(saveDocument(doc, path_, true).ok);
    EXPECT_EQ(testdata::readFile(dir_ + "/elsewhere"), "precious");
    // The backup is the previous document itself, not something written through a link.
    EXPECT_FALSE(fs::is_symlink(dir_ + "/ser.back"));
    EXPECT_EQ(testdata::readFile(dir_ + "/ser.back"), saved_);
    EXPECT_NE(testdata::readFile(path_).find("<string>second</string>"), std::string::npos);
    for (const std::string& name : planted)
        EXPECT_TRUE(name == "ser.back" || fs::is_symlink(dir_ + "/" + name)) << name;
    // Nothing else is left behind: no temporary file of the save.
    EXPECT_EQ(entries(),
              (std::vector<std::string>{"elsewhere", "ser", "ser.back", "ser.tmp", "ser.zolt",
                                        "ser.zolt.partial", "ser.zolt.tmp", "ser.zolt~"}));
}

TEST_F(DocumentFile, RawDataNamedOutsideTheFolderIsIncoherent) {
    fs::create_directories(dir_ + "/sub");
    std::ofstream(dir_ + "/sub/ser") << "raw";
    std::ofstream(fs::path(dir_).parent_path() / "secret") << "raw";
    const std::string secret = (fs::path(dir_).parent_path() / "secret").string();
    for (const std::string& name :
         {std::string("../secret"), secret, std::string("sub/ser"), std::string("sub\\ser"),
          std::string(".."), std::string("."), std::string("./ser")}) {
        const DocumentRead r =
            readText(withValue("raw data file", "<string>" + name + "</string>"));
        EXPECT_FALSE(r.document) << name;
        EXPECT_EQ(r.message.caption, "Failed to Read the file") << name;
        EXPECT_EQ(r.message.text, "This Zolt file seems incoherent") << name;
    }
    fs::remove(secret);
    // The bare name opens.
    EXPECT_TRUE(readText(saved_).document);
}

// A newer program's read version is refused, written as an integer or as a real.
TEST_F(DocumentFile, NewerReadVersionIsRefusedHoweverItIsWritten) {
    for (const char* version : {"<integer>712</integer>", "<real>1e300</real>", "<real>inf</real>",
                                "<real>711.5</real>", "<real>712</real>"}) {
        const DocumentRead r = readText(withValue("! read with version", version));
        EXPECT_FALSE(r.document) << version;
        EXPECT_EQ(r.message.caption, "This file requires another version of Zolt") << version;
        EXPECT_EQ(r.message.text,
                  "You can either update your copy of the program or rename the *.zolt file");
    }
    for (const auto& [version, read] :
         {std::pair{"<integer>711</integer>", 711}, std::pair{"<real>700</real>", 700}}) {
        const DocumentRead old = readText(withValue("! read with version", version));
        ASSERT_TRUE(old.document) << version;
        EXPECT_EQ(old.document->readWithVersion, read);
    }
    // Not a number is no version at all.
    const DocumentRead none = readText(withValue("! read with version", "<real>nan</real>"));
    ASSERT_TRUE(none.document);
    EXPECT_EQ(none.document->readWithVersion, 0);
}

TEST_F(DocumentFile, IntegersGivenAsRealsNoIntegerHoldsReadAsAbsent) {
    for (const char* real : {"1e300", "-1e300", "inf", "-inf", "nan", "4294967297"}) {
        const std::string element = std::string("<real>") + real + "</real>";
        const DocumentRead done = readText(withValue("operations performed", element));
        ASSERT_TRUE(done.document) << real;
        EXPECT_EQ(done.document->processing.doneMask, 0u) << real;
        const DocumentRead points = readText(withValue("no. of points", element));
        ASSERT_TRUE(points.document) << real;
        EXPECT_EQ(points.document->source.dims[1].points, 1u) << real;
        const DocumentRead page = readText(withValue("page number", element));
        ASSERT_TRUE(page.document) << real;
        EXPECT_EQ(page.document->windowState.pageNumber, 0) << real;
    }
    // A real that is an integer in range is one.
    const DocumentRead done = readText(withValue("operations performed", "<real>2.75</real>"));
    ASSERT_TRUE(done.document);
    EXPECT_EQ(done.document->processing.doneMask, 2u);
}

// The saved document with keys of a newer program added inside its sections and lists, and a
// date, written as the writer writes it. (Keys at the root are kept through the application's
// own save as well.)
std::string withForeignKeys(const std::string& saved) {
    plist::Ref root(plist::read(saved));
    plist::appendReal(plist::lookUp(root.get(), "peaks"), 7.26);
    plist::setInteger(plist::setDictionary(root.get(), "~ a key from the future"), "level", 3);
    plist::addToDictionary(root.get(), "saved on", plist::createDate("2031-01-01T00:00:00Z"));
    plist::setString(plist::lookUp(root.get(), "window state"), "zoom history", "7.5 6.5");
    plist::setString(plist::lookUp(root.get(), "spectroscopy"), "compression", "none");
    return plist::write(root.get());
}

TEST_F(DocumentFile, KeysThisProgramDoesNotFillSurviveAResave) {
    const std::string foreign = withForeignKeys(saved_);
    for (const char* key : {"~ a key from the future", "saved on", "zoom history", "compression"})
        ASSERT_NE(foreign.find(std::string("<key>") + key + "</key>"), std::string::npos) << key;
    DocumentRead read = readText(foreign);
    ASSERT_TRUE(read.document);
    // Saved again (with a backup, as the application does), it is the same file.
    ASSERT_TRUE(saveDocument(*read.document, path_, true).ok);
    EXPECT_EQ(testdata::readFile(path_), foreign);
    // What the program fills is its own: a changed title replaces the old one.
    read.document->metadata.title = "changed";
    ASSERT_TRUE(saveDocument(*read.document, path_, false).ok);
    const std::string changed = testdata::readFile(path_);
    EXPECT_NE(changed.find("<string>changed</string>"), std::string::npos);
    EXPECT_EQ(changed.find("cyclosporin"), std::string::npos);
    EXPECT_NE(changed.find("<key>compression</key>"), std::string::npos);
}

}  // namespace
}  // namespace zolt

// Document files against a hostile user and a failing disk: links planted where the document
// is saved, raw data named outside the document's folder, numbers no integer can hold, and
// keys of a newer program that must survive a save.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "document/document_file.h"
#include "document/sample_document.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using testing_documents::sampleDocument;

class HostileDocumentFile : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = testdata::freshTempDir("hostile-document");
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

TEST_F(HostileDocumentFile, LinkUnderTheDocumentNameIsNeitherFollowedNorReplaced) {
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

TEST_F(HostileDocumentFile, LinksPlantedBesideTheDocumentAreNotFollowed) {
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
}

TEST_F(HostileDocumentFile, RawDataNamedOutsideTheFolderIsIncoherent) {
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

TEST_F(HostileDocumentFile, ReadVersionGivenAsARealIsComparedAsWritten) {
    for (const char* version : {"1e300", "inf", "711.5", "712"}) {
        const DocumentRead r =
            readText(withValue("! read with version", std::string("<real>") + version + "</real>"));
        EXPECT_FALSE(r.document) << version;
        EXPECT_EQ(r.message.caption, "This file requires another version of Zolt") << version;
        EXPECT_EQ(r.message.text,
                  "You can either update your copy of the program or rename the *.zolt file");
    }
    const DocumentRead old = readText(withValue("! read with version", "<real>700</real>"));
    ASSERT_TRUE(old.document);
    EXPECT_EQ(old.document->readWithVersion, 700);
    // Not a number is no version at all.
    const DocumentRead none = readText(withValue("! read with version", "<real>nan</real>"));
    ASSERT_TRUE(none.document);
    EXPECT_EQ(none.document->readWithVersion, 0);
}

TEST_F(HostileDocumentFile, IntegersGivenAsRealsNoIntegerHoldsReadAsAbsent) {
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

// The saved document with keys of a newer program added at the root and inside the sections,
// written as the writer writes it.
std::string withForeignKeys(const std::string& saved) {
    plist::Ref root(plist::read(saved));
    plist::Value* clipping = plist::createDictionary();
    plist::setString(clipping, "text", "H-7, overlapping");
    plist::setReal(clipping, "left (ppm)", 7.25);
    plist::Value* clippings = plist::setArray(root.get(), "clippings");
    plist::appendToArray(clippings, clipping);
    plist::appendToArray(plist::setArray(root.get(), "links"), plist::createString("cosy.zolt"));
    plist::setBoolean(root.get(), "run internal script", true);
    plist::setBoolean(root.get(), "owns its overlays", true);
    plist::appendReal(plist::setArray(root.get(), "observed peaks"), 1.5);
    plist::Value* peaks = plist::lookUp(root.get(), "peaks");
    plist::appendReal(peaks, 7.26);
    plist::setInteger(plist::setDictionary(root.get(), "~ a key from the future"), "level", 3);
    plist::addToDictionary(root.get(), "saved on", plist::createDate("2031-01-01T00:00:00Z"));
    plist::setString(plist::lookUp(root.get(), "window state"), "zoom history", "7.5 6.5");
    plist::setString(plist::lookUp(root.get(), "spectroscopy"), "compression", "none");
    return plist::write(root.get());
}

TEST_F(HostileDocumentFile, KeysThisProgramDoesNotFillSurviveAResave) {
    const std::string foreign = withForeignKeys(saved_);
    for (const char* key :
         {"clippings", "links", "run internal script", "owns its overlays", "observed peaks",
          "~ a key from the future", "zoom history", "compression"})
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

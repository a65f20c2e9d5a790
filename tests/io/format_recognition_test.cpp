#include "io/format_recognition.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "io/reader_table.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

class FormatRecognition : public ::testing::Test {
protected:
    void SetUp() override { dir_ = testdata::freshTempDir("recognition"); }
    void TearDown() override { fs::remove_all(dir_); }

    // A file holding the given bytes; returns its path. Each file gets a folder of its own so
    // that parameter files of one case do not leak into another.
    std::string file(const std::string& name, const std::string& bytes = "plain",
                     const std::string& folder = "") {
        const fs::path f = fs::path(dir_) / (folder.empty() ? name + ".d" : folder);
        fs::create_directories(f);
        std::ofstream(f / name, std::ios::binary) << bytes;
        return (f / name).string();
    }

    std::string dir_;
};

std::string header48(std::initializer_list<std::pair<size_t, std::string>> parts) {
    std::string b(48, 'x');
    for (const auto& [at, text] : parts) b.replace(at, text.size(), text);
    return b;
}

TEST_F(FormatRecognition, CompanionDocumentsWinOverParameterFiles) {
    const std::string fid = file("fid", "x", "exp1");
    file("acqus", "##TITLE=", "exp1");
    EXPECT_EQ(recognizeFormat(fid), FormatCode::Bruker);
    file("fid.zolt", "<plist/>", "exp1");
    EXPECT_EQ(recognizeFormat(fid), FormatCode::Zolt);

    const std::string data = file("data", "x", "exp2");
    file("procpar", "", "exp2");
    EXPECT_EQ(recognizeFormat(data), FormatCode::Varian);
    file("plist.zolt", "", "exp2");
    EXPECT_EQ(recognizeFormat(data), FormatCode::Zolt);
}

TEST_F(FormatRecognition, ProcessedDocumentPreferenceLooksInPdata) {
    const std::string fid = file("fid", "x", "exp");
    file("acqus", "", "exp");
    file("plist.zolt", "", "exp/pdata/1");
    EXPECT_EQ(recognizeFormat(fid), FormatCode::Bruker);
    EXPECT_EQ(recognizeFormat(fid, {.preferProcessedDocuments = true}), FormatCode::Zolt);
}

TEST_F(FormatRecognition, ParameterFilesInTheFolder) {
    const std::string both = file("fid", "x", "both");
    file("acqus", "", "both");
    file("procpar", "", "both");
    EXPECT_EQ(recognizeFormat(both), FormatCode::Bruker);
    const std::string a = file("data", "x", "spinsight");
    file("acq", "", "spinsight");
    EXPECT_EQ(recognizeFormat(a), FormatCode::Spinsight);
    const std::string p = file("fid", "x", "paravision");
    file("acqp", "", "paravision");
    EXPECT_EQ(recognizeFormat(p), FormatCode::ParaVision);
}

// Extensions (case-sensitive for documents) and WinNmr names; a molecule file by its extension.
TEST_F(FormatRecognition, ExtensionsAndNames) {
    const std::pair<const char*, FormatCode> cases[] = {{"a.zolt", FormatCode::Zolt},
                                                        {"a.cpm", FormatCode::Clipping},
                                                        {"a.spins", FormatCode::SpinSystemDocument},
                                                        {"a.poster", FormatCode::PosterDocument},
                                                        {"a.ZOLT", FormatCode::Unknown},
                                                        {"a.tnt", FormatCode::NtNmr},
                                                        {"a.rda", FormatCode::Siemens},
                                                        {"a.crvn", FormatCode::Corvane},
                                                        {"b.ALS", FormatCode::Alice},
                                                        {"a.gx1", FormatCode::JeolGx},
                                                        {"a.GXD", FormatCode::JeolGx},
                                                        {"a.SDAT", FormatCode::Philips},
                                                        {"a.SPAR", FormatCode::Philips},
                                                        {"a.16", FormatCode::CaraXEasy},
                                                        {"a.param", FormatCode::CaraXEasy},
                                                        {"abcdef1.fid", FormatCode::WinNmr},
                                                        {"abcdefg.fid", FormatCode::Unknown},
                                                        {"abcde1.fid", FormatCode::Unknown},
                                                        {"aspirin.mol", FormatCode::MoleculeFile}};
    for (const auto& [name, code] : cases) EXPECT_EQ(recognizeFormat(file(name)), code) << name;
    // Extensions are tested before content: a text file in JCAMP-DX form opens as ASCII.
    EXPECT_EQ(recognizeFormat(file("x.txt", "##TITLE=spectrum\n")), FormatCode::Ascii);
    EXPECT_EQ(recognizeFormat(file("empty", "")), FormatCode::Unknown);
    EXPECT_EQ(recognizeFormat(dir_ + "/does/not/exist"), FormatCode::Unknown);
}

TEST_F(FormatRecognition, ContentSignatures) {
    std::string aspect = header48({});
    aspect[0] = 'G', aspect[1] = '\x84', aspect[2] = '\xF5';
    EXPECT_EQ(recognizeFormat(file("aspect1", aspect)), FormatCode::Aspect);
    aspect[0] = '\xF5', aspect[2] = 'G';
    EXPECT_EQ(recognizeFormat(file("aspect2", aspect)), FormatCode::Aspect);

    std::string pipe(48, '\0');
    pipe.replace(8, 4, "\x40\x16\x14\x7B", 4);
    EXPECT_EQ(recognizeFormat(file("pipe_be", pipe)), FormatCode::NmrPipe);
    pipe.replace(8, 4, "\x7B\x14\x16\x40", 4);
    EXPECT_EQ(recognizeFormat(file("pipe_le", pipe)), FormatCode::NmrPipe);

    EXPECT_EQ(recognizeFormat(file("j", " \r\n\t##TITLE=x\n")), FormatCode::JcampDx);
    EXPECT_EQ(recognizeFormat(file("s", "\n SIMP\nNP=4")), FormatCode::Simpson);
    EXPECT_EQ(recognizeFormat(file("d1", header48({{0, "JEOL.NMR"}}))), FormatCode::JeolDelta);
    EXPECT_EQ(recognizeFormat(file("d2", header48({{0, "RMN.LOEJ"}}))), FormatCode::JeolDelta);
    // The Delta signature counts only at the very start of the file.
    EXPECT_EQ(recognizeFormat(file("d3", " " + header48({{0, "JEOL.NMR"}}))), FormatCode::Unknown);
    EXPECT_EQ(recognizeFormat(file("ge", header48({{41, "NMR"}}))), FormatCode::GeMedNmr);

    const std::string nuts(
        "\x01\x02\x03\x04\x00\x04\x00\x00\x01\x00\x00\x00\x00\x00\x00\x00"
        "\x02\x00\x00\x00xxxxxxxx",
        28);
    EXPECT_EQ(recognizeFormat(file("nuts", nuts)), FormatCode::Nuts2);

    std::string mac = header48({});
    mac[6] = static_cast<char>(9001 >> 8), mac[7] = static_cast<char>(9001 & 0xFF);
    EXPECT_EQ(recognizeFormat(file("mac1", mac)), FormatCode::MacNmr);
    mac[6] = static_cast<char>(9712 >> 8), mac[7] = static_cast<char>(9712 & 0xFF);
    EXPECT_EQ(recognizeFormat(file("mac2", mac)), FormatCode::MacNmr);
    mac[6] = static_cast<char>(9713 >> 8), mac[7] = static_cast<char>(9713 & 0xFF);
    EXPECT_EQ(recognizeFormat(file("mac3", mac)), FormatCode::Unknown);
}

TEST_F(FormatRecognition, MoleculeFileByItsContent) {
    const std::string molfile = "aspirin\n  program\n\n 13 13  0  0  0  0  0  0  0  0999 V2000\n";
    EXPECT_EQ(recognizeFormat(file("structure", molfile)), FormatCode::MoleculeFile);
}

TEST(FormatNames, NamesAndMessages) {
    EXPECT_STREQ(formatName(FormatCode::Nuts2), "Nuts 2");
    EXPECT_STREQ(formatName(FormatCode::GeMedNmr), "GE_MED_NMR");
    EXPECT_STREQ(formatName(FormatCode::SpinSystemDocument), "Zolt");
    EXPECT_STREQ(formatName(FormatCode::Unknown), "Zolt");
    EXPECT_EQ(incoherentFileText(FormatCode::JcampDx), "This JCAMP-DX file seems incoherent");
}

TEST(FormatRecognitionOnRealData, EveryTestSetIsSortedToItsFormat) {
    for (const char* name : {"aspirin-1h", "cyclosporin-hsqc", "t1rho-1h", "cosy-nus"}) {
        EXPECT_EQ(recognizeFormat(testdata::bruker(name) + "/fid"), FormatCode::Bruker) << name;
        EXPECT_EQ(recognizeFormat(testdata::bruker(name) + "/acqus"), FormatCode::Bruker);
    }
    for (const char* name : {"1H.fid", "13C.fid", "missing.fid"})
        EXPECT_EQ(recognizeFormat(testdata::shared(std::string("varian/") + name) + "/procpar"),
                  FormatCode::Varian)
            << name;
    int jcamp = 0;
    for (const auto& e : fs::recursive_directory_iterator(testdata::root() + "/jcamp/")) {
        if (!e.is_regular_file()) continue;
        EXPECT_EQ(recognizeFormat(e.path().string()), FormatCode::JcampDx) << e.path();
        ++jcamp;
    }
    EXPECT_GE(jcamp, 10);
    int delta = 0;
    for (const auto& e : fs::recursive_directory_iterator(testdata::root() + "/jeol/")) {
        if (!e.is_regular_file() || e.path().extension() != ".jdf") continue;
        EXPECT_EQ(recognizeFormat(e.path().string()), FormatCode::JeolDelta) << e.path();
        ++delta;
    }
    EXPECT_GE(delta, 10);
}

}  // namespace
}  // namespace zolt

// Saving documents in place and opening them again: the raw data are read anew and the saved
// processing is replayed.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/application.h"
#include "app/recording_platform.h"
#include "io/plist.h"
#include "processing/auto_phase.h"
#include "processing/baseline.h"
#include "processing/ft_pipeline.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// A private copy of a test experiment: saving writes beside the data.
std::string copyOf(const std::string& name) {
    const std::string dir = testdata::freshTempDir("persist") + "/" + name;
    fs::copy(testdata::bruker(name), dir, fs::copy_options::recursive);
    return dir;
}

double maxAbs(const std::vector<float>& v) {
    double m = 0.0;
    for (float x : v) m = std::max(m, std::fabs(double{x}));
    return m;
}

// Same layout, and every value within the rounding of 32-bit arithmetic relative to the
// largest one (phases applied in one step instead of several round differently).
void expectSameMatrix(const SpectrumMatrix& a, const SpectrumMatrix& b, double tolerance) {
    ASSERT_EQ(a.re.size(), b.re.size());
    ASSERT_EQ(a.im.size(), b.im.size());
    EXPECT_EQ(a.contiguous, b.contiguous);
    EXPECT_EQ(a.state, b.state);
    for (int f = 0; f <= 3; ++f) EXPECT_EQ(a.dims[f].points, b.dims[f].points) << f;
    const double limit = tolerance * maxAbs(a.re);
    for (size_t i = 0; i < a.re.size(); ++i)
        ASSERT_LE(std::fabs(double{a.re[i]} - b.re[i]), limit) << i;
    for (size_t i = 0; i < a.im.size(); ++i)
        ASSERT_LE(std::fabs(double{a.im[i]} - b.im[i]), limit) << i;
}

class DocumentPersistence : public ::testing::Test {
protected:
    testing::RecordingPlatform platform;
};

TEST_F(DocumentPersistence, ProcessedAspirinReopensValueForValue) {
    const std::string dir = copyOf("aspirin-1h");
    SpectrumMatrix before;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        ASSERT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
        before = doc.matrix;
        ASSERT_TRUE(app.save(doc));
        EXPECT_EQ(doc.documentPath, dir + "/fid.zolt");
    }
    std::string savedText;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        EXPECT_EQ(doc.source.highestTIndex, 0);
        EXPECT_EQ(doc.processing.doneMask & done_mask::transformed(1), done_mask::transformed(1));
        expectSameMatrix(before, doc.matrix, 0.0);
        // Phased and flattened on top of the replayed transform.
        ASSERT_TRUE(autoPhase(doc.matrix, doc.source.highestTIndex));
        BaseplaneStep poly;
        poly.function = 1;
        poly.order = 7;
        poly.movingAverage = 64;
        ASSERT_FALSE(correctBaseline(doc, 1, poly));
        before = doc.matrix;
        ASSERT_TRUE(app.save(doc));
        savedText = testdata::readFile(dir + "/fid.zolt");
    }
    Application app(platform);
    ASSERT_EQ(app.open(dir + "/fid"), 1);
    expectSameMatrix(before, app.frontDocument()->matrix, 1e-5);
    // Saving the reopened document writes the same file.
    ASSERT_TRUE(app.save(*app.frontDocument()));
    EXPECT_EQ(testdata::readFile(dir + "/fid.zolt"), savedText);
    EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(DocumentPersistence, TransformedHsqcReopensTheSame) {
    const std::string dir = copyOf("cyclosporin-hsqc");
    SpectrumMatrix before;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        ASSERT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
        ASSERT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
        ASSERT_TRUE(autoPhase2D(doc.matrix, doc.source.highestTIndex));
        before = doc.matrix;
        ASSERT_TRUE(app.save(doc));
        EXPECT_TRUE(fs::exists(dir + "/ser.zolt"));
    }
    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    EXPECT_EQ(app.frontDocument()->source.highestTIndex, 0);
    expectSameMatrix(before, app.frontDocument()->matrix, 1e-5);
}

TEST_F(DocumentPersistence, SquareTiledProcessedSpectrumReopensPointForPoint) {
    // The spectrometer's 2rr of cosy-nus is stored in square tiles (XDIM 128 along both
    // axes); a saved document that forgot so would bring the rows back scrambled.
    const std::string dir = copyOf("cosy-nus");
    Preferences prefs;
    prefs.flags |= pref_flags::kReadProcessedData;
    SpectrumMatrix before;
    std::string saved;
    {
        Application app(platform, prefs);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        ASSERT_TRUE(doc.source.flags & source_flags::kBlockMatrix);
        ASSERT_EQ(fs::path(doc.source.rawPath).filename(), "2rr");
        before = doc.matrix;
        ASSERT_TRUE(app.save(doc));
        saved = doc.documentPath;
    }
    EXPECT_EQ(testdata::readFile(saved).find("height of each sub-matrix"), std::string::npos);
    Application app(platform, prefs);
    ASSERT_EQ(app.open(fs::path(saved).replace_extension().string()), 1);
    const SpectrumDocument& reopened = *app.frontDocument();
    EXPECT_EQ(reopened.documentPath, saved);
    EXPECT_EQ(reopened.source.subMatrixHeight, 0);
    expectSameMatrix(before, reopened.matrix, 0.0);
    EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(DocumentPersistence, ShowPlanKeepsTheRawDataAndThePlan) {
    const std::string dir = copyOf("aspirin-1h");
    uint32_t ftSize = 0;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        SpectrumDocument& doc = *app.frontDocument();
        ASSERT_TRUE(app.scriptHost().runChunk("fill(65536) weight(0.3)", "input"));
        transformNextDimension(doc);
        ftSize = std::get<FourierTransformStep>(doc.processing.steps[0].data).ftSize;
        ASSERT_TRUE(app.save(doc));
    }
    Preferences prefs;
    prefs.flags |= pref_flags::kShowPlan;
    Application app(platform, prefs);
    ASSERT_EQ(app.open(dir), 1);
    SpectrumDocument& doc = *app.frontDocument();
    EXPECT_EQ(doc.source.highestTIndex, 1);
    EXPECT_EQ(doc.processing.doneMask, 0u);
    EXPECT_EQ(doc.matrix.dims[1].points, doc.source.dims[1].points);
    ASSERT_EQ(ftSize, 65536u);
    EXPECT_EQ(std::get<FourierTransformStep>(doc.processing.steps[0].data).ftSize, 65536u);
    // The plan can still be carried out.
    EXPECT_EQ(transformNextDimension(doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc.matrix.dims[1].points, 65536u);
}

TEST_F(DocumentPersistence, ExportedPackageOpensAsADocument) {
    const std::string dir = copyOf("cyclosporin-cosy");
    const std::string package = fs::path(dir).parent_path().string() + "/exported/cosy";
    SpectrumMatrix before;
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        ASSERT_TRUE(app.scriptHost().runChunk("wft() wft() export('" + package + "')", "input"));
        before = app.frontDocument()->matrix;
    }
    EXPECT_TRUE(fs::exists(package + "/data"));
    EXPECT_TRUE(fs::exists(package + "/plist.zolt"));
    Application app(platform);
    ASSERT_EQ(app.open(package), 1);
    const SpectrumMatrix& after = app.frontDocument()->matrix;
    EXPECT_EQ(app.frontDocument()->source.highestTIndex, 0);
    EXPECT_EQ(app.frontDocument()->source.provenance, "Bruker");
    // The package holds the first hypercomplex half with the direct axis contiguous.
    EXPECT_EQ(after.dims[1].points, before.dims[1].points);
    EXPECT_EQ(after.dims[2].points, before.dims[2].points);
    ASSERT_EQ(after.re.size(), before.dims[1].points * size_t{before.dims[2].points});
    // The tallest point is the same value at the same (row, column).
    const auto tallest = [](const std::vector<float>& v, size_t count) {
        return std::max_element(v.begin(), v.begin() + count) - v.begin();
    };
    const size_t n2 = before.dims[2].points, n1 = before.dims[1].points;
    const size_t at = tallest(after.re, after.re.size());
    const size_t row = at / n2, col = at % n2;
    const size_t beforeIndex = before.contiguous == 2 ? row * n2 + col : col * n1 + row;
    EXPECT_EQ(after.re[at], before.re[beforeIndex]);
    EXPECT_TRUE(platform.boxes.empty());
    // A folder walk finds the package once.
    Application walker(platform);
    EXPECT_EQ(walker.open(fs::path(package).parent_path().string()), 1);
}

TEST_F(DocumentPersistence, ExportIntoAFolderThatCannotBeMadeReportsIt) {
    const std::string dir = copyOf("aspirin-1h");
    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    ASSERT_TRUE(app.scriptHost().runChunk("wft() export('" + dir + "/fid/inside')", "input"));
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "There was a System Error");
    EXPECT_EQ(platform.boxes[0].text, "Failed to Create the File");
}

// Runs a chunk while no file may grow past 4 KiB, as on a disk that is full.
bool runOnAFullDisk(Application& app, const std::string& chunk) {
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = saved;
    tiny.rlim_cur = 4096;
    setrlimit(RLIMIT_FSIZE, &tiny);
    const bool ran = app.scriptHost().runChunk(chunk, "input");
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    return ran;
}

TEST_F(DocumentPersistence, ExportThatCannotCompleteLeavesThePreviousPackage) {
    const std::string dir = copyOf("aspirin-1h");
    const fs::path parent = fs::path(dir).parent_path();
    const std::string package = (parent / "exported").string();
    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    ASSERT_TRUE(app.scriptHost().runChunk("wft() export('" + package + "')", "input"));
    // A file of the user's own in the package folder stays with every new package.
    std::ofstream(package + "/notes.txt") << "mine";
    ASSERT_TRUE(app.scriptHost().runChunk("export('" + package + "/')", "input"));
    ASSERT_TRUE(platform.boxes.empty());
    const std::string data = testdata::readFile(package + "/data");
    const std::string document = testdata::readFile(package + "/plist.zolt");
    EXPECT_EQ(testdata::readFile(package + "/notes.txt"), "mine");

    ASSERT_TRUE(runOnAFullDisk(app, "export('" + package + "')"));
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "There was a System Error");
    EXPECT_EQ(platform.boxes[0].text, "Failed to Create the File");
    EXPECT_EQ(testdata::readFile(package + "/data"), data);
    EXPECT_EQ(testdata::readFile(package + "/plist.zolt"), document);
    EXPECT_EQ(testdata::readFile(package + "/notes.txt"), "mine");
    // Nothing half-written is left beside it.
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(parent)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"aspirin-1h", "exported"}));
    Application reader(platform);
    EXPECT_EQ(reader.open(package), 1);
}

TEST_F(DocumentPersistence, KeysOfANewerProgramSurviveOpeningAndSaving) {
    const std::string dir = copyOf("aspirin-1h");
    {
        Application app(platform);
        ASSERT_EQ(app.open(dir), 1);
        ASSERT_TRUE(app.scriptHost().runChunk("wft()", "input"));
        ASSERT_TRUE(app.save(*app.frontDocument()));
    }
    const std::string path = dir + "/fid.zolt";
    plist::Ref root(plist::read(testdata::readFile(path)));
    ASSERT_TRUE(root);
    plist::appendToArray(plist::setArray(root.get(), "clippings"), plist::createString("arrow"));
    plist::appendToArray(plist::setArray(root.get(), "links"), plist::createString("c13.zolt"));
    plist::setBoolean(root.get(), "run internal script", true);
    plist::setBoolean(root.get(), "owns its overlays", true);
    plist::setReal(root.get(), "~ a key from the future", 0.25);
    const std::string foreign = plist::write(root.get());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << foreign;

    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    ASSERT_TRUE(app.save(*app.frontDocument()));
    EXPECT_EQ(testdata::readFile(path), foreign);
}

TEST_F(DocumentPersistence, CliRunSavesEveryDocumentInPlace) {
    const std::string dir = copyOf("aspirin-1h");
    const std::string command =
        testdata::cliPath() + " run -e 'wft()' --save '" + dir + "' > /dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    ASSERT_TRUE(fs::exists(dir + "/fid.zolt"));
    Application app(platform);
    ASSERT_EQ(app.open(dir), 1);
    EXPECT_EQ(app.frontDocument()->source.highestTIndex, 0);
    EXPECT_EQ(app.frontDocument()->processing.doneMask & done_mask::transformed(1),
              done_mask::transformed(1));
}

}  // namespace
}  // namespace zolt

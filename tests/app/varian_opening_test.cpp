// Varian experiments opened as the user opens them: recognised by their procpar, read, loaded,
// transformed by the start-up workflow, with their solvent lines where the acquisitions' own
// referencing puts them. Damaged copies give the format's message and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/application.h"
#include "app/document_opening.h"
#include "app/recording_platform.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// ppm of the tallest local maxima of the real part between two ppm values, tallest first.
std::vector<double> linesBetween(const SpectrumMatrix& m, double low, double high, size_t count) {
    const DimensionRecord& d = m.dims[1];
    const auto from = static_cast<size_t>(std::max<int64_t>(pointOfPpm(d, high), 1));
    const auto to = static_cast<size_t>(std::min<int64_t>(pointOfPpm(d, low), d.points - 2));
    std::vector<std::pair<float, size_t>> maxima;
    for (size_t i = from; i <= to; ++i)
        if (m.re[i] > m.re[i - 1] && m.re[i] >= m.re[i + 1]) maxima.emplace_back(m.re[i], i);
    std::sort(maxima.rbegin(), maxima.rend());
    std::vector<double> ppm;
    for (size_t k = 0; k < count && k < maxima.size(); ++k)
        ppm.push_back(ppmOfPoint(d, static_cast<double>(maxima[k].second)));
    return ppm;
}

SpectrumDocument& openAndTransform(Application& app, const std::string& path) {
    EXPECT_EQ(app.open(path), 1) << path;
    SpectrumDocument& d = *app.frontDocument();
    EXPECT_TRUE(app.scriptHost().executeInput("wft() aph()"));
    return d;
}

TEST(VarianOpening, SolventLinesSitWhereTheAcquisitionsReferencePutsThem) {
    testing::RecordingPlatform platform;
    Application app(platform);

    SpectrumDocument& h = openAndTransform(app, testdata::shared("varian/1H.fid"));
    EXPECT_EQ(h.source.provenance, "Varian");
    EXPECT_EQ(h.windowName.substr(h.windowName.size() - 2), "1H");
    EXPECT_EQ(h.metadata.solvent, "cdcl3");
    ASSERT_EQ(h.matrix.dims[1].points, 16384u);  // already a power of two: no zero-filling
    // CHCl3 is the tallest line between 7.15 and 7.30 ppm, just right of the compound's
    // multiplet at 7.36; the TMS the acquisition was referenced to sits at 0.
    const auto chcl3 = linesBetween(h.matrix, 7.15, 7.30, 1);
    ASSERT_EQ(chcl3.size(), 1u);
    EXPECT_NEAR(chcl3[0], 7.24, 0.05);
    const auto tms = linesBetween(h.matrix, -0.2, 0.2, 1);
    ASSERT_EQ(tms.size(), 1u);
    EXPECT_NEAR(tms[0], 0.0, 0.01);

    SpectrumDocument& c = openAndTransform(app, testdata::shared("varian/13C.fid/fid"));
    EXPECT_EQ(c.source.dims[1].isotope, 13);
    // The CDCl3 triplet: the three tallest lines around 77 ppm, 0.21 ppm apart.
    auto triplet = linesBetween(c.matrix, 76.0, 78.0, 3);
    ASSERT_EQ(triplet.size(), 3u);
    std::sort(triplet.begin(), triplet.end());
    EXPECT_NEAR(triplet[1], 77.0, 0.05);
    EXPECT_NEAR((triplet[0] + triplet[2]) / 2, 77.0, 0.05);
    EXPECT_NEAR(triplet[2] - triplet[1], 0.21, 0.03);
    EXPECT_NEAR(triplet[1] - triplet[0], 0.21, 0.03);
}

class DamagedVarian : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = testdata::freshTempDir("varian-damaged") + "/13C.fid";
        fs::create_directories(dir_);
        for (const char* name : {"procpar", "text"})
            fs::copy_file(testdata::shared("varian/13C.fid/") + name, dir_ + "/" + name);
        raw_ = testdata::readFile(testdata::shared("varian/13C.fid/fid"));
    }
    void TearDown() override { fs::remove_all(fs::path(dir_).parent_path()); }

    void expectIncoherent(const std::string& fid) {
        std::ofstream(dir_ + "/fid", std::ios::binary | std::ios::trunc) << fid;
        Message failure;
        EXPECT_FALSE(readDocument(dir_, Preferences{}, failure));
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, "This Varian file seems incoherent");
    }

    std::string dir_, raw_;
};

TEST_F(DamagedVarian, MissingTruncatedOrCorruptedFidsGiveTheFormatsMessage) {
    Message failure;
    for (const std::string& path :
         {testdata::shared("varian/missing.fid"), testdata::shared("varian/missing.fid/procpar")}) {
        EXPECT_FALSE(readDocument(path, Preferences{}, failure)) << path;
        EXPECT_EQ(failure.caption, "Failed to Read the file");
        EXPECT_EQ(failure.text, "This Varian file seems incoherent");
    }
    for (size_t size : {size_t{0}, size_t{20}, size_t{32}, size_t{100}, raw_.size() / 2})
        expectIncoherent(raw_.substr(0, size));

    // Points per trace beyond the block, blocks of no size, no traces.
    for (size_t at : {size_t{8}, size_t{20}, size_t{4}}) {
        std::string corrupt = raw_;
        corrupt.replace(at, 4, at == 8 ? std::string("\x7F\0\0\0", 4) : std::string(4, '\0'));
        expectIncoherent(corrupt);
    }

    // Noise in the values or a block header is read, not refused.
    std::string corrupt = raw_;
    for (size_t i = 32; i < corrupt.size(); i += 7) corrupt[i] = static_cast<char>(i * 31);
    std::ofstream(dir_ + "/fid", std::ios::binary | std::ios::trunc) << corrupt;
    EXPECT_TRUE(readDocument(dir_, Preferences{}, failure)) << failure.text;
}

}  // namespace
}  // namespace zolt

// Work that hostile or damaged input could make unbounded: folder walks through loops of
// links, saved steps beyond what the dialogs offer, and files far larger than their data.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/document_opening.h"
#include "document/processing_replay.h"
#include "io/data_set_walk.h"
#include "processing/baseline.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> walked(const std::string& folder) {
    std::vector<std::string> found;
    walkDataSets(folder, [&](const std::string& path) {
        found.push_back(fs::path(path).filename().string());
        return true;
    });
    return found;
}

TEST(BoundedWork, AFolderWalkSearchesEveryRealFolderOnceWhateverLinksLeadThere) {
    const std::string root = testdata::freshTempDir("link-loops");
    fs::create_directories(root + "/sets/exp");
    std::ofstream(root + "/sets/exp/acqus") << "##TITLE= a data set folder\n";
    std::ofstream(root + "/sets/exp/fid");
    // Links back to the top, to the folder itself, across to each other and to the data set.
    fs::create_directories(root + "/a/b");
    fs::create_directory_symlink(root, root + "/a/b/top");
    fs::create_directory_symlink(".", root + "/a/self");
    fs::create_directory_symlink("../a", root + "/sets/back");
    fs::create_directory_symlink("sets/exp", root + "/alias");
    EXPECT_EQ(walked(root).size(), 1u);
    EXPECT_EQ(walked(root + "/a").size(), 1u);
    fs::remove_all(root);
}

// A record that asks for an FT size and a baseplane order no dialog offers.
void replayWith(SpectrumDocument& doc, uint32_t ftSize, uint8_t order) {
    FourierTransformStep& ft = fourierTransformStep(doc, 1);
    ft.ftSize = ftSize;
    BaseplaneStep baseline;
    baseline.order = order;
    baseline.movingAverage = 64;
    doc.processing.steps.push_back(ProcessingStep{1, baseline});
    doc.processing.doneMask = done_mask::transformed(1);
    doc.source.highestTIndex = 0;
    EXPECT_FALSE(replayProcessing(doc));
}

TEST(BoundedWork, ReplayedStepsBeyondTheDialogsAreBroughtIntoTheirRanges) {
    // 0xFFFFFFFF is a size of -1 read back from a document.
    for (uint32_t size : {0xFFFFFFFFu, 0x80000000u}) {
        SCOPED_TRACE(size);
        auto doc = testdata::openExperiment("aspirin-1h");
        ASSERT_TRUE(doc);
        replayWith(*doc, size, 255);
        EXPECT_EQ(doc->matrix.dims[1].points, kMaxFtSize);
        EXPECT_EQ(findFourierTransformStep(doc->processing, 1)->ftSize, kMaxFtSize);
        const auto& b = std::get<BaseplaneStep>(doc->processing.steps.back().data);
        EXPECT_EQ(b.order, kMaxBaselineOrder);
    }
    // Within the ranges nothing changes, and a size below the smallest still means no transform.
    ProcessingStep ft{1, FourierTransformStep{}};
    std::get<FourierTransformStep>(ft.data).ftSize = 0;
    boundReplayedStep(ft);
    EXPECT_EQ(std::get<FourierTransformStep>(ft.data).ftSize, 0u);
    ProcessingStep whittaker{1, BaseplaneStep{}};
    std::get<BaseplaneStep>(whittaker.data).function = 0;
    std::get<BaseplaneStep>(whittaker.data).order = 200;
    boundReplayedStep(whittaker);
    EXPECT_EQ(std::get<BaseplaneStep>(whittaker.data).order, 200);
}

long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

TEST(BoundedWork, ASparseFourGigabyteFidWithoutTdIsRefusedWithoutTakingItsSize) {
    const std::string dir = testdata::freshTempDir("sparse-fid");
    std::string acqus = testdata::readFile(testdata::bruker("aspirin-1h") + "/acqus");
    acqus.replace(acqus.find("##$TD= 16384"), 12, "##$TD= 0");
    std::ofstream(dir + "/acqus", std::ios::binary) << acqus;
    { std::ofstream(dir + "/fid", std::ios::binary); }
    ASSERT_EQ(truncate((dir + "/fid").c_str(), off_t{4} << 30), 0);
    const long before = peakMegabytes();
    Message failure;
    EXPECT_FALSE(readDocument(dir, Preferences{}, failure));
    EXPECT_EQ(failure.caption, "Failed to Read the file");
    EXPECT_EQ(failure.text, "Error found while trying to read data-points");
    EXPECT_LT(peakMegabytes() - before, 256);
    fs::remove_all(dir);
}

}  // namespace
}  // namespace zolt

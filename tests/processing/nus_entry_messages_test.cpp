// The two refusals of the NUS entry of the transform, with their exact caption and text, and
// the data they leave as they were.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "app/document_opening.h"
#include "processing/ft_pipeline.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

TEST(NusEntryMessages, RealHsqcWithoutItsSamplingListStaysInTheTimeDomain) {
    const std::string original = testdata::bruker("hsqc-nus");
    const std::string dir = testdata::freshTempDir("nus-missing");
    for (const char* file : {"acqus", "acqu2s", "pulseprogram", "ser"})
        fs::copy_file(original + "/" + file, dir + "/" + file);
    Message failure;
    auto doc = readDocument(dir, Preferences{}, failure);
    ASSERT_TRUE(doc) << failure.text;
    ASSERT_EQ(doc->matrix.dims[1].pointsAfterNus, 1024u);
    ASSERT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    const SpectrumMatrix before = doc->matrix;

    const FtResult missing = transformNextDimension(*doc);
    EXPECT_EQ(missing.outcome, FtOutcome::NusListMissing);
    ASSERT_TRUE(missing.message);
    EXPECT_EQ(missing.message->caption, "Missing NUS Metadata");
    EXPECT_EQ(missing.message->text,
              "The file 'nuslist' is missing or unreadable. This file is required to map the "
              "experimental points onto the full grid.");
    EXPECT_EQ(doc->matrix.re, before.re);
    EXPECT_EQ(doc->matrix.im, before.im);
    EXPECT_EQ(doc->matrix.dims[1].points, 256u);
    EXPECT_EQ(doc->source.highestTIndex, 1);

    // With the list beside the data the same document goes on to the full grid.
    fs::copy_file(original + "/nuslist", dir + "/nuslist");
    EXPECT_EQ(transformNextDimension(*doc).outcome, FtOutcome::Transformed);
    EXPECT_EQ(doc->matrix.dims[1].points, findFourierTransformStep(doc->processing, 1)->ftSize);
    EXPECT_EQ(doc->source.highestTIndex, 0);
    fs::remove_all(dir);
}

TEST(NusEntryMessages, FullGridBeyondTheLimitIsRefusedAsInsufficientMemory) {
    // Two pairs of sampled rows of 32 points on a grid of 2^25 rows: 2^30 floats per array.
    const std::string dir = testdata::freshTempDir("nus-memory");
    std::ofstream(dir + "/nuslist") << "0\n16777215\n";
    SpectrumDocument doc;
    doc.source.rawPath = dir + "/ser";
    doc.source.highestTIndex = 1;
    doc.matrix.dims[2].points = 32;
    doc.matrix.dims[1].points = 4;
    doc.matrix.dims[1].pointsAfterNus = 1u << 25;
    doc.matrix.contiguous = 2;
    for (size_t i = 0; i < 128; ++i) {
        doc.matrix.re.push_back(static_cast<float>(i));
        doc.matrix.im.push_back(-static_cast<float>(i));
    }
    FourierTransformStep step;
    step.ftSize = 32;
    step.flags = ft_flags::kQuadrature;
    doc.processing.steps.push_back(ProcessingStep{1, step});
    const SpectrumMatrix before = doc.matrix;

    const FtResult result = transformNextDimension(doc);
    fs::remove_all(dir);
    EXPECT_EQ(result.outcome, FtOutcome::NusNoMemory);
    ASSERT_TRUE(result.message);
    EXPECT_EQ(result.message->caption, "Insufficient Memory");
    EXPECT_EQ(result.message->text,
              "Could not allocate the expanded matrix for NUS reconstruction. Try reducing the "
              "Zero Filling or closing other spectra.");
    EXPECT_EQ(doc.matrix.re, before.re);
    EXPECT_EQ(doc.matrix.im, before.im);
    EXPECT_EQ(doc.matrix.dims[1].points, 4u);
    EXPECT_EQ(doc.source.highestTIndex, 1);
}

}  // namespace
}  // namespace zolt

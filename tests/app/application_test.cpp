#include "app/application.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "app/document_opening.h"
#include "app/headless_platform.h"
#include "app/recording_platform.h"
#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

TEST(Application, OpeningPutsTheNewDocumentInFront) {
    testing::RecordingPlatform platform;
    Application app(platform);
    EXPECT_EQ(app.frontDocument(), nullptr);
    ASSERT_EQ(app.open(testdata::bruker("aspirin-1h")), 1);
    ASSERT_EQ(app.open(testdata::bruker("cyclosporin-cosy") + "/ser"), 1);
    const SpectrumDocument& cosy = *app.frontDocument();
    EXPECT_EQ(cosy.source.provenance, "Bruker");
    EXPECT_EQ(cosy.windowName, "cyclosporin_cosy/cyclosporin_cosy/1");
    EXPECT_EQ(cosy.source.highestTIndex, 2);
    // Each time-domain axis starts with its default FT step.
    SpectrumDocument& front = *app.frontDocument();
    EXPECT_NE(findFourierTransformStep(front.processing, 1), nullptr);
    EXPECT_NE(findFourierTransformStep(front.processing, 2), nullptr);
    EXPECT_EQ(app.documentList()[1]->windowName, "bruker/aspirin-1h/1");
    app.bringToFront(*app.documentList()[1]);
    EXPECT_EQ(app.frontDocument()->windowName, "bruker/aspirin-1h/1");
    EXPECT_TRUE(platform.boxes.empty());
}

TEST(Application, AFolderOpensEveryDataSetInside) {
    testing::RecordingPlatform platform;
    Application app(platform);
    EXPECT_EQ(app.open(testdata::root() + "/bruker/cyclosporin_hsqc"), 1);
    // Every experiment opens, the one kept without its FID as its processed spectrum.
    EXPECT_EQ(app.open(testdata::root() + "/bruker"), 12);
    EXPECT_EQ(app.documentList().size(), 13u);
    EXPECT_TRUE(platform.boxes.empty());
    const auto processed =
        std::find_if(app.documentList().begin(), app.documentList().end(), [](const auto& d) {
            return d->source.rawPath.find("aspirin-1h-processed") != std::string::npos;
        });
    ASSERT_NE(processed, app.documentList().end());
    EXPECT_EQ((*processed)->source.highestTIndex, 0);
    EXPECT_TRUE((*processed)->matrix.realOnly());
}

TEST(Application, OpeningReportsWhatFails) {
    testing::RecordingPlatform platform;
    Application app(platform);
    const std::string dir = testdata::freshTempDir("open-fail");
    EXPECT_EQ(app.open(dir), 0);
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "Complete Failure: no file was recognized");
    EXPECT_EQ(platform.boxes[0].text, "Hint: try starting from an outer or an inner folder");
    std::ofstream(dir + "/notes.dat") << "no spectrum here";
    EXPECT_EQ(app.open(dir + "/notes.dat"), 0);
    EXPECT_EQ(platform.boxes.back().caption, "Failed to Read the file");
    EXPECT_EQ(platform.boxes.back().text, "This format is unknown");
    // A path that is not there says so, whether it names a file or a folder.
    for (const std::string& missing : {dir + "/fid", dir + "/gone/", std::string("/no/such/1")}) {
        SCOPED_TRACE(missing);
        EXPECT_EQ(app.open(missing), 0);
        EXPECT_EQ(platform.boxes.back().caption, "Failed to Read the file");
        EXPECT_EQ(platform.boxes.back().text, "This file or folder does not exist");
    }
    EXPECT_EQ(platform.boxes.size(), 5u);
}

TEST(Application, ThirtyDocumentsAtMost) {
    testing::RecordingPlatform platform;
    Application app(platform);
    for (int i = 0; i < 29; ++i) app.newDocument();
    EXPECT_EQ(app.open(testdata::root() + "/bruker"), 1);
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "Too Many Document Windows");
    EXPECT_EQ(platform.boxes[0].text, "you can't exceed the maximum of 30");
    EXPECT_EQ(app.documentList().size(), 30u);
}

TEST(Application, NewDocumentsAreUntitledAndNumberedFromTwo) {
    testing::RecordingPlatform platform;
    Application app(platform);
    EXPECT_EQ(app.newDocument()->windowName, "untitled");
    EXPECT_EQ(app.newDocument()->windowName, "untitled 2");
    EXPECT_EQ(app.newDocument()->windowName, "untitled 3");
    app.closeDocument(*app.frontDocument());
    EXPECT_EQ(app.frontDocument()->windowName, "untitled 2");
}

TEST(Application, ReloadRestoresTheRawDataAndKeepsTheFtPreferences) {
    testing::RecordingPlatform platform;
    Application app(platform);
    ASSERT_EQ(app.open(testdata::bruker("aspirin-1h")), 1);
    SpectrumDocument& d = *app.frontDocument();
    const std::vector<float> raw = d.matrix.re;
    ASSERT_TRUE(app.scriptHost().runChunk("fill(64) noneg() todo(0) reload()", "input"));
    EXPECT_EQ(d.matrix.re, raw);
    EXPECT_EQ(d.source.highestTIndex, 1);
    EXPECT_EQ(findFourierTransformStep(d.processing, 1)->ftSize, 64u);
}

TEST(HeadlessPlatform, MessagesGoToStandardErrorAndTakeTheDefaultAnswer) {
    std::ostringstream out, err;
    HeadlessPlatform platform(out, err);
    EXPECT_EQ(platform.messageBox("Zolt Error", "Cannot Find or Read the Original Parameters",
                                  MessageButtons::Ok),
              MessageAnswer::Ok);
    EXPECT_EQ(platform.messageBox("there is an unsaved document", "quit anyway?",
                                  MessageButtons::OkCancel),
              MessageAnswer::Ok);
    EXPECT_EQ(platform.messageBox("q", "t", MessageButtons::YesNoCancel), MessageAnswer::Yes);
    EXPECT_EQ(err.str(),
              "Zolt Error: Cannot Find or Read the Original Parameters\n"
              "there is an unsaved document: quit anyway?\nq: t\n");
    platform.setClipboardText("a\r\nb");
    EXPECT_EQ(platform.clipboardText(), "a\r\nb");
    platform.openWithSystem("/tmp/script.lua");
    EXPECT_EQ(out.str(), "/tmp/script.lua\n");
}

}  // namespace
}  // namespace zolt

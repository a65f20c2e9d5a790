// The command table, the routing of a command, the frame's menu enabling, the recent files and
// the quit prompt.
#include "app/command_table.h"

#include <gtest/gtest.h>

#include <set>

#include "app/command_routing.h"
#include "app/menu_enabling.h"
#include "app/preferences.h"
#include "app/quit_prompt.h"
#include "app/recent_files.h"
#include "app/recording_platform.h"

namespace zolt {
namespace {

// Takes what the test says the front document and the frame take; records the rest.
struct Targets : CommandTargets {
    bool documentTakes = false, frameTakes = false;
    std::vector<std::string> calls;
    void runScriptEntry(int i) override { calls.push_back("script " + std::to_string(i)); }
    bool frontDocumentHandles(int) override { return documentTakes; }
    void openRecentFile(int i) override { calls.push_back("recent " + std::to_string(i)); }
    void applySavedFormat(int i) override { calls.push_back("format " + std::to_string(i)); }
    bool frameHandles(int) override { return frameTakes; }
};

TEST(CommandRouting, RangesAndTheirBoundaries) {
    struct Case {
        int id;
        Route route;
        const char* call;
    };
    for (const Case& c :
         {Case{4999, Route::System, ""}, Case{5000, Route::ScriptEntry, "script 0"},
          Case{61471, Route::ScriptEntry, "script 56471"}, Case{61472, Route::System, ""},
          Case{139, Route::Ignored, ""}, Case{140, Route::RecentFile, "recent 0"},
          Case{150, Route::RecentFile, "recent 10"}, Case{151, Route::Ignored, ""},
          Case{449, Route::Ignored, ""}, Case{450, Route::SavedFormat, "format 0"},
          Case{499, Route::SavedFormat, "format 49"}, Case{500, Route::Ignored, ""},
          Case{1099, Route::Ignored, ""}, Case{1100, Route::System, ""}}) {
        Targets t;
        EXPECT_EQ(routeCommand(c.id, t), c.route) << c.id;
        EXPECT_EQ(t.calls,
                  c.call[0] ? std::vector<std::string>{c.call} : std::vector<std::string>{})
            << c.id;
    }
}

TEST(CommandRouting, FrontDocumentFirstThenFrameScriptsBeforeBoth) {
    Targets t;
    t.documentTakes = t.frameTakes = true;
    EXPECT_EQ(routeCommand(145, t), Route::FrontDocument);
    EXPECT_EQ(routeCommand(5001, t), Route::ScriptEntry);
    t.documentTakes = false;
    EXPECT_EQ(routeCommand(101, t), Route::Frame);
    EXPECT_EQ(routeCommand(145, t), Route::RecentFile);
}

TEST(CommandTable, RowsAreUniqueAndAcceleratorsBelongToOneCommand) {
    std::set<int> ids;
    std::set<std::string> keys;
    for (const CommandRow& row : commandTable()) {
        for (int id = row.id; id <= row.lastId; ++id) EXPECT_TRUE(ids.insert(id).second) << id;
        for (const char* key : {row.accelerator, row.secondAccelerator})
            EXPECT_TRUE(!*key || keys.insert(key).second) << key;
    }
    EXPECT_EQ(ids.size(), 140u + 11u + 50u + 56472u);  // rows, recent files, formats, scripts
    EXPECT_STREQ(findCommand(703)->accelerator, "Ctrl+I");
    EXPECT_STREQ(findCommand(507)->accelerator, "");
    EXPECT_STREQ(findCommand(507)->shownKey, "Ctrl+I");
    EXPECT_STREQ(findCommand(1)->secondAccelerator, "Alt+?");
    EXPECT_STREQ(findCommand(402)->text, "Axes && Scales...");
    EXPECT_STREQ(findCommand(854)->toolKey, "v");
    EXPECT_EQ(findCommand(147)->id, kFirstRecentFile);
    EXPECT_EQ(findCommand(999), nullptr);
    // The Symmetrize submenu keeps its order of rows, not of identifiers.
    std::vector<int> symmetrize;
    for (const CommandRow& row : commandTable())
        if (std::string_view(row.submenu) == "Symmetrize") symmetrize.push_back(row.id);
    EXPECT_EQ(symmetrize, (std::vector<int>{651, 653, 652, 654, 655, 656}));
}

TEST(MenuEnabling, FrameItemsFollowFlagsCountsAndConsole) {
    FrameState s;
    s.flags = pref_flags::kGlobalCross;
    s.consoleShown = true;
    auto tools = frameMenuItems(Menu::Tools, s);
    ASSERT_EQ(tools.size(), 5u);
    EXPECT_EQ(tools[2].text, "Hide Console     Ctrl+0");
    EXPECT_TRUE(tools[4].checked);
    s.consoleShown = false;
    EXPECT_EQ(frameMenuItems(Menu::Tools, s)[2].text, "Show Console     Ctrl+0");
    s.documents = 1;
    s.synchronisation = 1;
    auto window = frameMenuItems(Menu::Window, s);
    EXPECT_FALSE(window[0].enabled);
    EXPECT_TRUE(window[1].enabled && window[1].checked);
    s.frontDocument = true;
    s.savedFormats = 48;
    EXPECT_TRUE(frameMenuItems(Menu::Format, s)[0].enabled);
    s.savedFormats = 49;
    EXPECT_FALSE(frameMenuItems(Menu::Format, s)[0].enabled);
    EXPECT_TRUE(frameMenuItems(Menu::Format, s)[1].enabled);
}

TEST(RecentFiles, KeptInOrderWithoutDuplicatesAndDiscardedWhenUneven) {
    RecentFiles r;
    for (int i = 0; i < 13; ++i)
        addRecentFile(r, "t" + std::to_string(i), "/p" + std::to_string(i));
    addRecentFile(r, "again", "/p5");
    ASSERT_EQ(r.paths.size(), kMaxRecentFiles);
    EXPECT_EQ(r.paths[0], "/p5");
    EXPECT_EQ(r.titles[0], "again");
    EXPECT_EQ(r.paths[1], "/p12");
    EXPECT_EQ(std::count(r.paths.begin(), r.paths.end(), "/p5"), 1);

    MemorySettingsStore store;
    saveRecentFiles(store, r);
    EXPECT_EQ(*store.text("Recent Paths/0"), "/p5");
    const RecentFiles back = loadRecentFiles(store);
    EXPECT_EQ(back.paths, r.paths);
    EXPECT_EQ(back.titles, r.titles);
    store.setText("Recent Titles/11", "one too many");
    EXPECT_TRUE(loadRecentFiles(store).paths.empty());
    removeRecentFile(r, 0);
    EXPECT_EQ(r.paths[0], "/p12");
}

TEST(QuitPrompt, CountsUnsavedDocumentsInTheCaption) {
    std::vector<SpectrumDocument> docs(4);
    std::vector<SpectrumDocument*> list;
    for (auto& d : docs) list.push_back(&d);
    testing::RecordingPlatform platform;
    EXPECT_TRUE(confirmQuit(platform, list));
    EXPECT_TRUE(platform.boxes.empty());
    docs[1].flags |= document_flags::kModified;
    platform.answer = MessageAnswer::Cancel;
    EXPECT_FALSE(confirmQuit(platform, list));
    docs[2].flags |= document_flags::kModified;
    docs[3].flags |= document_flags::kModified | document_flags::kCustomWorkflow;
    platform.answer = MessageAnswer::Ok;
    EXPECT_TRUE(confirmQuit(platform, list));
    ASSERT_EQ(platform.boxes.size(), 2u);
    EXPECT_EQ(platform.boxes[0].caption, "there is an unsaved document");
    EXPECT_EQ(platform.boxes[1].caption, "there are 3 unsaved documents");
    EXPECT_EQ(platform.boxes[1].text, "quit anyway?");
    EXPECT_EQ(platform.boxes[1].buttons, MessageButtons::OkCancel);
}

}  // namespace
}  // namespace zolt

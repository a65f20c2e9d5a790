// Automatic processing: the start-up script made sure of at loading and run on new data, and
// the custom workflow that replaces a reopened document's saved processing.
#include "app/automatic_processing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "app/recording_platform.h"
#include "scripting/custom_workflow.h"
#include "scripting/startup_script.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// HOME points into a fresh folder for the test's length.
class TemporaryHome {
public:
    TemporaryHome() {
        if (const char* h = std::getenv("HOME")) saved_ = h;
        setenv("HOME", path.c_str(), 1);
    }
    ~TemporaryHome() {
        if (saved_) setenv("HOME", saved_->c_str(), 1);
    }
    const std::string path = testdata::freshTempDir("home");

private:
    std::optional<std::string> saved_;
};

// parent/name/1, a copy of the test set's experiment.
std::string copyOf(const std::string& name, const std::string& parent) {
    const std::string dir = parent + "/" + name + "/1";
    fs::create_directories(parent + "/" + name);
    fs::copy(testdata::bruker(name), dir, fs::copy_options::recursive);
    return dir;
}

TEST(AutomaticProcessing, LoadingPreferencesWritesTheStartupScriptIntoTheHomeFolder) {
    TemporaryHome home;
    MemorySettingsStore fresh;
    const Preferences p = loadPreferences(fresh, ensureStartupScript);
    EXPECT_TRUE(p.has(pref_flags::kAutomaticProcessing));
    const std::string folder = home.path + "/Documents/Zolt scripts";
    EXPECT_EQ(p.scriptsFolder, folder);
    EXPECT_EQ(testdata::readFile(folder + "/autoexec.lua"), defaultStartupScript());

    // A folder that cannot be made, or no home folder at all: no automatic processing.
    Preferences blocked;
    blocked.scriptsFolder = folder + "/autoexec.lua/scripts";
    EXPECT_EQ(ensureStartupScript(blocked),
              pref_flags::kDefault & ~pref_flags::kAutomaticProcessing);
    unsetenv("HOME");
    Preferences homeless;
    EXPECT_FALSE(ensureStartupScript(homeless) & pref_flags::kAutomaticProcessing);
    EXPECT_FALSE(homeless.scriptsFolder);
}

TEST(AutomaticProcessing, NewDataRunTheStartupScriptOnlyWhenAskedAndSwitchedOn) {
    const std::string root = testdata::freshTempDir("auto");
    const std::string tree = root + "/tree";
    copyOf("aspirin-1h", tree);
    copyOf("naphtoicAcid-1h", tree);
    Preferences prefs;
    prefs.scriptsFolder = root;
    std::ofstream(root + "/autoexec.lua") << "print('auto', numdim()) fill(4096) wft()";
    for (bool asked : {false, true})
        for (bool on : {false, true}) {
            SCOPED_TRACE(::testing::Message() << asked << on);
            testing::RecordingPlatform platform;
            prefs.flags = on ? pref_flags::kDefault : 0;
            Application app(platform, prefs);
            app.setAutomaticScripts(asked);
            ASSERT_EQ(app.open(tree), 2);
            for (const auto& doc : app.documentList())
                EXPECT_EQ(doc->source.highestTIndex, asked && on ? 0 : 1);
            if (asked && on) {
                EXPECT_NE(app.scriptHost().log().find("\r\nauto\t1\t1\r\nauto\t1\t1"),
                          std::string::npos);
            }
            EXPECT_TRUE(platform.boxes.empty());
        }
}

TEST(AutomaticProcessing, AStoredWorkflowReplacesTheSavedProcessingOnReopening) {
    const std::string dir = copyOf("aspirin-1h", testdata::freshTempDir("workflow"));
    const std::string script = dir + "/script.lua";
    Preferences prefs;
    prefs.flags = pref_flags::kDefault & ~pref_flags::kAutomaticProcessing;
    prefs.scriptsFolder = testdata::freshTempDir("workflow-scripts");
    testing::RecordingPlatform platform;
    const auto reopen = [&](Application& app) -> SpectrumDocument& {
        app.setAutomaticScripts(true);
        EXPECT_EQ(app.open(dir), 1);
        return *app.frontDocument();
    };
    {
        Application app(platform, prefs);
        SpectrumDocument& doc = reopen(app);
        ScriptHost& host = app.scriptHost();
        host.executeInput("fill(8192)");
        host.executeInput("wft()");
        storeWorkflow(host);
        EXPECT_EQ(testdata::readFile(script), "fill(8192)\nwft()\n");
        EXPECT_EQ(doc.flags & 0x24000u, 0x24000u);
        EXPECT_EQ(host.messageLine(), "Custom Workflow ON - cw() to disable");
        EXPECT_TRUE(host.log().ends_with("\r\nCustom Workflow ON - cw() to disable"));
        storeWorkflow(host);  // the script exists: it is opened instead
        EXPECT_EQ(platform.opened, std::vector<std::string>{script});
        std::ofstream(script) << "fill(2048) wft()";
        ASSERT_TRUE(app.save(doc));  // transformed at 8192 points
    }
    {
        Application app(platform, prefs);
        SpectrumDocument& doc = reopen(app);
        EXPECT_EQ(doc.source.highestTIndex, 0);
        EXPECT_EQ(doc.matrix.dims[1].points, 2048u);  // the script's size, not the saved one
        restoreWorkflow(app.scriptHost());
        EXPECT_EQ(app.scriptHost().inputLine(), "fill(2048) wft()");
    }
    fs::remove(script);
    for (bool showPlan : {false, true}) {
        Application app(platform, prefs);
        if (showPlan) app.preferences().flags |= pref_flags::kShowPlan;
        platform.boxes.clear();
        SpectrumDocument& doc = reopen(app);
        EXPECT_EQ(doc.source.highestTIndex, 1);  // neither replayed nor run
        ASSERT_EQ(platform.boxes.size(), showPlan ? 0u : 1u);
        if (!showPlan) {
            EXPECT_EQ(platform.boxes[0].caption, "Could not find the internal script");
            EXPECT_EQ(platform.boxes[0].text, "to stop this alert: cw()");
        }
        if (showPlan) continue;
        ASSERT_TRUE(app.scriptHost().executeInput("cw()"));
        EXPECT_EQ(doc.flags & 0x24000u, 0x20000u);
        ASSERT_TRUE(app.save(doc));
    }
    platform.boxes.clear();
    Application app(platform, prefs);
    EXPECT_FALSE(reopen(app).flags & document_flags::kCustomWorkflow);  // switched off for good
    EXPECT_TRUE(platform.boxes.empty());
}

TEST(AutomaticProcessing, CustomScriptsLieBesideLooseFilesAndInsideDataFolders) {
    SpectrumDocument doc;
    EXPECT_EQ(customScriptPath(doc), "");
    doc.source.rawPath = "/data/sample.fid";
    doc.source.flags = source_flags::kLooseNativeFile;
    EXPECT_EQ(customScriptPath(doc), "/data/sample.fid.lua");
    doc.source.rawPath = "/data/aspirin/1/fid";
    doc.source.flags = 0;
    EXPECT_EQ(customScriptPath(doc), "/data/aspirin/1/script.lua");
}

}  // namespace
}  // namespace zolt

// The program-wide state: the open documents (front-most first), the preferences, the
// platform and the script host.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/platform.h"
#include "app/preferences.h"
#include "app/timed_preferences.h"
#include "model/spectrum_document.h"
#include "scripting/script_context.h"
#include "scripting/script_host.h"

namespace zolt {

class Application final : public ScriptContext {
public:
    explicit Application(Platform& platform, Preferences preferences = {});
    ~Application() override;

    Platform& platform() { return platform_; }
    Preferences& preferences() { return preferences_; }
    // The switches changed for a limited time (Help > Timer); they are never stored.
    TimedPreferences& timedPreferences() { return timed_; }
    // Where options kept between runs beyond the preference block live (the 2-D peak-picking
    // options); without one they take their defaults.
    void setSettingsStore(SettingsStore* store) { settings_ = store; }

    const std::vector<std::unique_ptr<SpectrumDocument>>& documentList() const {
        return documents_;
    }
    SpectrumDocument* frontDocument() const {
        return documents_.empty() ? nullptr : documents_.front().get();
    }
    // The document becomes the front one.
    SpectrumDocument& addDocument(std::unique_ptr<SpectrumDocument> document);
    void closeDocument(SpectrumDocument& document);
    // Saves in place: the document file it came from, or the raw file's name with ".zolt";
    // failures are shown through the platform.
    bool save(SpectrumDocument& document);

    // Whether opening runs scripts as the document windows do: the start-up script on newly
    // read data when "Automatic Processing" is on, the custom workflow of a reopened document
    // unless ShowPlan is on. Off until the program asks for it.
    void setAutomaticScripts(bool on) { automaticScripts_ = on; }

    // Created on first use (running "Lua.init"); closing it drops its log and history.
    ScriptHost& scriptHost();
    bool hasScriptHost() const { return host_ != nullptr; }
    void closeScriptHost() { host_.reset(); }
    // Called with every line the console log receives.
    void setLogListener(std::function<void(std::string_view)> listener) {
        logListener_ = std::move(listener);
    }

    // Called when a script changed what a document's window shows.
    void setRedrawListener(std::function<void(SpectrumDocument&)> listener) {
        redrawListener_ = std::move(listener);
    }

    // What draws pictures of documents (the program sets it where it links the renderer).
    using PictureWriter = std::function<bool(const SpectrumDocument&, const std::string& path,
                                             std::string_view type)>;
    void setPictureWriter(PictureWriter writer) { pictureWriter_ = std::move(writer); }

    // ScriptContext
    std::vector<SpectrumDocument*> documents() override;
    void bringToFront(SpectrumDocument& document) override;
    SpectrumDocument* newDocument() override;
    // Failures are shown through the platform.
    int open(const std::string& path) override;
    bool reload(SpectrumDocument& document, bool clearProcessedChoice) override;
    void message(std::string_view caption, std::string_view text) override {
        platform_.messageBox(caption, text);
    }
    std::string clipboardText() override { return platform_.clipboardText(); }
    void setClipboardText(std::string_view text) override { platform_.setClipboardText(text); }
    void openWithSystem(const std::string& path) override { platform_.openWithSystem(path); }
    std::string scriptsFolder() override { return zolt::scriptsFolder(preferences_); }
    std::string consoleShortcuts() override { return preferences_.consoleShortcuts.value_or(""); }
    void logAppended(std::string_view line) override {
        if (logListener_) logListener_(line);
    }
    bool savePicture(SpectrumDocument& document, const std::string& path,
                     std::string_view type) override {
        return pictureWriter_ && pictureWriter_(document, path, type);
    }
    void redraw(SpectrumDocument& document) override {
        if (redrawListener_) redrawListener_(document);
    }
    PeakPickingOptions peakPickingOptions() override;
    int peakPickingMinimum() override;

private:
    PictureWriter pictureWriter_;
    bool openOne(const std::string& path);
    // Reads the data set into a new front document; failures are shown.
    bool readAndAdd(const std::string& path);
    // The new front document, just read: runs what its opening asks for.
    void runOpeningScripts(SpectrumDocument& document);

    Platform& platform_;
    Preferences preferences_;
    TimedPreferences timed_;
    SettingsStore* settings_ = nullptr;
    std::vector<std::unique_ptr<SpectrumDocument>> documents_;
    std::unique_ptr<ScriptHost> host_;
    std::function<void(std::string_view)> logListener_;
    std::function<void(SpectrumDocument&)> redrawListener_;
    int untitled_ = 0;
    bool automaticScripts_ = false;
};

}  // namespace zolt

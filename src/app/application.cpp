#include "app/application.h"

#include <algorithm>
#include <filesystem>

#include "app/document_opening.h"
#include "app/folder_opening.h"
#include "document/document_file.h"
#include "io/data_set_walk.h"
#include "operations/display_operations.h"
#include "scripting/custom_workflow.h"
#include "scripting/startup_script.h"

namespace zolt {

Application::Application(Platform& platform, Preferences preferences)
    : platform_(platform), preferences_(std::move(preferences)) {}

// The host goes first: its interpreter may still refer to documents while it closes.
Application::~Application() {
    host_.reset();
}

SpectrumDocument& Application::addDocument(std::unique_ptr<SpectrumDocument> document) {
    documents_.insert(documents_.begin(), std::move(document));
    return *documents_.front();
}

void Application::closeDocument(SpectrumDocument& document) {
    std::erase_if(documents_, [&](const auto& d) { return d.get() == &document; });
    if (host_) host_->rebuildTargets();
}

bool Application::save(SpectrumDocument& document) {
    if (document.source.numberType == NumberType::NoData) return true;
    const std::string path =
        document.documentPath.empty() ? documentPathFor(document) : document.documentPath;
    const SaveResult r = saveDocument(document, path, preferences_.has(pref_flags::kDoBackUp));
    if (!r.ok) {
        platform_.messageBox(r.message.caption, r.message.text);
        return false;
    }
    document.documentPath = path;
    document.flags &= ~document_flags::kModified;
    return true;
}

ScriptHost& Application::scriptHost() {
    if (!host_) host_ = std::make_unique<ScriptHost>(*this);
    return *host_;
}

std::vector<SpectrumDocument*> Application::documents() {
    std::vector<SpectrumDocument*> list;
    list.reserve(documents_.size());
    for (const auto& d : documents_) list.push_back(d.get());
    return list;
}

void Application::bringToFront(SpectrumDocument& document) {
    auto it = std::find_if(documents_.begin(), documents_.end(),
                           [&](const auto& d) { return d.get() == &document; });
    if (it != documents_.end()) std::rotate(documents_.begin(), it, it + 1);
}

SpectrumDocument* Application::newDocument() {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->source.numberType = NumberType::NoData;
    doc->windowName = ++untitled_ == 1 ? "untitled" : "untitled " + std::to_string(untitled_);
    return &addDocument(std::move(doc));
}

bool Application::openOne(const std::string& path) {
    if (documents_.size() >= kMaxDocuments) {
        platform_.messageBox(kTooManyCaption, kTooManyText);
        return false;
    }
    return readAndAdd(path);
}

bool Application::readAndAdd(const std::string& path) {
    Message failure;
    auto doc = readDocument(path, preferences_, failure, readerTable(), automaticScripts_);
    if (!doc) {
        platform_.messageBox(failure.caption, failure.text);
        return false;
    }
    runOpeningScripts(addDocument(std::move(doc)));
    return true;
}

void Application::runOpeningScripts(SpectrumDocument& document) {
    if (!automaticScripts_) return;
    if (document.documentPath.empty()) {
        // The new document is in front: the script's targets are it alone.
        if (preferences_.has(pref_flags::kAutomaticProcessing))
            scriptHost().runScript(kStartupScriptName);
    } else if ((document.flags & document_flags::kCustomWorkflow) &&
               !preferences_.has(pref_flags::kShowPlan)) {
        runCustomWorkflow(scriptHost(), document);
    }
}

int Application::open(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_directory(path, ec) || isDataSetFolder(path))
        return openOne(path) ? 1 : 0;
    const FolderOpening result = openDataSetsIn(
        path, [this] { return documents_.size(); },
        [this](const std::string& found) { return readAndAdd(found); });
    reportFolderOpening(platform_, result);
    return result.opened;
}

bool Application::reload(SpectrumDocument& document, bool clearProcessedChoice) {
    if (document.source.rawPath.empty()) return false;
    Preferences prefs = preferences_;
    if (clearProcessedChoice) prefs.flags &= ~pref_flags::kReadProcessedData;
    Message failure;
    auto fresh = readDocument(document.source.rawPath, prefs, failure);
    if (!fresh) {
        platform_.messageBox(failure.caption, failure.text);
        return false;
    }
    // The FT preferences stay; the data are raw again.
    document.source = std::move(fresh->source);
    document.matrix = std::move(fresh->matrix);
    document.processing.doneMask = 0;
    rescaleAfterDataChange(document);
    return true;
}

}  // namespace zolt

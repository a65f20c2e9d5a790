#include "scripting/custom_workflow.h"

#include <optional>

#include "base/files.h"
#include "base/paths.h"
#include "scripting/console_input.h"

namespace zolt {

namespace {

// Scripts are text typed by people; anything larger is not one.
constexpr uintmax_t kMaxScriptBytes = uintmax_t{16} << 20;

SpectrumDocument* frontDocument(ScriptHost& host) {
    const auto documents = host.context().documents();
    return documents.empty() ? nullptr : documents.front();
}

std::optional<std::string> readCustomScript(const SpectrumDocument& doc) {
    const std::string path = customScriptPath(doc);
    if (path.empty()) return std::nullopt;
    return readWholeFile(path, kMaxScriptBytes);
}

}  // namespace

std::string customScriptPath(const SpectrumDocument& doc) {
    if (doc.source.rawPath.empty()) return {};
    if (doc.source.flags & source_flags::kLooseNativeFile) return doc.source.rawPath + ".lua";
    return fromPath(toPath(doc.source.rawPath).parent_path() / kFolderScriptName);
}

bool runCustomWorkflow(ScriptHost& host, const SpectrumDocument& doc) {
    std::optional<std::string> text;
    if (host.state()) text = readCustomScript(doc);
    if (!text) {
        host.context().message(kNoInternalScriptCaption, kNoInternalScriptText);
        return false;
    }
    host.setInputLine(std::move(*text));
    return executeInputLine(host);
}

void storeWorkflow(ScriptHost& host) {
    SpectrumDocument* doc = frontDocument(host);
    if (!doc) return;
    const std::string path = customScriptPath(*doc);
    if (path.empty()) return;
    if (pathExists(path)) {
        host.context().openWithSystem(path);
        return;
    }
    std::string text;
    for (const std::string& entry : host.history()) text += entry + '\n';
    if (!writeFileReplacing(path, text)) return;
    doc->flags |= document_flags::kCustomWorkflow | document_flags::kModified;
    host.setMessageLine(kWorkflowOnText);
    host.appendLog(kWorkflowOnText);
}

void restoreWorkflow(ScriptHost& host) {
    SpectrumDocument* doc = frontDocument(host);
    if (!doc) return;
    if (auto text = readCustomScript(*doc)) host.setInputLine(std::move(*text));
}

}  // namespace zolt

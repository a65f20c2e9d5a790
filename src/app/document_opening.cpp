#include "app/document_opening.h"

#include <filesystem>
#include <vector>

#include "base/paths.h"
#include "display/default_display.h"
#include "document/document_file.h"
#include "document/processing_replay.h"
#include "io/companion_document.h"
#include "io/data_set_opening.h"
#include "io/data_set_walk.h"
#include "io/raw_loader.h"
#include "processing/ft_step.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// A saved document: its raw data read again and, unless the plan is only to be shown or a
// custom workflow takes its place, its processing replayed.
std::unique_ptr<SpectrumDocument> readSavedDocument(const std::string& documentPath,
                                                    const Preferences& prefs, Message& failure,
                                                    bool customWorkflows) {
    DocumentRead read = readDocumentFile(documentPath);
    if (!read.document) {
        failure = read.message;
        return nullptr;
    }
    std::unique_ptr<SpectrumDocument> doc = std::move(read.document);
    auto matrix = loadMatrix(doc->source);
    if (!matrix) {
        failure = {kReadErrorCaption, kReadErrorText};
        return nullptr;
    }
    doc->matrix = std::move(*matrix);
    doc->documentPath = documentPath;
    doc->windowName = windowNameFor(doc->source);
    // A document with a custom workflow runs its script instead of its saved processing.
    const bool replay = !prefs.has(pref_flags::kShowPlan) &&
                        !(customWorkflows && (doc->flags & document_flags::kCustomWorkflow));
    replayProcessing(*doc, replay);
    addDefaultFourierTransformSteps(*doc);
    completeDisplay(*doc);
    return doc;
}

}  // namespace

std::unique_ptr<SpectrumDocument> readDocument(const std::string& path, const Preferences& prefs,
                                               Message& failure, std::span<const ReaderRow> readers,
                                               bool customWorkflows) {
    if (!pathExists(path)) {
        failure = {kReadErrorCaption, kMissingPathText};
        return nullptr;
    }
    // A folder is recognised by what lies inside it.
    const std::string member = isDirectory(path) ? dataFileOf(path) : path;
    RecognitionOptions recognition;
    recognition.preferProcessedDocuments = prefs.has(pref_flags::kReadProcessedData);
    const FormatCode code = recognizeFormat(member, recognition);
    if (code == FormatCode::Zolt)
        return readSavedDocument(documentFileFor(member, recognition), prefs, failure,
                                 customWorkflows);
    ReadOptions options;
    options.processed = prefs.has(pref_flags::kReadProcessedData);
    auto read = readDataSet(path, code, options, failure, readers);
    if (!read) return nullptr;
    auto matrix = loadMatrix(read->source);
    if (!matrix) {
        failure = {kReadErrorCaption, kReadErrorText};
        return nullptr;
    }
    auto doc = std::make_unique<SpectrumDocument>();
    doc->source = std::move(read->source);
    doc->metadata = std::move(read->metadata);
    doc->vendorProcessing = read->vendorProcessing;
    doc->matrix = std::move(*matrix);
    doc->windowName = windowNameFor(doc->source);
    addDefaultFourierTransformSteps(*doc);
    completeDisplay(*doc);
    return doc;
}

std::string windowNameFor(const SpectrumSource& source) {
    fs::path p(source.rawPath);
    if (!(source.flags & source_flags::kLooseNativeFile)) p = p.parent_path();
    std::vector<std::string> parts;
    for (const auto& part : p)
        if (!part.empty() && part != "/") parts.push_back(part.string());
    std::string name;
    const size_t first = parts.size() > kWindowNameDepth ? parts.size() - kWindowNameDepth : 0;
    for (size_t i = first; i < parts.size(); ++i) {
        if (!name.empty()) name += '/';
        name += parts[i];
    }
    return withoutDataSetExtension(std::move(name));
}

}  // namespace zolt

#include "app/document_opening.h"

#include <filesystem>

#include "document/document_file.h"
#include "document/processing_replay.h"
#include "io/bruker_reader.h"
#include "io/format_recognition.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"
#include "processing/ft_step.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// Sub-folders deeper than this are not searched (a guard against link loops).
constexpr int kMaxFolderDepth = 8;

bool readable(FormatCode code) {
    return code == FormatCode::Bruker || code == FormatCode::ParaVision ||
           code == FormatCode::WinNmr || code == FormatCode::Zolt;
}

// A data file whose saved document lies beside it is opened through that document.
bool hasCompanionDocument(const fs::path& p) {
    std::error_code ec;
    return p.extension() != ".zolt" && fs::exists(companionDocumentPath(p.string()), ec);
}

std::optional<BrukerRead> readAs(FormatCode code, const std::string& path,
                                 const BrukerReadOptions& options) {
    switch (code) {
        case FormatCode::ParaVision:
            return readParaVision(path, options);
        case FormatCode::WinNmr:
            return readWinNmr(path);
        default:
            return readBrukerFolder(path, options);
    }
}

bool walk(const fs::path& folder, int depth, const std::function<bool(const std::string&)>& visit) {
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        const fs::path& p = it->path();
        if (it->is_directory(ec)) {
            if (isDataSetFolder(p.string())) {
                if (!visit(p.string())) return false;
            } else if (depth < kMaxFolderDepth && !walk(p, depth + 1, visit)) {
                return false;
            }
        } else if (!hasCompanionDocument(p) && readable(recognizeFormat(p.string()))) {
            // One data set per folder: its other files name the same data.
            if (!visit(p.string())) return false;
            if (isDataSetFolder(folder.string())) return true;
        }
    }
    return true;
}

// The file that stands for an experiment folder: its FID, or its ser file for 2-D and 3-D.
std::string dataFileOf(const std::string& folder) {
    std::error_code ec;
    const fs::path ser = fs::path(folder) / "ser";
    if (!fs::exists(fs::path(folder) / "fid", ec) && fs::exists(ser, ec)) return ser.string();
    return (fs::path(folder) / "fid").string();
}

// The document file a path recognised as a document leads to: the path itself, its companion
// document, the folder's plist.zolt, or the one kept with the processed data.
std::string documentFileFor(const fs::path& path, const RecognitionOptions& recognition) {
    std::error_code ec;
    if (path.extension() == ".zolt") return path.string();
    const std::string companion = companionDocumentPath(path.string());
    if (fs::exists(companion, ec)) return companion;
    const fs::path folderDocument = path.parent_path() / "plist.zolt";
    if (fs::exists(folderDocument, ec)) return folderDocument.string();
    const fs::path processed = path.parent_path() / "pdata" / "1" / "plist.zolt";
    if (recognition.preferProcessedDocuments && fs::exists(processed, ec))
        return processed.string();
    return path.string();
}

// A saved document: its raw data read again and, unless the plan is only to be shown, its
// processing replayed.
std::unique_ptr<SpectrumDocument> readSavedDocument(const std::string& path,
                                                    const RecognitionOptions& recognition,
                                                    const Preferences& prefs,
                                                    Message& failure) {
    const std::string documentPath = documentFileFor(fs::path(path), recognition);
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
    replayProcessing(*doc, !prefs.has(pref_flags::kShowPlan));
    addDefaultFourierTransformSteps(*doc);
    return doc;
}

}  // namespace

bool isDataSetFolder(const std::string& path) {
    std::error_code ec;
    for (const char* name : {"acqus", "acqp", "plist.zolt"})
        if (fs::exists(fs::path(path) / name, ec)) return true;
    return false;
}

std::unique_ptr<SpectrumDocument> readDocument(const std::string& path, const Preferences& prefs,
                                               Message& failure) {
    std::error_code ec;
    // A folder is recognised by what lies inside it.
    const std::string member = fs::is_directory(path, ec) ? dataFileOf(path) : path;
    RecognitionOptions recognition;
    recognition.preferProcessedDocuments = prefs.has(pref_flags::kReadProcessedData);
    FormatCode code = recognizeFormat(member, recognition);
    if (code == FormatCode::MoleculeFile) {
        failure = {kMoleculeFileCaption, kMoleculeFileText};
        return nullptr;
    }
    if (code == FormatCode::Zolt) return readSavedDocument(member, recognition, prefs, failure);
    if (!readable(code)) {
        failure = {kReadErrorCaption, kUnknownFormatText};
        return nullptr;
    }
    BrukerReadOptions options;
    options.processed = prefs.has(pref_flags::kReadProcessedData);
    auto read = readAs(code, path, options);
    if (!read && !options.processed) {
        // An experiment kept without its FID still shows its processed spectrum.
        options.processed = true;
        read = readAs(code, path, options);
    }
    if (!read) {
        failure = {kReadErrorCaption, incoherentFileText(code)};
        return nullptr;
    }
    SpectrumSource& s = read->source;
    completeSource(s);
    s.provenance = formatName(code);
    using namespace source_flags;
    const bool integers = s.numberType == NumberType::Long || s.numberType == NumberType::Short;
    if (integers && !(s.flags & (kLittleEndian | kVarianBinary))) probeByteOrder(s);
    auto matrix = loadMatrix(s);
    if (!matrix) {
        failure = {kReadErrorCaption, kReadErrorText};
        return nullptr;
    }
    auto doc = std::make_unique<SpectrumDocument>();
    doc->source = std::move(s);
    doc->metadata = std::move(read->metadata);
    doc->vendorProcessing = read->vendorProcessing;
    doc->matrix = std::move(*matrix);
    doc->windowName = windowNameFor(doc->source);
    addDefaultFourierTransformSteps(*doc);
    return doc;
}

void walkDataSets(const std::string& folder, const std::function<bool(const std::string&)>& visit) {
    walk(fs::path(folder), 0, visit);
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
    for (const char* suffix : {".spins", ".fid"})
        if (name.ends_with(suffix)) name.resize(name.size() - std::string_view(suffix).size());
    return name;
}

}  // namespace zolt

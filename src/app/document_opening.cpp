#include "app/document_opening.h"

#include <filesystem>

#include "io/bruker_reader.h"
#include "io/format_recognition.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"
#include "processing/ft_defaults.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// Sub-folders deeper than this are not searched (a guard against link loops).
constexpr int kMaxFolderDepth = 8;

bool readable(FormatCode code) {
    return code == FormatCode::Bruker || code == FormatCode::ParaVision ||
           code == FormatCode::WinNmr;
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
        } else if (readable(recognizeFormat(p.string()))) {
            // One data set per folder: its other files name the same data.
            if (!visit(p.string())) return false;
            if (isDataSetFolder(folder.string())) return true;
        }
    }
    return true;
}

}  // namespace

bool isDataSetFolder(const std::string& path) {
    std::error_code ec;
    for (const char* name : {"acqus", "acqp"})
        if (fs::exists(fs::path(path) / name, ec)) return true;
    return false;
}

std::unique_ptr<SpectrumDocument> readDocument(const std::string& path, const Preferences& prefs,
                                               OpenFailure& failure) {
    std::error_code ec;
    // A folder is recognised by what lies inside it.
    const std::string member =
        fs::is_directory(path, ec) ? (fs::path(path) / "fid").string() : path;
    RecognitionOptions recognition;
    recognition.preferProcessedDocuments = prefs.has(pref_flags::kReadProcessedData);
    FormatCode code = recognizeFormat(member, recognition);
    if (code == FormatCode::MoleculeFile) {
        failure = {kMoleculeFileCaption, kMoleculeFileText};
        return nullptr;
    }
    if (code == FormatCode::Zolt && isDataSetFolder(fs::path(member).parent_path().string()))
        code = FormatCode::Bruker;  // a document saved beside the data still leads to them
    if (!readable(code)) {
        failure = {kReadErrorCaption, kUnknownFormatText};
        return nullptr;
    }
    BrukerReadOptions options;
    options.processed = prefs.has(pref_flags::kReadProcessedData);
    auto read = readAs(code, path, options);
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

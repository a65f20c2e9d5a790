#include "document/document_file.h"

#include <cstdio>
#include <filesystem>
#include <optional>

#include "base/files.h"
#include "document/analysis_section.h"
#include "document/display_section.h"
#include "document/processing_section.h"
#include "document/source_section.h"
#include "document/tree_reading.h"
#include "io/format_recognition.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using plist::Value;

constexpr const char* kCreator = "Zolt for Linux";
constexpr size_t kMaxDocumentBytes = size_t{64} << 20;

// The saved raw file in the document's folder, or the document's own base name with the
// saved file's extension (the data were renamed together with their document).
std::optional<std::string> locateRawData(const fs::path& document, const std::string& saved) {
    std::error_code ec;
    const fs::path folder = document.parent_path();
    if (!saved.empty() && fs::is_regular_file(folder / saved, ec)) return (folder / saved).string();
    fs::path base = document.filename();
    base.replace_extension();
    const fs::path ext = fs::path(saved).extension();
    const fs::path moved = folder / (base.string() + ext.string());
    if (fs::is_regular_file(moved, ec)) return moved.string();
    return std::nullopt;
}

}  // namespace

plist::Value* buildDocumentTree(const SpectrumDocument& doc) {
    Value* root = plist::createDictionary();
    plist::addToDictionary(root, "window state", windowStateToTree(doc));
    const bool hasMatrix = !doc.matrix.re.empty();
    plist::addToDictionary(root, "spectroscopy",
                           sourceToTree(doc.source, hasMatrix ? &doc.matrix : nullptr));
    plist::addToDictionary(root, "pages", pagesToTree());
    plist::addToDictionary(root, "processing parameters", processingToTree(doc.processing));
    plist::addToDictionary(root, "multiplets", multipletsToTree());
    plist::addToDictionary(root, "peaks", peaksToTree());
    plist::addToDictionary(root, "xyz index", xyzIndexToTree(doc.source));
    if (doc.processing.doneMask)
        plist::addToDictionary(root, "performed processing", performedProcessingToTree(doc));
    plist::setInteger(root, "! read with version", doc.readWithVersion);
    plist::setInteger(root, "! write with version", kWriterVersion);
    plist::setString(root, "! creator", kCreator);
    plist::setString(root, "! content", "generic NMR spectrum");
    plist::setString(root, "! last use", kLastUseStamp);
    return root;
}

std::string documentPathFor(const SpectrumDocument& doc) {
    return companionDocumentPath(doc.source.rawPath);
}

SaveResult saveDocument(const SpectrumDocument& doc, const std::string& path, bool doBackUp) {
    const SaveResult failed{false, {kSystemErrorCaption, kSystemErrorText}};
    plist::Ref tree(buildDocumentTree(doc));
    const std::string text = plist::write(tree.get());
    const std::optional<std::string> written = writeTemporaryBeside(path, text);
    if (!written) return failed;
    const std::string& temporary = *written;
    std::error_code ec;
    if (doBackUp && fs::exists(path, ec)) {
        fs::path back = path;
        back.replace_extension("back");
        fs::remove(back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
        fs::rename(path, back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
    }
    // rename replaces an existing document in one step.
    fs::rename(temporary, path, ec);
    if (ec) return std::remove(temporary.c_str()), failed;
    return {true, {}};
}

DocumentRead readDocumentFile(const std::string& path) {
    DocumentRead r;
    const auto incoherent = [&r] {
        r.message.caption = "Failed to Read the file";
        r.message.text = "This Zolt file seems incoherent";
        r.document.reset();
        return std::move(r);
    };
    const std::optional<std::string> text = readWholeFile(path, kMaxDocumentBytes);
    if (!text) return incoherent();
    plist::Ref root(plist::read(*text));
    if (!root || root->kind != plist::Kind::Dictionary) return incoherent();
    const int64_t readVersion = tree::integerOr(root.get(), "! read with version", 0);
    if (readVersion > kWriterVersion) {
        r.message.caption = kNewerVersionCaption;
        r.message.text = kNewerVersionText;
        return r;
    }
    std::optional<SpectrumSource> source =
        sourceFromTree(tree::child(root.get(), "spectroscopy", plist::Kind::Dictionary));
    if (!source) return incoherent();
    const std::optional<std::string> raw = locateRawData(path, source->fileName);
    if (!raw) return incoherent();
    source->rawPath = *raw;
    source->fileName = fs::path(*raw).filename().string();

    r.document = std::make_unique<SpectrumDocument>();
    SpectrumDocument& doc = *r.document;
    doc.source = std::move(*source);
    doc.readWithVersion = static_cast<int>(readVersion);
    doc.writtenByNewerVersion =
        tree::integerOr(root.get(), "! write with version", 0) > kWriterVersion;
    windowStateFromTree(tree::child(root.get(), "window state", plist::Kind::Dictionary), doc);
    if (!processingFromTree(
            tree::child(root.get(), "processing parameters", plist::Kind::Dictionary),
            doc.processing))
        return incoherent();
    return r;
}

}  // namespace zolt

#include "document/document_file.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>

#include "base/files.h"
#include "document/analysis_section.h"
#include "document/display_section.h"
#include "document/integral_section.h"
#include "document/kept_keys.h"
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

// A document names its raw data by a bare name in its own folder; anything that could lead
// elsewhere (a separator, "." or "..") makes the document incoherent.
bool isBareName(const std::string& name) {
    return name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string::npos;
}

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

// The root keys filled from the document itself; every other key read is written back as read.
bool isRootKey(std::string_view key) {
    static constexpr std::string_view kKeys[] = {"window state",
                                                 "spectroscopy",
                                                 "processing parameters",
                                                 "xyz index",
                                                 "peaks",
                                                 "performed processing",
                                                 "! read with version",
                                                 "! write with version",
                                                 "! creator",
                                                 "! content",
                                                 "! last use",
                                                 "run internal script"};
    for (std::string_view k : kKeys)
        if (k == key) return true;
    return isIntegralSectionKey(key);
}

// A list unchanged since the file was read goes back as the file held it, to the digit.
Value* peaksEntry(const SpectrumDocument& doc) {
    const Value* kept = keptEntry(doc, "peaks");
    if (kept && sameLists(peaksFromTree(kept), doc.peaks))
        return plist::retain(const_cast<Value*>(kept));
    return peaksToTree(doc.peaks);
}

}  // namespace

plist::Value* buildDocumentTree(const SpectrumDocument& doc) {
    Value* root = plist::createDictionary();
    Value* window = windowStateToTree(doc);
    addKeptKeys(window, keptEntry(doc, "window state"), isWindowStateKey);
    plist::addToDictionary(root, "window state", window);
    const bool hasMatrix = !doc.matrix.re.empty();
    Value* source = sourceToTree(doc.source, hasMatrix ? &doc.matrix : nullptr);
    addKeptKeys(source, keptEntry(doc, "spectroscopy"), isSourceKey);
    plist::addToDictionary(root, "spectroscopy", source);
    // Lists not edited here yet: the file's own come back with the other kept keys.
    if (!keptEntry(doc, "pages")) plist::addToDictionary(root, "pages", pagesToTree());
    plist::addToDictionary(root, "processing parameters", processingToTree(doc.processing));
    if (!keptEntry(doc, "multiplets"))
        plist::addToDictionary(root, "multiplets", multipletsToTree());
    plist::addToDictionary(root, "peaks", peaksEntry(doc));
    addIntegralSection(root, doc);
    plist::addToDictionary(root, "xyz index", xyzIndexToTree(doc.source));
    if (doc.processing.doneMask)
        plist::addToDictionary(root, "performed processing", performedProcessingToTree(doc));
    plist::setInteger(root, "! read with version", doc.readWithVersion);
    plist::setInteger(root, "! write with version", kWriterVersion);
    plist::setString(root, "! creator", kCreator);
    plist::setString(root, "! content", "generic NMR spectrum");
    plist::setString(root, "! last use", kLastUseStamp);
    if (doc.flags & document_flags::kCustomWorkflow)
        plist::setBoolean(root, "run internal script", true);
    addKeptKeys(root, doc.keptKeys ? doc.keptKeys->root.get() : nullptr, isRootKey);
    return root;
}

std::string documentPathFor(const SpectrumDocument& doc) {
    return companionDocumentPath(doc.source.rawPath);
}

SaveResult saveDocument(const SpectrumDocument& doc, const std::string& path, bool doBackUp) {
    const SaveResult failed{false, {kSystemErrorCaption, kSystemErrorText}};
    std::error_code ec;
    // The rename below would replace a link under the document's name with a plain file, and
    // writing through it would reach whatever it points to: such a document is not saved.
    if (fs::is_symlink(fs::symlink_status(path, ec))) return failed;
    plist::Ref tree(buildDocumentTree(doc));
    const std::string text = plist::write(tree.get());
    const std::optional<std::string> written = writeTemporaryBeside(path, text);
    if (!written) return failed;
    const std::string& temporary = *written;
    fs::path back = path;
    back.replace_extension("back");
    bool backedUp = false;
    if (doBackUp && fs::exists(path, ec)) {
        fs::remove(back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
        fs::rename(path, back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
        backedUp = true;
    }
    // rename replaces an existing document in one step.
    fs::rename(temporary, path, ec);
    if (ec) {
        std::remove(temporary.c_str());
        if (backedUp) fs::rename(back, path, ec);  // the previous version under its own name
        return failed;
    }
    syncFolderOf(path);
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
    // Compared as read, so that a real version too large for any integer is still refused.
    const double readVersion = tree::number(root.get(), "! read with version").value_or(0.0);
    if (readVersion > kWriterVersion) {
        r.message.caption = kNewerVersionCaption;
        r.message.text = kNewerVersionText;
        return r;
    }
    std::optional<SpectrumSource> source =
        sourceFromTree(tree::child(root.get(), "spectroscopy", plist::Kind::Dictionary));
    if (!source || !isBareName(source->fileName)) return incoherent();
    const std::optional<std::string> raw = locateRawData(path, source->fileName);
    if (!raw) return incoherent();
    source->rawPath = *raw;
    source->fileName = fs::path(*raw).filename().string();

    r.document = std::make_unique<SpectrumDocument>();
    SpectrumDocument& doc = *r.document;
    doc.source = std::move(*source);
    doc.keptKeys = keepKeys(root.get());
    doc.readWithVersion = static_cast<int>(tree::integerOr(root.get(), "! read with version", 0));
    doc.writtenByNewerVersion =
        tree::number(root.get(), "! write with version").value_or(0.0) > kWriterVersion;
    if (plist::booleanOf(plist::lookUp(root.get(), "run internal script")).value_or(false))
        doc.flags |= document_flags::kCustomWorkflow;
    windowStateFromTree(tree::child(root.get(), "window state", plist::Kind::Dictionary), doc);
    doc.peaks = peaksFromTree(tree::child(root.get(), "peaks", plist::Kind::Array));
    if (!processingFromTree(
            tree::child(root.get(), "processing parameters", plist::Kind::Dictionary),
            doc.processing))
        return incoherent();
    integralSectionFromTree(root.get(), doc);
    return r;
}

}  // namespace zolt

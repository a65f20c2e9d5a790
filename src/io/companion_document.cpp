#include "io/companion_document.h"

#include "base/paths.h"

namespace zolt {

bool hasCompanionDocument(const std::string& path) {
    return toPath(path).extension() != ".zolt" && pathExists(companionDocumentPath(path));
}

std::string documentFileFor(const std::string& path, const RecognitionOptions& recognition) {
    const std::filesystem::path p = toPath(path);
    if (p.extension() == ".zolt") return path;
    const std::string companion = companionDocumentPath(path);
    if (pathExists(companion)) return companion;
    const std::string folderDocument = fromPath(p.parent_path() / "plist.zolt");
    if (pathExists(folderDocument)) return folderDocument;
    const std::string processed = fromPath(p.parent_path() / "pdata" / "1" / "plist.zolt");
    if (recognition.preferProcessedDocuments && pathExists(processed)) return processed;
    return path;
}

}  // namespace zolt

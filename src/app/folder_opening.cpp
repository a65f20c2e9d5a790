#include "app/folder_opening.h"

#include "app/document_opening.h"
#include "io/data_set_walk.h"

namespace zolt {

FolderOpening openDataSetsIn(const std::string& folder,
                             const std::function<size_t()>& documentCount,
                             const std::function<bool(const std::string&)>& openOne) {
    FolderOpening result;
    walkDataSets(folder, [&](const std::string& found) {
        if (documentCount() >= kMaxDocuments) {
            result.full = true;
            return false;
        }
        if (openOne(found)) ++result.opened;
        return true;
    });
    return result;
}

void reportFolderOpening(Platform& platform, const FolderOpening& result) {
    if (result.full) platform.messageBox(kTooManyCaption, kTooManyText);
    if (result.opened == 0 && !result.full)
        platform.messageBox(kNothingRecognisedCaption, kNothingRecognisedText);
}

}  // namespace zolt

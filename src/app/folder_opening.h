// Open Folder: every data set of a folder tree, up to the limit of open documents.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "app/platform.h"

namespace zolt {

struct FolderOpening {
    int opened = 0;
    bool full = false;  // stopped at the limit with data sets left
};

// Walks the folder in directory order and opens each data set found with openOne (true when
// it opened) while documentCount() is below the limit of open documents.
FolderOpening openDataSetsIn(const std::string& folder,
                             const std::function<size_t()>& documentCount,
                             const std::function<bool(const std::string&)>& openOne);

// The limit message when the walk stopped there; the hint when nothing at all was opened.
void reportFolderOpening(Platform& platform, const FolderOpening& result);

}  // namespace zolt

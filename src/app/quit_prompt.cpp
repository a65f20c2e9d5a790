#include "app/quit_prompt.h"

#include <algorithm>

namespace zolt {

int unsavedCount(const std::vector<SpectrumDocument*>& documents) {
    return static_cast<int>(std::count_if(documents.begin(), documents.end(), [](auto* d) {
        return (d->flags & document_flags::kModified) != 0;
    }));
}

std::string unsavedCaption(int count) {
    return count == 1 ? "there is an unsaved document"
                      : "there are " + std::to_string(count) + " unsaved documents";
}

bool confirmQuit(Platform& platform, const std::vector<SpectrumDocument*>& documents) {
    const int count = unsavedCount(documents);
    if (count == 0) return true;
    return platform.messageBox(unsavedCaption(count), kQuitAnywayText, MessageButtons::OkCancel) ==
           MessageAnswer::Ok;
}

}  // namespace zolt

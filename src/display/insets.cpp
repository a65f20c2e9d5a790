#include "display/insets.h"

#include <algorithm>

namespace zolt {

void removeInsets(PageRecord& page) {
    if (page.plots.size() <= 1) {
        page.insetMode = 0;
        return;
    }
    if (page.insetMode == 1) {
        page.plots.erase(page.plots.begin());
        if (page.plots.size() == 1) page.insetMode = 0;
    } else {
        page.plots.resize(1);
    }
}

void pressInsetKey(PageRecord& page, char key) {
    if (page.plots.size() <= 1) {
        page.insetMode = 0;
        return;
    }
    if (key == '7') {
        std::rotate(page.plots.begin(), page.plots.begin() + 1, page.plots.end());
        page.insetMode = 1;
    } else if (key == '9') {
        std::rotate(page.plots.begin(), page.plots.end() - 1, page.plots.end());
        page.insetMode = 1;
    } else {
        page.insetMode = page.insetMode ? 0 : 1;
    }
}

}  // namespace zolt

#include "app/window_arrangement.h"

#include <algorithm>

#include "operations/display_operations.h"

namespace zolt {

namespace {

bool isTrace(const SpectrumDocument& doc) {
    return !doc.page.plots.empty() && !doc.page.plots.front().hasVertical;
}

}  // namespace

std::vector<WindowRect> tileWindows(int count, int width, int height, Tiling tiling) {
    std::vector<WindowRect> rects;
    if (count <= 0 || width <= 0 || height <= 0) return rects;
    const bool sideBySide = tiling == Tiling::Vertical;
    const int length = sideBySide ? width : height;
    const int step = std::max(1, length / count);
    for (int i = 0; i < count; ++i) {
        const int start = std::min(i * step, length - 1);
        const int size = i + 1 == count ? length - start : std::min(step, length - start);
        rects.push_back(sideBySide ? WindowRect{start, 0, size, height}
                                   : WindowRect{0, start, width, size});
    }
    return rects;
}

std::vector<WindowRect> cascadeWindows(int count, int width, int height) {
    std::vector<WindowRect> rects;
    for (int i = 0; i < count; ++i) {
        // The front window steps furthest; the steps start again when they run out of room.
        const int steps = count - 1 - i;
        const int room = std::max(1, std::min(width, height) / (2 * kCascadeStep));
        const int offset = (steps % room) * kCascadeStep;
        rects.push_back({offset, offset, std::max(1, std::min(kUsualWindowWidth, width - offset)),
                         std::max(1, std::min(kUsualWindowHeight, height - offset))});
    }
    return rects;
}

std::vector<SpectrumDocument*> zoomTracesAlike(const std::vector<SpectrumDocument*>& documents,
                                               const SpectrumDocument& source, double fromPpm,
                                               double toPpm) {
    std::vector<SpectrumDocument*> changed;
    if (!isTrace(source)) return changed;
    RegionPairs pairs;
    pairs[0] = std::array<double, 2>{fromPpm, toPpm};
    for (SpectrumDocument* doc : documents)
        if (doc != &source && isTrace(*doc) && showRegion(*doc, pairs).applied)
            changed.push_back(doc);
    return changed;
}

}  // namespace zolt

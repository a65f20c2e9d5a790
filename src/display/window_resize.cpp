#include "display/window_resize.h"

#include <algorithm>

namespace zolt {

void followResize(PageRecord& page, int w0, int h0, int w1, int h1) {
    if ((w0 == w1 && h0 == h1) || w0 <= 0 || h0 <= 0 || w1 <= 0 || h1 <= 0) return;
    if (page.plots.empty()) return;
    const float rw = float(w1) / float(w0), rh = float(h1) / float(h0);

    DisplayParameters& main = page.plots.front();
    std::array<float, 4>& box = main.box;
    box[2] = std::max(box[2] + float(w1 - w0), kMinPlotPixels);
    box[3] = std::max(box[3] + float(h1 - h0), kMinPlotPixels);
    if (!main.hasVertical) {
        // The spectrum keeps its height relative to the box.
        box[1] *= rh;
        box[3] = std::max(float(h1) - box[1], kMinPlotPixels);
        main.threshold /= rh;
    }
    // The main plot's geometry is derived from its box wherever it is drawn: nothing is cached.

    for (size_t i = 1; i < page.plots.size(); ++i) {
        DisplayParameters& inset = page.plots[i];
        inset.box[0] *= rw;
        inset.box[2] *= rw;
        inset.box[1] *= rh;
        inset.box[3] *= rh;
        inset.mainScale *= rh;
        if (inset.hasVertical) {
            inset.auxiliaryScale *= rw;
        } else {
            inset.auxiliaryScale *= rh;
            inset.zeta *= rh;
            inset.threshold /= rh;
        }
    }
}

}  // namespace zolt

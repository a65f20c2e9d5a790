#include "display/frequency_shift.h"

namespace zolt {

namespace {

void moveAll(std::vector<float>& ppm, float delta) {
    for (float& v : ppm) v += delta;
}

// Limits at or beyond this mark an axis a region does not use; they stay.
void moveLimit(float& limit, float delta) {
    if (limit < kUnusedLimit && limit > -kUnusedLimit) limit += delta;
}

}  // namespace

void moveScaleInRecords(PageRecord& page, int f, float delta) {
    for (DisplayParameters& plot : page.plots) {
        bool shown = false;
        if (plot.horizontal.fIndex == f) {
            moveAll(plot.horizontal.ppm, delta);
            shown = true;
        }
        if (plot.hasVertical && plot.vertical.fIndex == f) {
            moveAll(plot.vertical.ppm, delta);
            shown = true;
        }
        if (!shown) plot.zeta += delta;
    }
}

void moveFrequencyScale(SpectrumDocument& doc, int f, float delta) {
    if (f < 1 || f > 3) return;
    doc.source.dims[f].lowestPpm += delta;
    doc.matrix.dims[f].lowestPpm += delta;
    moveScaleInRecords(doc.page, f, delta);

    // Peaks, regions and marks keep their coordinates in the order of the shown axes.
    const int shown[3] = {doc.matrix.xIndex, doc.matrix.yIndex, doc.matrix.zIndex};
    for (int axis = 0; axis < 3; ++axis) {
        if (shown[axis] != f) continue;
        if (axis == 0) moveAll(doc.peaks.oneD, delta);
        for (auto& p : doc.peaks.twoD)
            if (axis < 2) p[axis] += delta;
        for (auto& p : doc.peaks.threeD) p[axis] += delta;
        for (IntegralRegion& r : doc.integrals) {
            moveLimit(r.fields[2 * axis], delta);
            // The sixth field is a count in 1-D and 2-D regions.
            if (axis < 2 || r.dimensions() == 3) moveLimit(r.fields[2 * axis + 1], delta);
        }
        if (axis < 2) moveAll(doc.marks[axis], delta);
    }
}

}  // namespace zolt

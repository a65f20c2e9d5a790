#include "operations/peak_operations.h"

#include <algorithm>
#include <cmath>

#include "analysis/peak_picking_1d.h"
#include "display/default_display.h"
#include "operations/document_axes.h"

namespace zolt {

namespace {

bool transformed(const SpectrumDocument& doc) {
    return doc.source.highestTIndex == 0 && !doc.matrix.re.empty();
}

}  // namespace

PeakAxes peakAxes(const SpectrumDocument& doc) {
    const SpectrumMatrix& m = doc.matrix;
    PeakAxes axes{horizontalAxis(doc), 0, 0};
    const auto usable = [&](int f) {
        return f >= 1 && f <= 3 && f != axes.x && f != axes.y && countsAsDimension(m.dims[f]);
    };
    axes.y = usable(m.yIndex) ? m.yIndex : 0;
    for (int f = 3; f >= 1 && !axes.y; --f)
        if (usable(f)) axes.y = f;
    if (frequencyAxes(m) >= 3) {
        axes.z = usable(m.zIndex) ? m.zIndex : 0;
        for (int f = 3; f >= 1 && !axes.z; --f)
            if (usable(f)) axes.z = f;
    }
    return axes;
}

DisplayParameters mainPlotForPicking(const SpectrumDocument& doc) {
    if (doc.page.plots.empty())
        return defaultMainPlot(doc.matrix, kDefaultClientWidth, kDefaultClientHeight);
    DisplayParameters plot = doc.page.plots.front();
    // A plot that names no segment shows the whole axis.
    const int x = horizontalAxis(doc);
    if (plot.horizontal.ppm.size() < 2) {
        const std::array<float, 2> range = fullRange(doc.matrix.dims[x]);
        plot.horizontal = {static_cast<uint8_t>(x), {range[0], range[1]}};
    }
    return plot;
}

OperationResult pickPeaks1D(SpectrumDocument& doc, double threshold, bool highestOnly,
                            int pickingMinimum) {
    if (!transformed(doc)) return {};
    const int x = horizontalAxis(doc);
    const DimensionRecord& axis = doc.matrix.dims[x];
    if (doc.matrix.re.size() < axis.points) return {};
    const DisplayParameters plot = mainPlotForPicking(doc);
    const int minimum = std::max(pickingMinimum, kMinimumPickingPoints);
    pick1D(doc.matrix.re.data(), axis, plot, threshold, minimum, highestOnly, doc.peaks.oneD);
    return {true, std::nullopt};
}

OperationResult pickPeaksInRange(SpectrumDocument& doc, double ppmA, double ppmB,
                                 int pickingMinimum) {
    if (!transformed(doc) || frequencyAxes(doc.matrix) != 1) return {};
    if (!std::isfinite(ppmA) || !std::isfinite(ppmB)) return {};
    const DimensionRecord& axis = doc.matrix.dims[horizontalAxis(doc)];
    if (doc.matrix.re.size() < axis.points) return {};
    DisplayParameters plot = mainPlotForPicking(doc);
    const std::array<float, 2> whole = fullRange(axis);
    const auto clamp = [&whole](double v) {
        return static_cast<float>(std::clamp<double>(v, whole[0], whole[1]));
    };
    plot.horizontal.ppm = {clamp(std::min(ppmA, ppmB)), clamp(std::max(ppmA, ppmB))};
    const int minimum = std::max(pickingMinimum, kMinimumPickingPoints);
    pick1D(doc.matrix.re.data(), axis, plot, 0.0, minimum, false, doc.peaks.oneD);
    doc.flags |= document_flags::kModified;
    return {true, std::nullopt};
}

OperationResult runPeakPicker(SpectrumDocument& doc, const PeakPickingOptions& stored,
                              const std::optional<PpmBox>& selection) {
    if (!transformed(doc) || frequencyAxes(doc.matrix) < 2) return {};
    PeakPickingOptions options = withThreshold(stored, mainPlotForPicking(doc).threshold);
    options.dimensions = frequencyAxes(doc.matrix) >= 3 ? 3 : 2;
    const PeakActionResult r =
        runPeakAction(doc.peaks, doc.matrix, peakAxes(doc), selection, options);
    OperationResult result{r.changed, std::nullopt};
    if (r.tooMany) result.message = Message{kTooManyPeaksCaption, kTooManyPeaksText};
    return result;
}

OperationResult pickAllPeaks(SpectrumDocument& doc, const PeakPickingOptions& stored,
                             int pickingMinimum) {
    if (frequencyAxes(doc.matrix) < 2) return pickPeaks1D(doc, 0.0, false, pickingMinimum);
    PeakPickingOptions options = stored;
    options.action = static_cast<uint8_t>(PeakAction::ScanSpectrum);
    return runPeakPicker(doc, options, std::nullopt);
}

size_t peakCount(const SpectrumDocument& doc) {
    switch (frequencyAxes(doc.matrix)) {
        case 2:
            return doc.peaks.twoD.size();
        case 3:
            return doc.peaks.threeD.size();
        default:
            return doc.peaks.oneD.size();
    }
}

std::vector<double> peakColumns(const SpectrumDocument& doc, size_t index) {
    if (index >= peakCount(doc)) return {};
    switch (frequencyAxes(doc.matrix)) {
        case 2:
            return {doc.peaks.twoD[index][0], doc.peaks.twoD[index][1]};
        case 3: {
            const auto& p = doc.peaks.threeD[index];
            return {p[0], p[1], p[2]};
        }
        default:
            return {doc.peaks.oneD[index]};
    }
}

OperationResult removePeaks(SpectrumDocument& doc) {
    doc.peaks = {};
    doc.flags |= document_flags::kModified;
    return OperationResult{true, std::nullopt};
}

}  // namespace zolt

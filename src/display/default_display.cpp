#include "display/default_display.h"

#include <algorithm>

#include "display/vertical_scale.h"

namespace zolt {

namespace {

bool validIndex(int f) {
    return f >= 1 && f <= 3;
}

// A map needs a second axis with more than one point.
bool showsVerticalAxis(const SpectrumMatrix& m) {
    return validIndex(m.yIndex) && m.dims[m.yIndex].points > 1;
}

void setFullSegment(AxisSegments& axis, const SpectrumMatrix& m, int f) {
    axis.fIndex = static_cast<uint8_t>(validIndex(f) ? f : 1);
    const std::array<float, 2> range = fullRange(m.dims[axis.fIndex]);
    axis.ppm.assign(range.begin(), range.end());
}

}  // namespace

std::array<float, 2> fullRange(const DimensionRecord& d) {
    return {d.lowestPpm, d.lowestPpm + d.spectralWidth};
}

void showFullExtent(DisplayParameters& plot, const SpectrumMatrix& m) {
    setFullSegment(plot.horizontal, m, m.xIndex);
    plot.hasVertical = showsVerticalAxis(m);
    if (plot.hasVertical)
        setFullSegment(plot.vertical, m, m.yIndex);
    else
        plot.vertical = {};
    if (validIndex(m.zIndex) && m.dims[m.zIndex].points > 1)
        plot.zeta = static_cast<float>(ppmOfPoint(m.dims[m.zIndex], 0));
}

DisplayParameters defaultMainPlot(const SpectrumMatrix& m, int clientWidth, int clientHeight) {
    DisplayParameters plot;
    showFullExtent(plot, m);
    const float w = static_cast<float>(clientWidth), h = static_cast<float>(clientHeight);
    if (plot.hasVertical) {
        plot.flags = display_flags::kXAxis | display_flags::kYAxis |
                     static_cast<uint32_t>(PlotMode::Contours);
        plot.box = {kVerticalScaleMargin, kPlotMargin, w - kVerticalScaleMargin - kPlotMargin,
                    h - kPlotMargin - kHorizontalScaleMargin};
    } else {
        // The box reaches the bottom of the client area, as a resized window keeps it; the
        // horizontal scale is drawn inside it.
        // A new spectrum shows its peaks' positions and its integrals.
        plot.flags = display_flags::kXAxis | display_flags::kFrequencies | display_flags::kLabels |
                     display_flags::kIntegralsAsCurves | display_flags::kIntegralsAsValues |
                     static_cast<uint32_t>(PlotMode::Fast);
        plot.box = {kPlotMargin, kPlotMargin, w - 2 * kPlotMargin, h - kPlotMargin};
    }
    plot.box[2] = std::max(plot.box[2], 16.0f);
    plot.box[3] = std::max(plot.box[3], 16.0f);
    setAutomaticScale(plot, m);
    return plot;
}

PageRecord defaultPageRecord(const SpectrumMatrix& m) {
    PageRecord page;
    page.pageWidth = kDefaultClientWidth;
    page.pageHeight = kDefaultClientHeight;
    page.plots.push_back(defaultMainPlot(m, kDefaultClientWidth, kDefaultClientHeight));
    return page;
}

void completeDisplay(SpectrumDocument& doc) {
    PageRecord& page = doc.page;
    if (page.plots.empty()) {
        // The saved fonts, colours and normalisation stay; only the plots are new.
        if (!page.pageWidth || !page.pageHeight) {
            page.pageWidth = kDefaultClientWidth;
            page.pageHeight = kDefaultClientHeight;
        }
        page.plots.push_back(defaultMainPlot(doc.matrix, page.pageWidth, page.pageHeight));
        page.insetMode = 0;
        return;
    }
    for (DisplayParameters& plot : page.plots)
        if (plot.horizontal.ppm.empty()) showFullExtent(plot, doc.matrix);
}

}  // namespace zolt

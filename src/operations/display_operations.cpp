#include "operations/display_operations.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstring>

#include "display/default_display.h"
#include "display/frequency_shift.h"
#include "display/vertical_scale.h"
#include "display/window_resize.h"
#include "operations/document_axes.h"

namespace zolt {

namespace {

constexpr OperationResult kRedraw{true, {}};

bool validAxis(const SpectrumDocument& doc, int f) {
    return f >= 1 && f <= 3 && doc.matrix.dims[f].points >= 2;
}

void setSegment(AxisSegments& axis, const DimensionRecord& d, const std::array<double, 2>& pair) {
    const std::array<float, 2> full = fullRange(d);
    const auto clamp = [&full](double v) {
        return static_cast<float>(
            std::clamp<double>(std::isnan(v) ? full[0] : v, full[0], full[1]));
    };
    const float a = clamp(pair[0]), b = clamp(pair[1]);
    axis.ppm = {std::min(a, b), std::max(a, b)};
}

}  // namespace

DisplayParameters& mainPlot(SpectrumDocument& doc) {
    completeDisplay(doc);
    return doc.page.plots.front();
}

OperationResult adjustScale(SpectrumDocument& doc) {
    setAutomaticScale(mainPlot(doc), doc.matrix);
    return kRedraw;
}

void rescaleAfterDataChange(SpectrumDocument& doc) {
    DisplayParameters& plot = mainPlot(doc);
    if (!(plot.flags & display_flags::kScaleSetByHand)) setAutomaticScale(plot, doc.matrix);
}

float amplifyScale(SpectrumDocument& doc, double factor) {
    DisplayParameters& plot = mainPlot(doc);
    if (factor != 1.0 && !std::isnan(factor)) plot.flags |= display_flags::kScaleSetByHand;
    return amplify(plot, factor);
}

OperationResult showRegion(SpectrumDocument& doc, const RegionPairs& pairs) {
    DisplayParameters& plot = mainPlot(doc);
    const SpectrumMatrix& m = doc.matrix;
    if (pairs[0] && validAxis(doc, plot.horizontal.fIndex))
        setSegment(plot.horizontal, m.dims[plot.horizontal.fIndex], *pairs[0]);
    if (pairs[1] && plot.hasVertical && validAxis(doc, plot.vertical.fIndex))
        setSegment(plot.vertical, m.dims[plot.vertical.fIndex], *pairs[1]);
    if (pairs[2] && validAxis(doc, m.zIndex)) {
        AxisSegments z;
        setSegment(z, m.dims[m.zIndex], *pairs[2]);
        plot.zeta = (z.ppm[0] + z.ppm[1]) / 2;
    }
    return kRedraw;
}

OperationResult showWholeSpectrum(SpectrumDocument& doc) {
    showFullExtent(mainPlot(doc), doc.matrix);
    doc.page.plots.resize(1);
    doc.page.insetMode = 0;
    return kRedraw;
}

ClientSize clientSize(SpectrumDocument& doc) {
    mainPlot(doc);
    return {doc.page.pageWidth, doc.page.pageHeight};
}

OperationResult setClientSize(SpectrumDocument& doc, ClientSize size) {
    const ClientSize before = clientSize(doc);
    size.width = std::clamp(size.width, 1, 65535);
    size.height = std::clamp(size.height, 1, 65535);
    followResize(doc.page, before.width, before.height, size.width, size.height);
    doc.page.pageWidth = static_cast<uint16_t>(size.width);
    doc.page.pageHeight = static_cast<uint16_t>(size.height);
    return kRedraw;
}

OperationResult referenceToPeak(SpectrumDocument& doc, double ppm, double width) {
    const SpectrumMatrix& m = doc.matrix;
    if (frequencyAxes(m) != 1 || !std::isfinite(ppm) || !std::isfinite(width)) return {};
    const int f = horizontalAxis(doc);
    const DimensionRecord& d = m.dims[f];
    const size_t begin = std::min(m.planeOffset, m.re.size());
    const size_t n = std::min<size_t>(d.points, m.re.size() - begin);
    if (n == 0) return {};
    const double lo = ppm - std::fabs(width), hi = ppm + std::fabs(width);
    const int64_t first = pointOfPpm(d, hi), last = std::min<int64_t>(pointOfPpm(d, lo), n - 1);
    int64_t tallest = -1;
    float height = FLT_MIN;
    for (int64_t i = first; i <= last; ++i) {
        const double at = ppmOfPoint(d, double(i));
        const float v = m.re[begin + size_t(i)];
        if (at >= lo && at <= hi && v > height) {
            height = v;
            tallest = i;
        }
    }
    if (tallest < 0) return {};
    moveFrequencyScale(doc, f, static_cast<float>(ppm - ppmOfPoint(d, double(tallest))));
    return kRedraw;
}

OperationResult shiftScale(SpectrumDocument& doc, double delta, int f) {
    if (!std::isfinite(delta)) return {};
    if (!validAxis(doc, f)) f = horizontalAxis(doc);
    moveFrequencyScale(doc, f, static_cast<float>(delta));
    return kRedraw;
}

OperationResult setMarks(SpectrumDocument& doc, int axis, std::vector<float> ppm) {
    doc.marks[axis == 1 ? 1 : 0] = std::move(ppm);
    return kRedraw;
}

void setCustomWorkflow(SpectrumDocument& doc, bool on) {
    doc.flags = on ? (doc.flags | document_flags::kCustomWorkflow)
                   : (doc.flags & ~document_flags::kCustomWorkflow);
    doc.flags |= document_flags::kModified;
}

OperationResult setPlotModeFromLetter(SpectrumDocument& doc, char letter) {
    if (countDimensions(doc.source) != 2 || doc.source.highestTIndex != 0) return {};
    static constexpr char kLetters[] = "CWSZAB";
    const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    const char* found = upper ? std::strchr(kLetters, upper) : nullptr;
    const uint32_t mode = found ? static_cast<uint32_t>(found - kLetters) + 1 : 0;
    DisplayParameters& plot = mainPlot(doc);
    plot.flags = (plot.flags & ~display_flags::kPlotModeMask) | mode;
    return kRedraw;
}

OperationResult toggleDisplayFlag(SpectrumDocument& doc, uint32_t flag) {
    mainPlot(doc).flags ^= flag;
    doc.flags |= document_flags::kModified;
    return kRedraw;
}

}  // namespace zolt

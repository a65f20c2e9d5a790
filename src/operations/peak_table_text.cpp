// The peak list as the clipboard receives it.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "analysis/peak_top.h"
#include "operations/analysis_tables.h"
#include "operations/document_axes.h"
#include "operations/peak_operations.h"
#include "processing/phase.h"

namespace zolt {

namespace {

constexpr const char* kHeader1D = "line \t        ppm \t         Hz \t  intensity\r\n\r\n";

template <typename... Args>
void appendf(std::string& out, const char* format, Args... args) {
    char line[256];
    const int n = std::snprintf(line, sizeof line, format, args...);
    if (n > 0) out.append(line, std::min<size_t>(size_t(n), sizeof line - 1));
}

void commaSeparate(std::string& text, bool on) {
    if (on) std::replace(text.begin(), text.end(), '\t', ',');
}

// Each stored position is refined again from its nearest point, and kept as refined.
std::string table1D(SpectrumDocument& doc, bool withWidths) {
    std::string out = kHeader1D;
    if (withWidths) out = out.substr(0, out.size() - 4) + kHeader1D;
    const DimensionRecord& axis = doc.matrix.dims[horizontalAxis(doc)];
    const size_t n = axis.points;
    if (n == 0 || doc.matrix.re.size() < n) return out;
    std::vector<float>& list = doc.peaks.oneD;
    int line = 0;
    for (auto it = list.rbegin(); it != list.rend(); ++it) {
        const double x = (1.0 - (*it - axis.lowestPpm) / axis.spectralWidth) * n;
        const size_t nearest =
            static_cast<size_t>(std::isfinite(x) ? std::clamp(std::round(x), 0.0, n - 1.0) : 0.0);
        const PeakTop top = refineTop(doc.matrix.re.data(), n, nearest, withWidths);
        const double ppm = (1.0 - top.position / n) * axis.spectralWidth + axis.lowestPpm;
        *it = static_cast<float>(ppm);
        const double hz = ppm * axis.carrier;
        if (withWidths)
            appendf(out, "%4.3d\t%12.4f\t%12.2f\t%12.0f%12.1f\r\n", ++line, ppm, hz, top.height,
                    top.width * spectralWidthHz(axis) / n);
        else
            appendf(out, "%4.3d\t%12.4f\t%12.2f\t%12.0f\r\n", ++line, ppm, hz, top.height);
    }
    std::sort(list.begin(), list.end());
    return out;
}

// The value of the matrix point nearest to a peak.
template <size_t N>
float valueAt(const SpectrumMatrix& m, const PeakAxes& axes, const std::array<float, N>& p) {
    size_t total = 1;
    for (int f = 1; f <= 3; ++f) total *= std::max<size_t>(m.dims[f].points, 1);
    if (m.re.size() < total) return 0.0f;
    const int fs[3] = {axes.x, axes.y, axes.z};
    size_t at = 0;
    for (size_t a = 0; a < N; ++a)
        at +=
            static_cast<size_t>(pointOfPpm(m.dims[fs[a]], p[a])) * axisWalk(m, fs[a], total).inner;
    return at < m.re.size() ? m.re[at] : 0.0f;
}

std::string table2D(SpectrumDocument& doc) {
    const PeakAxes axes = peakAxes(doc);
    auto& list = doc.peaks.twoD;
    std::sort(list.begin(), list.end());
    std::string out;
    appendf(out, "line \t   ppm (f-%d) \t   ppm (f-%d) \t   intensity\r\n\r\n", axes.x, axes.y);
    int line = 0;
    for (const auto& p : list)
        appendf(out, "%4.3d\t%12.4f\t%12.4f\t%12.0f\r\n", ++line, p[0], p[1],
                valueAt(doc.matrix, axes, p));
    return out;
}

std::string table3D(SpectrumDocument& doc) {
    const PeakAxes axes = peakAxes(doc);
    std::string out;
    appendf(out, "line \t   ppm (f-%d) \t   ppm (f-%d) \t   ppm (f-%d) \t   intensity\r\n\r\n",
            axes.x, axes.y, axes.z);
    int line = 0;
    for (const auto& p : doc.peaks.threeD)
        appendf(out, "%4.3d\t%12.4f\t%12.4f\t%12.4f\t%12.0f\r\n", ++line, p[0], p[1], p[2],
                valueAt(doc.matrix, axes, p));
    return out;
}

}  // namespace

std::string peakTableText(SpectrumDocument& doc, bool commaSeparated) {
    std::string text;
    switch (frequencyAxes(doc.matrix)) {
        case 2:
            text = table2D(doc);
            break;
        case 3:
            text = table3D(doc);
            break;
        default:
            text = table1D(doc, false);
    }
    commaSeparate(text, commaSeparated);
    return text;
}

std::string peakTableTextWithWidths(SpectrumDocument& doc, bool commaSeparated) {
    if (frequencyAxes(doc.matrix) >= 2) return peakTableText(doc, commaSeparated);
    std::string text = table1D(doc, true);
    commaSeparate(text, commaSeparated);
    return text;
}

}  // namespace zolt

#include "analysis/integral_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zolt {
namespace {

// One line of the table before formatting.
struct ReportRow {
    int number = 0;
    std::vector<double> positions;  // midpoint or B, A; then the vertical and third midpoints
    std::vector<double> integrals;  // one per document
};

std::vector<ReportRow> reportRows(const std::vector<const SpectrumDocument*>& docs, bool midpoints,
                                  double scale) {
    std::vector<ReportRow> rows;
    if (docs.empty() || !docs.front()) return rows;
    const SpectrumDocument& first = *docs.front();
    const int kind = integralKind(first);
    int number = 0;
    for (const IntegralRegion& r : first.integrals) {
        if (r.dimensions() != kind) continue;
        ReportRow row;
        row.number = ++number;
        const auto& f = r.fields;
        if (midpoints)
            row.positions.push_back(0.5 * (double(f[0]) + f[1]));
        else
            row.positions.insert(row.positions.end(), {double(f[1]), double(f[0])});
        if (kind >= 2) row.positions.push_back(0.5 * (double(f[2]) + f[3]));
        if (kind == 3) row.positions.push_back(0.5 * (double(f[4]) + f[5]));
        for (const SpectrumDocument* d : docs)
            row.integrals.push_back(integrateRegion(d->matrix, integralAxes(*d), r) * scale *
                                    integralFactor(*d));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string axisLabel(const SpectrumDocument& doc, int f) {
    if (f < 1 || f > 3) return "0-";
    char atom[3];
    return std::to_string(doc.matrix.dims[f].isotope) + "-" + atomText(doc.matrix.dims[f], atom);
}

std::string header(const std::vector<const SpectrumDocument*>& docs) {
    const SpectrumDocument& first = *docs.front();
    const IntegralAxes axes = integralAxes(first);
    std::string h = " #";
    switch (integralKind(first)) {
        case 1:
            h += "\tppm";
            break;
        case 2:
            h += "\t" + axisLabel(first, axes.x) + "\t" + axisLabel(first, axes.y);
            break;
        default:
            h += "\t" + axisLabel(first, axes.x) + "\t" + axisLabel(first, axes.y) + "\t " +
                 axisLabel(first, axes.z);
    }
    if (docs.size() == 1) return h + "\tintegral\r\n";
    for (const SpectrumDocument* d : docs) h += "\t" + d->windowName;
    return h + "\r\n";
}

std::string format(const char* pattern, double value) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

}  // namespace

IntegralAxes integralAxes(const SpectrumDocument& doc) {
    const SpectrumMatrix& m = doc.matrix;
    IntegralAxes axes;
    axes.x = m.xIndex >= 1 && m.xIndex <= 3 ? m.xIndex : 1;
    axes.y = m.yIndex <= 3 ? m.yIndex : 0;
    axes.z = m.zIndex <= 3 ? m.zIndex : 0;
    return axes;
}

int integralKind(const SpectrumDocument& doc) {
    int n = 0;
    for (int f = 1; f <= 3; ++f) n += countsAsDimension(doc.matrix.dims[f]);
    return std::clamp(n, 1, 3);
}

double integralFactor(const SpectrumDocument& doc) {
    const double divisor = doc.page.integralNormalization;
    return divisor != 0.0 && std::isfinite(divisor) ? 1.0 / divisor : 1.0;
}

std::string integralReportText(const std::vector<const SpectrumDocument*>& docs, bool midpoints,
                               double scale, bool commaSeparated) {
    if (docs.empty() || !docs.front()) return {};
    std::string text = header(docs);
    for (const ReportRow& row : reportRows(docs, midpoints, scale)) {
        char number[16];
        std::snprintf(number, sizeof number, "%03d", row.number);
        text += number;
        size_t p = 0;
        if (midpoints) {
            text += format("\t%0.3f", row.positions[p++]);
        } else {
            text += format("\t%0.3f", row.positions[p]) + format("..%0.3f", row.positions[p + 1]);
            p += 2;
        }
        for (; p < row.positions.size(); ++p) text += format("\t%0.3f", row.positions[p]);
        for (const double v : row.integrals) text += format("\t%0.5f", v);
        text += "\r\n";
    }
    if (commaSeparated) std::replace(text.begin(), text.end(), '\t', ',');
    return text;
}

plist::Value* integralReportList(const std::vector<const SpectrumDocument*>& docs, bool midpoints,
                                 double scale) {
    plist::Value* list = plist::createArray();
    for (const ReportRow& row : reportRows(docs, midpoints, scale)) {
        plist::Value* entry = plist::createArray();
        plist::appendInteger(entry, row.number);
        for (const double v : row.positions) plist::appendReal(entry, v);
        for (const double v : row.integrals) plist::appendReal(entry, v);
        plist::appendToArray(list, entry);
    }
    return list;
}

}  // namespace zolt

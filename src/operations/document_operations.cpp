#include "operations/document_operations.h"

#include <algorithm>

namespace zolt {

namespace {

// Cuts or zero-pads the single row of a 1-D matrix.
void resizeRow(SpectrumMatrix& m, int fIndex, uint32_t points) {
    m.re.resize(points, 0.0f);
    if (!m.im.empty() || !m.realOnly()) m.im.resize(points, 0.0f);
    m.dims[fIndex].points = points;
}

}  // namespace

void applyAxisChanges(DimensionRecord& axis, const AxisChanges& changes) {
    if (changes.atom) setAtom(axis, changes.atom->c_str());
    if (changes.mass) axis.isotope = *changes.mass;
    if (changes.lowestPpm) axis.lowestPpm = *changes.lowestPpm;
    if (changes.spectralWidth) axis.spectralWidth = *changes.spectralWidth;
    if (changes.carrier) axis.carrier = *changes.carrier;
    if (changes.timeShift) axis.timeShift = *changes.timeShift;
}

OperationResult changeAxis(SpectrumDocument& doc, int fIndex, const AxisChanges& changes,
                           std::optional<uint32_t> points) {
    if (fIndex < 1 || fIndex > 3) return {};
    applyAxisChanges(doc.matrix.dims[fIndex], changes);
    if (points && countDimensions(doc.source) <= 1 && fIndex == doc.matrix.xIndex)
        resizeRow(doc.matrix, fIndex, std::clamp<uint32_t>(*points, 1, kMaxFidPoints));
    return OperationResult{true, std::nullopt};
}

void makeEmptyFid(SpectrumDocument& fresh, uint32_t points, const AxisChanges& changes) {
    points = std::clamp<uint32_t>(points, 1, kMaxFidPoints);
    DimensionRecord r;
    r.points = points;
    r.spectralWidth = 10.0f;
    r.carrier = 400.0f;
    r.isotope = 1;
    setAtom(r, "H");
    applyAxisChanges(r, changes);
    fresh.source.numberType = NumberType::InMemory;
    fresh.source.dims[0].points = 1;
    fresh.source.dims[1] = r;
    fresh.source.xIndex = 1;
    fresh.source.highestTIndex = 1;
    fresh.source.phaseable[1] = 1;
    SpectrumMatrix& m = fresh.matrix;
    m = SpectrumMatrix{};
    m.dims = fresh.source.dims;
    m.phaseable = fresh.source.phaseable;
    m.xIndex = 1;
    m.dimensions = 1;
    m.contiguous = 1;
    m.re.assign(points, 0.0f);
    m.im.assign(points, 0.0f);
}

void setRanceKay(SpectrumDocument& doc, bool on) {
    if (on)
        doc.source.flags |= source_flags::kRanceKay;
    else
        doc.source.flags &= ~source_flags::kRanceKay;
}

void setTitle(SpectrumDocument& doc, const std::string& title) {
    doc.metadata.title = title;
}

void setTimeDomainDimensions(SpectrumDocument& doc, int count) {
    doc.source.highestTIndex = static_cast<int8_t>(std::clamp(count, 0, 3));
}

}  // namespace zolt

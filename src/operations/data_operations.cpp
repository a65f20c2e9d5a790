#include "operations/data_operations.h"

#include <algorithm>
#include <utility>

#include "processing/fft.h"
#include "processing/polar.h"

namespace zolt {

namespace {

uint32_t axisPoints(const SpectrumMatrix& m, int fIndex) {
    return fIndex > 0 && fIndex < 4 ? std::max<uint32_t>(m.dims[fIndex].points, 1) : 1;
}

// Points per row: the axis stored contiguously.
size_t rowLength(const SpectrumMatrix& m) {
    return axisPoints(m, m.contiguous ? m.contiguous : m.xIndex);
}

}  // namespace

PlaneValues currentPlane(const SpectrumDocument& doc) {
    const SpectrumMatrix& m = doc.matrix;
    PlaneValues plane;
    plane.x = axisPoints(m, m.xIndex);
    plane.y = axisPoints(m, m.yIndex);
    plane.z = axisPoints(m, m.zIndex);
    const size_t offset = std::min(m.planeOffset, m.re.size());
    const size_t n = std::min(plane.x * plane.y, m.re.size() - offset);
    plane.values.assign(m.re.begin() + offset, m.re.begin() + offset + n);
    return plane;
}

OperationResult rebuildImaginaryParts(SpectrumDocument& doc) {
    SpectrumMatrix& m = doc.matrix;
    const size_t n = rowLength(m);
    if (m.re.empty() || n < 2) return {};
    std::vector<float> scratch(n);
    m.im.resize(m.re.size(), 0.0f);
    m.state &= static_cast<uint16_t>(~(matrix_state::kRealOnly | matrix_state::kMagnitude));
    for (size_t row = 0; row + n <= m.re.size(); row += n)
        hilbertRow(m.re.data() + row, m.im.data() + row, n, scratch.data());
    return OperationResult{true, std::nullopt};
}

OperationResult setMagnitude(SpectrumDocument& doc, bool on) {
    SpectrumMatrix& m = doc.matrix;
    const bool isMagnitude = (m.state & matrix_state::kMagnitude) != 0;
    if (m.re.empty() || m.im.size() != m.re.size() || on == isMagnitude) return {};
    togglePolar(m.re.data(), m.im.data(), m.re.size(), on);
    m.state ^= matrix_state::kMagnitude;
    return OperationResult{true, std::nullopt};
}

OperationResult clearNegatives(SpectrumDocument& doc) {
    for (float& v : doc.matrix.re) v = std::max(v, 0.0f);
    return OperationResult{true, std::nullopt};
}

bool replaceRealParts(SpectrumDocument& doc, std::vector<float>& values) {
    SpectrumMatrix& m = doc.matrix;
    if (m.re.size() != values.size()) return false;
    m.re = std::move(values);
    m.im.clear();
    m.state |= matrix_state::kRealOnly;
    m.state &= static_cast<uint16_t>(~matrix_state::kMagnitude);
    return true;
}

void fillFromValues(SpectrumDocument& fresh, std::vector<float> values, size_t nx, size_t ny,
                    const std::array<DimensionRecord, 4>& axes) {
    const size_t n = values.size();
    if (nx * ny != n) nx = n, ny = 1;
    SpectrumMatrix& m = fresh.matrix;
    m = SpectrumMatrix{};
    m.dims = axes;
    m.dims[0].points = 1;
    const int xf = ny > 1 ? 2 : 1;
    m.dims[xf].points = static_cast<uint32_t>(nx);
    if (ny > 1) m.dims[1].points = static_cast<uint32_t>(ny);
    for (int f = xf + 1; f < 4; ++f) m.dims[f] = DimensionRecord{};
    // Axes a table brings without a width or carrier still get a usable scale.
    for (int f = 1; f <= xf; ++f) {
        if (m.dims[f].spectralWidth < 0.01f) m.dims[f].spectralWidth = 10.0f;
        if (m.dims[f].carrier < 1.0f) m.dims[f].carrier = 1.0f;
    }
    m.xIndex = static_cast<uint8_t>(xf);
    m.yIndex = static_cast<uint8_t>(ny > 1 ? 1 : 0);
    m.dimensions = static_cast<uint8_t>(xf);
    m.contiguous = static_cast<uint8_t>(xf);
    m.state = matrix_state::kRealOnly;
    m.re = std::move(values);
    fresh.source.numberType = NumberType::InMemory;
    fresh.source.dims = m.dims;
    fresh.source.xIndex = static_cast<int8_t>(m.xIndex);
    fresh.source.yIndex = static_cast<int8_t>(m.yIndex);
    fresh.source.flags = source_flags::kRealOnly;
    fresh.source.highestTIndex = 0;
}

}  // namespace zolt

// The working intensities of a spectrum: real and imaginary parts in separate arrays.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/dimension_record.h"

namespace zolt {

namespace matrix_state {
inline constexpr uint16_t kRealOnly = 0x1;
inline constexpr uint16_t kMagnitude = 0x2;
inline constexpr uint16_t kF2Phaseable = 0x4;
inline constexpr uint16_t kWorkRow = 0x8;
inline constexpr uint16_t kComplexConjugate = 0x10;
inline constexpr uint16_t kSpinSimulation = 0x40;
inline constexpr uint16_t kDosy = 0x80;
}  // namespace matrix_state

struct SpectrumMatrix {
    std::array<uint8_t, 4> phaseable{};
    uint8_t xIndex = 0, yIndex = 0, zIndex = 0;
    uint8_t dimensions = 0;
    uint16_t state = 0;
    uint8_t contiguous = 0;
    // The f-index whose points are stored contiguously (rows along it follow each other);
    // the direct axis as loaded. The other axes follow in decreasing f-index, slowest last.
    // re and im have equal length; im is empty when real only.
    std::vector<float> re;
    std::vector<float> im;
    std::vector<float> workRow;
    std::array<DimensionRecord, 4> dims{};
    size_t planeOffset = 0;

    bool realOnly() const { return state & matrix_state::kRealOnly; }
    // Product of the points of every axis (a 0-point axis counts as 1).
    size_t pointCount() const;
};

size_t pointProduct(const std::array<DimensionRecord, 4>& dims);
// The highest f-index whose axis has more than one point (the direct axis), or 0.
int directFIndex(const std::array<DimensionRecord, 4>& dims);

}  // namespace zolt

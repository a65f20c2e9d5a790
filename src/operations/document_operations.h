// Settings of a document's axes, time-domain state and description, and making new data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// Largest FID a new or resized spectrum gets, in complex points.
inline constexpr uint32_t kMaxFidPoints = 1u << 20;

// What may change in an axis description; absent fields stay as they are.
struct AxisChanges {
    std::optional<std::string> atom;
    std::optional<uint8_t> mass;
    std::optional<float> lowestPpm, spectralWidth, carrier, timeShift;
};
void applyAxisChanges(DimensionRecord& axis, const AxisChanges& changes);

// The axis fIndex (1 ... 3) takes the changes; `points` (1 ... kMaxFidPoints) cuts or
// zero-pads the row of 1-D data along their horizontal axis.
OperationResult changeAxis(SpectrumDocument& doc, int fIndex, const AxisChanges& changes,
                           std::optional<uint32_t> points);

// Makes a fresh document a 1-D FID of zeros: 1H at 400 MHz over 10 ppm unless changed.
void makeEmptyFid(SpectrumDocument& fresh, uint32_t points, const AxisChanges& changes);

// The "Rance-Kay pre-processing" flag of the source.
void setRanceKay(SpectrumDocument& doc, bool on);
void setTitle(SpectrumDocument& doc, const std::string& title);
// The number of dimensions still in the time domain (0 ... 3).
void setTimeDomainDimensions(SpectrumDocument& doc, int count);

}  // namespace zolt

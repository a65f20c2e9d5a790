// The look of a document's page: the colours of its pens and the font of its labels.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

using Rgb16 = std::array<uint16_t, 3>;  // red, green, blue, 0 ... 65535 each

// An absent colour stays as it is.
OperationResult setPlotColours(SpectrumDocument& doc, const std::optional<Rgb16>& first,
                               const std::optional<Rgb16>& second);

inline constexpr int kLargestFontSize = 255;
// An empty name keeps the face and a size of 0 the size; other sizes are kept within
// 1 ... kLargestFontSize.
OperationResult setPlotFont(SpectrumDocument& doc, const std::string& name, int size);

}  // namespace zolt

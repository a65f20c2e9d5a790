#include "operations/page_style_operations.h"

#include <algorithm>

namespace zolt {

OperationResult setPlotColours(SpectrumDocument& doc, const std::optional<Rgb16>& first,
                               const std::optional<Rgb16>& second) {
    if (!first && !second) return {};
    if (first) doc.page.color1 = *first;
    if (second) doc.page.color2 = *second;
    doc.flags |= document_flags::kModified;
    return {true, {}};
}

OperationResult setPlotFont(SpectrumDocument& doc, const std::string& name, int size) {
    if (name.empty() && size == 0) return {};
    if (!name.empty()) doc.page.fontName = name;
    if (size != 0) doc.page.fontSize = static_cast<uint8_t>(std::clamp(size, 1, kLargestFontSize));
    doc.flags |= document_flags::kModified;
    return {true, {}};
}

}  // namespace zolt

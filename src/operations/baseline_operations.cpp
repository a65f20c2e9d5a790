#include "operations/baseline_operations.h"

#include "operations/document_axes.h"
#include "processing/baseline.h"

namespace zolt {

namespace {

// The polynomial of order 3 over a narrow filter suits the short rows of 2-D spectra as well
// as 1-D ones.
BaseplaneStep automaticSettings(const SpectrumDocument& d) {
    for (auto it = d.processing.steps.rbegin(); it != d.processing.steps.rend(); ++it)
        if (const auto* step = std::get_if<BaseplaneStep>(&it->data)) return *step;
    BaseplaneStep settings;
    settings.function = 1;
    settings.order = 3;
    settings.movingAverage = 8;
    return settings;
}

}  // namespace

OperationResult automaticBaseline(SpectrumDocument& doc) {
    if (doc.source.highestTIndex != 0) return {};
    const BaseplaneStep settings = automaticSettings(doc);
    if (frequencyAxes(doc.matrix) >= 2)
        return OperationResult{true, correctBaseplane(doc, settings)};
    return OperationResult{true, correctBaseline(doc, horizontalAxis(doc), settings)};
}

OperationResult polynomialBaseline(SpectrumDocument& doc, int order, int filter) {
    const int x = horizontalAxis(doc);
    if (x <= doc.source.highestTIndex) return {};
    BaseplaneStep settings;
    settings.function = 1;
    settings.order = static_cast<uint8_t>(order);
    settings.movingAverage = static_cast<int16_t>(filter);
    return OperationResult{true, correctBaseline(doc, x, settings)};
}

OperationResult straightBaseline(SpectrumDocument& doc) {
    if (doc.source.highestTIndex != 0 || frequencyAxes(doc.matrix) != 1) return {};
    correctStraight(doc.matrix, horizontalAxis(doc));
    return OperationResult{true, std::nullopt};
}

}  // namespace zolt

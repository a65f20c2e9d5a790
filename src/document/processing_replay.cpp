#include "document/processing_replay.h"

#include <algorithm>
#include <utility>

#include "processing/baseline.h"
#include "processing/ft_pipeline.h"
#include "processing/ft_step.h"

namespace zolt {

int rawHighestTIndex(int savedTIndex, uint32_t doneMask) {
    int t = savedTIndex;
    for (int d = 1; d <= 3; ++d)
        if (doneMask & done_mask::transformed(d)) t = std::max(t, d);
    return t;
}

std::optional<Message> replayProcessing(SpectrumDocument& doc, bool run) {
    ProcessingRecord saved = std::move(doc.processing);
    doc.processing = {};
    for (ProcessingStep& step : saved.steps) boundReplayedStep(step);
    doc.source.highestTIndex =
        static_cast<int8_t>(rawHighestTIndex(doc.source.highestTIndex, saved.doneMask));
    if (!run) {
        doc.processing.steps = std::move(saved.steps);
        return std::nullopt;
    }

    // Transform steps are the preferences of their dimension: they go back first.
    for (const ProcessingStep& step : saved.steps)
        if (step.kind() == StepKind::FourierTransform) doc.processing.steps.push_back(step);

    std::optional<Message> message;
    auto keep = [&message](const auto& m) {
        if (m && !message) message = Message{m->caption, m->text};
    };
    for (int d = 3; d >= 1; --d) {
        if (!(saved.doneMask & done_mask::transformed(d))) continue;
        if (doc.source.highestTIndex < d) continue;
        keep(transformNextDimension(doc).message);
    }
    for (const ProcessingStep& step : saved.steps) {
        if (const auto* b = std::get_if<BaseplaneStep>(&step.data))
            keep(correctBaseline(doc, step.dimension, *b));
        else if (const auto* p = std::get_if<PolynomialStep>(&step.data))
            applyPolynomialStep(doc, step.dimension, *p);
    }
    // Whatever the replay recorded, the document keeps the record it was saved with.
    doc.processing.steps = std::move(saved.steps);
    doc.processing.doneMask |= saved.doneMask;
    return message;
}

void boundReplayedStep(ProcessingStep& step) {
    if (auto* ft = std::get_if<FourierTransformStep>(&step.data)) {
        // Below the smallest size the axis is left untransformed: that choice stays.
        if (ft->ftSize > kMaxFtSize) ft->ftSize = kMaxFtSize;
        if (ft->ftSize >= kMinFtSize) clampFourierTransformStep(*ft);
    } else if (auto* b = std::get_if<BaseplaneStep>(&step.data)) {
        if (b->function != 0) b->order = std::min<uint8_t>(b->order, kMaxBaselineOrder);
    }
}

}  // namespace zolt

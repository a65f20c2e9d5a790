// Replaying a saved processing record on raw data read again.
#pragma once

#include <optional>
#include <string>

#include "base/message.h"
#include "model/spectrum_document.h"

namespace zolt {

// The document holds its freshly loaded raw data and the record as saved. Every dimension
// the saved done mask marks as transformed is transformed again by its step (highest f-index
// first), then the other steps run in their saved order. The record ends as it was saved,
// its steps bounded by boundReplayedStep.
// With run false the data stay raw and the record is kept as the plan to carry out.
std::optional<Message> replayProcessing(SpectrumDocument& doc, bool run = true);

// Brings a step read from a file into what the dialogs allow, so that a damaged or hostile
// file cannot ask for unbounded work: an FT size above the largest one offered becomes that
// size, and the other FT fields follow the dialog's ranges; a polynomial baseplane order above
// kMaxBaselineOrder becomes that order. Steps within the ranges are left as they are.
void boundReplayedStep(ProcessingStep& step);

// The highest t-index of the raw data, from the saved (current) one and the dimensions the
// done mask marks as transformed.
int rawHighestTIndex(int savedTIndex, uint32_t doneMask);

}  // namespace zolt

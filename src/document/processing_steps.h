// The processing steps of a document file: each step as one property-list dictionary.
#pragma once

#include <optional>
#include <vector>

#include "io/plist.h"
#include "model/processing_step.h"

namespace zolt {

// The value of "! Processing" for each step kind.
const char* stepName(StepKind kind);

// One dictionary for the step, or nullptr when the step saves nothing (a linear prediction
// without segments, a polynomial of negative order). The caller owns the result.
plist::Value* saveStep(const ProcessingStep& step);

enum class StepLoad {
    Loaded,
    Skipped,    // unknown step name: ignored
    Malformed,  // a required key is missing, or the dimension is not 1 to 3
};

// The step the dictionary describes; nothing when it is skipped or malformed (`outcome`
// tells which).
std::optional<ProcessingStep> loadStep(const plist::Value* dictionary, StepLoad* outcome = nullptr);

// The steps in order as an array of dictionaries (steps that save nothing are left out).
plist::Value* saveSteps(const std::vector<ProcessingStep>& steps);
// Unknown steps are skipped; nothing when the value is not an array or one step is
// malformed, so that the caller can refuse the document.
std::optional<std::vector<ProcessingStep>> loadSteps(const plist::Value* array);

}  // namespace zolt

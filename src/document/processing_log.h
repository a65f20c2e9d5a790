// The processing log: the text report of a document's processing that is copied to the
// clipboard.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "model/processing_step.h"

namespace zolt {

// The point count of a dimension (1 to 3), as the baseline correction uses it; it enters the
// lambda printed for a Whittaker smoother.
using PointCountOf = std::function<int64_t(int dimension)>;

// The log text with "\r\n" line ends, built from the steps and the done mask.
std::string processingLog(const std::vector<ProcessingStep>& steps, uint32_t doneMask,
                          const PointCountOf& pointCount);
inline std::string processingLog(const ProcessingRecord& record, const PointCountOf& pointCount) {
    return processingLog(record.steps, record.doneMask, pointCount);
}

}  // namespace zolt

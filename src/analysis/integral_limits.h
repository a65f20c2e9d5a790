// Improving the limits of 1-D integral regions drawn by hand or left by the automatic cut.
#pragma once

#include <vector>

#include "model/dimension_record.h"
#include "model/integral_region.h"

namespace zolt {

// Each 1-D region is fitted to the signal the shared detector finds on the trace: a limit
// lying on signal moves outward until the trace is back at baseline, a limit lying on baseline
// moves inward to the first signal point. A limit never crosses a neighbouring region's limit
// nor moves by more than the region's own width, and a region without any signal keeps its
// limits. Limits become point edges; the order of limits A and B and the end-point count stay.
// Regions of other kinds are left alone.
void fitLimitsToSignal(std::vector<IntegralRegion>& regions, const float* trace,
                       const DimensionRecord& axis);

}  // namespace zolt

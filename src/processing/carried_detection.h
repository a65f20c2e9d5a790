// The baseline points of every row along one axis, the marking's threshold carried from row to
// row as one run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/spectrum_matrix.h"

namespace zolt {

// Marks the points [lo, lo + n) of every real row along fIndex into masks (n per row, in the
// order of realRowCount's rows) with half-width w, and sets detected[r] for each row marked; a
// row whose marking runs out of memory stays undetected. masks and detected are sized by the
// caller, detected to the number of rows. The masks are those of marking the rows one after
// another, whatever the number of threads.
void detectBaselineRows(const SpectrumMatrix& m, int fIndex, size_t lo, size_t n, int w,
                        std::vector<uint8_t>& masks, std::vector<uint8_t>& detected);

}  // namespace zolt

// Making a dimension of the working matrix the contiguous one before it is processed.
#pragma once

#include "model/spectrum_matrix.h"

namespace zolt {

// Transposes the real and imaginary arrays so that the points along fIndex (1 ... 3) follow
// each other, the other axes in decreasing f-index behind it, and records fIndex as the
// contiguous dimension. A hypercomplex matrix (two points in record 0) holds its halves as
// two planes, each transposed on its own. Returns false, with the matrix untouched, when the
// scratch memory cannot be had or the arrays do not match the records.
bool rotateToContiguous(SpectrumMatrix& m, int fIndex);

}  // namespace zolt

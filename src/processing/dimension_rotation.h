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

// The same rotation written straight into fresh arrays of `size` floats (zero where no point
// goes), each line along fIndex starting `stride` points after the one before; real data get
// a zero imaginary array. This spares the scratch copy and the later growing and re-striding
// of a transform. Only for an order reached by one transposition (or none) without separate
// planes; false, the matrix untouched, for any other or when the memory cannot be had.
bool rotateIntoRows(SpectrumMatrix& m, int fIndex, size_t stride, size_t size);

}  // namespace zolt

// The rows of the real parts along one dimension, handed to a function one by one.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "model/spectrum_matrix.h"

namespace zolt {

// Calls fn(row, n) for every row of the real parts along fIndex, in storage order, gathering
// rows of a non-contiguous axis into a buffer and writing them back. Returns false when the
// matrix is inconsistent (buffer shorter than its points) or the buffer cannot be had.
bool forEachRealRow(SpectrumMatrix& m, int fIndex, const std::function<void(float*, size_t)>& fn);

// The same for a function that only reads the rows: nothing is written back.
bool forEachRealRowRead(const SpectrumMatrix& m, int fIndex,
                        const std::function<void(const float*, size_t)>& fn);

// The number of those rows; 0 when the matrix is inconsistent.
size_t realRowCount(const SpectrumMatrix& m, int fIndex);

// Groups of consecutive rows along fIndex, for work that takes the rows in order on several
// threads: a row group is up to kRowGroup rows (a tile of a strided axis). realRowGroupCount is
// 0 when the matrix is inconsistent; readRealRowGroup points rows[k] at row first + k, into the
// matrix or into buffer (gathered there), and returns how many rows the group holds.
inline constexpr size_t kRowGroup = 16;
size_t realRowGroupCount(const SpectrumMatrix& m, int fIndex);
size_t readRealRowGroup(const SpectrumMatrix& m, int fIndex, size_t group,
                        std::vector<float>& buffer, const float* rows[kRowGroup], size_t& first);

// The rows along fIndex on several threads, for rows that do not depend on one another, a group
// at a time: fn(rows, count, n, first) with rows[k] the row first + k, gathered and written back
// as forEachRealRow does, each thread with a buffer of its own.
using GroupFunction = std::function<void(float* const*, size_t, size_t, size_t)>;
bool forEachRealRowGroupInParallel(SpectrumMatrix& m, int fIndex, const GroupFunction& fn);

}  // namespace zolt

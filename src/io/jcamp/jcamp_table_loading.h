// The loader's part for sources of type "ASCII Squeezed Difference Form": the data tables stay
// in their JCAMP-DX file and are decoded on every open.
#pragma once

#include <cstdint>

#include "model/spectrum_matrix.h"
#include "model/spectrum_source.h"

namespace zolt {

// The JCAMP-DX options, kept in the source's block-size field while it lives.
namespace jcamp_options {
inline constexpr uint32_t kNtuples = 1;       // a real page, then an imaginary page
inline constexpr uint32_t kReverseOrder = 2;  // the table runs from the last point
inline constexpr uint32_t kYDataOnly = 4;     // lines carry no X value
}  // namespace jcamp_options

// A table of `values` numbers can be written in a file of this size: even the repeat form
// needs a few characters per run of values, so a hostile count is refused before allocating.
bool jcampTableFits(const SpectrumSource& source, uint64_t values, uint64_t fileSize);

// Decodes the source's tables into the matrix, whose arrays are allocated for its points;
// false when the file cannot be read or its tables are damaged.
bool loadJcampTable(const SpectrumSource& source, SpectrumMatrix& m);

}  // namespace zolt

// Files whose parameters are lines of text ("Label: value") ending with ">>> End of header <<<",
// followed by the FID as little-endian complex doubles, one row of VectorSize points per
// column, row and 3-D part. Reads the header only; the raw-data loader reads the numbers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "io/data_set_read.h"

namespace zolt {

inline constexpr size_t kTextHeaderReadBytes = 2559;

// The source described by a header text (the first bytes of the file); rawPath and fileName
// stay empty. Nothing when a label or the end-of-header line is missing or a size is not a
// count.
std::optional<SpectrumSource> parseTextHeader(std::string_view text);

// path: the file. The direct axis takes the highest f-index; rows (NumberOfRows x
// NumberOfColumns) and 3-D parts are pseudo-dimensions.
std::optional<DataSetRead> readTextHeader(const std::string& path, const ReadOptions& options = {});

}  // namespace zolt

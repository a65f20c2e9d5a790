// NMRPipe files: one file of a 2048-byte header and the data as 32-bit floats, 1-D or 2-D,
// time domain or transformed, complex or real, in either byte order. Reads the header only; the
// raw-data loader reads the numbers.
#pragma once

#include <optional>
#include <string>

#include "io/data_set_read.h"

namespace zolt {

// path: the file. Complex rows hold their real values, then their imaginary values
// ("interleaved", "NMRPipe complex data"); the direct axis is the last f-index in use, and in
// a transposed file it takes the parameters the header keeps for the indirect one. A file of
// several rows whose header counts one dimension is an array of 1-D spectra (its rows a
// pseudo-dimension); a 3-D file is read as its first plane. Nothing when the header is
// missing, not NMRPipe's, or its sizes are not counts.
std::optional<DataSetRead> readNmrPipe(const std::string& path, const ReadOptions& options = {});

}  // namespace zolt

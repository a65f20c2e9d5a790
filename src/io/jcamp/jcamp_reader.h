// JCAMP-DX files: a 1-D spectrum as XYDATA, a spectrum or FID as NTUPLES with a real and an
// imaginary page, or a 2-D spectrum as NTUPLES with one page per row. Reads the labelled records
// up to the first data table; the loader decodes the tables.
#pragma once

#include <optional>
#include <string>

#include "io/data_set_read.h"

namespace zolt {

// path: the file. A linked file is read from the first block that holds data. The axes follow
// the standard's labels (FIRSTX, LASTX, NPOINTS; FIRST, LAST, VAR_DIM of the NTUPLES;
// .OBSERVE FREQUENCY and NUCLEUS, .SHIFT REFERENCE), and for an FID the Bruker-specific
// block's sweep width, offset and digital filter. Nothing when no data table is found or its
// sizes are not counts.
std::optional<DataSetRead> readJcamp(const std::string& path, const ReadOptions& options = {});

}  // namespace zolt

// JEOL Delta files (.jdf): one file holding a big-endian header, a parameter section and the
// data as 64- or 32-bit floats in the byte order the header names. 1-D and 2-D data, time
// domain or transformed. Reads the header and the parameters; the raw-data loader reads the
// numbers (2-D files through io/jeol/jeol_sections.h).
#pragma once

#include <optional>
#include <string>

#include "io/data_set_read.h"

namespace zolt {

// Complex data are stored as sections, all real values first, then all imaginary ones: a 1-D
// file is an "interleaved" row, a 2-D file a "block matrix" of 32 x 32 tiles per section, its
// four sections of a phase-sensitive acquisition marked "Jeol Delta 2-D ph-sens." (the indirect
// axis then counts two rows per increment, transformed as echo and anti-echo). Axes come from the
// header, the carrier offset of a time-domain axis and the digital filter from the parameters.
// Nothing when the header is not JEOL's, the format is neither 1-D nor 2-D, or the sizes do
// not fit the file.
std::optional<DataSetRead> readJeolDelta(const std::string& path, const ReadOptions& options = {});

}  // namespace zolt

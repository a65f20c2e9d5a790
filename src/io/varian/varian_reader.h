// Varian experiments: a folder holding the binary fid, the parameter file procpar and the
// optional text. Reads the file header and the parameters; the raw-data loader reads the
// blocks (io/varian/varian_blocks.h).
#pragma once

#include <optional>
#include <string>

#include "io/data_set_read.h"

namespace zolt {

// path: the experiment folder (often named *.fid) or any file inside it. The source is flagged
// "Varian binary", with the 32-byte file header, 28-byte block headers and the blocks the file
// holds completely (an interrupted acquisition keeps fewer than it announced). Nothing when the
// fid (at least its header) or procpar cannot be read, or when their sizes disagree.
std::optional<DataSetRead> readVarianFolder(const std::string& path,
                                            const ReadOptions& options = {});

}  // namespace zolt

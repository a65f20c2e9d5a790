// The steps every data set goes through when opened, whatever its format: its reader, found in
// the reader table, then the completion of what the reader leaves open.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/message.h"
#include "io/reader_table.h"

namespace zolt {

inline constexpr const char* kUnknownFormatText = "This format is unknown";

// Reads the data set at path (a file, or a folder) recognised as `code` with the code's row:
// when the experiment holds no raw data file, the processed data are read instead (raw data
// that are there but cannot be read make the format's incoherent-file message); the source is
// completed, takes the format's name as provenance and, for integers of unstated byte order, the
// probed one. Nothing, and the message to show, for a molecule file, an unrecognised file, or a
// format whose reader fails or is not written yet. Saved documents are not read here.
std::optional<DataSetRead> readDataSet(const std::string& path, FormatCode code,
                                       ReadOptions options, Message& failure,
                                       std::span<const ReaderRow> rows = readerTable());

}  // namespace zolt

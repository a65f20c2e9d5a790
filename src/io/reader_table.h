// Every format a path can be recognised as, with its name and its reader: one row per format,
// registered in one place. A format gains a reader with one new file and its function in the
// row.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "io/data_set_read.h"
#include "io/format_recognition.h"

namespace zolt {

// path: the chosen file, or the data set's folder. nullopt when the data set is incoherent.
using ReadFunction = std::optional<DataSetRead> (*)(const std::string& path,
                                                    const ReadOptions& options);

struct ReaderRow {
    FormatCode code;
    const char* name;   // stored as provenance and shown in messages
    ReadFunction read;  // null while the format has no reader
    // The file whose presence makes a folder one data set of the format; null when no folder
    // is walked into as one.
    const char* dataSetFile;
};

// The program's rows, one per named format.
std::span<const ReaderRow> readerTable();

// The first row of the code; null when the table has none.
const ReaderRow* findReader(FormatCode code, std::span<const ReaderRow> rows = readerTable());

// The name stored as provenance and shown in messages; codes without a row are "Zolt".
const char* formatName(FormatCode code, std::span<const ReaderRow> rows = readerTable());

// "This Bruker file seems incoherent".
std::string incoherentFileText(FormatCode code, std::span<const ReaderRow> rows = readerTable());

}  // namespace zolt

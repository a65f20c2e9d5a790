// Finding data sets on disk: the folders that are one data set, the file that stands for such a
// folder, and the walk through a folder tree for every data set this program opens.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "io/reader_table.h"

namespace zolt {

// True when the folder itself is one data set: a row's data-set file lies inside.
bool isDataSetFolder(const std::string& path, std::span<const ReaderRow> rows = readerTable());

// The file that stands for an experiment folder when recognising it and naming its documents.
std::string dataFileOf(const std::string& folder);

// The data sets inside a folder, in directory order: sub-folders that are data sets, and files
// of a format with a reader or of a saved document (a data file whose document lies beside it
// is reached through the document); other sub-folders are searched in turn. The visitor
// returns false to stop the walk.
void walkDataSets(const std::string& folder, const std::function<bool(const std::string&)>& visit,
                  std::span<const ReaderRow> rows = readerTable());

// A name without the extension some data sets carry on their folder or file (".fid" of a
// spectrometer folder, ".spins" of a spin-system document).
std::string withoutDataSetExtension(std::string name);

}  // namespace zolt

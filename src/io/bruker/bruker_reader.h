// Bruker experiments: folder layout (acqus + fid/ser), the Win-NMR single-folder layout and
// ParaVision (acqp). Reads parameters only; the raw-data loader reads the numbers.
#pragma once

#include <optional>
#include <string>

#include "io/data_set_read.h"

namespace zolt {

// Every read source is ready for the loader: provenance ("Bruker", "ParaVision", "Win-NMR"),
// highest t-index, display indices and minimums (completeSource) and the probed byte order.
// Sizes follow the convention written down in io/raw_loader.h. AcquisitionInfo holds the first
// "$$ " line of acqus, D1 and NS; vendorProcessing WDW, LB, GB, SSB and SI of each axis'
// processing file.
// path: the experiment folder or any file inside it (acqus, fid, ser ...). `threeD` reads a
// ser file as 3-D when acqu3s exists; with `processed` pdata/1/1r, 2rr or 3rrr are read when
// present, and a folder holding only those (no fid or ser) is read too.
std::optional<DataSetRead> readBrukerFolder(const std::string& path,
                                            const ReadOptions& options = {});
// path: any file of a Win-NMR data set (base name with aqs, fa1, fa2, fqs ...); the layout
// keeps neither processed data nor a third axis, so no option applies.
std::optional<DataSetRead> readWinNmr(const std::string& path, const ReadOptions& options = {});
// path: the ParaVision folder or a file inside it; writes acqus beside acqp first.
std::optional<DataSetRead> readParaVision(const std::string& path, const ReadOptions& options = {});

}  // namespace zolt

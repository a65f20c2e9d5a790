// Bruker experiments: folder layout (acqus + fid/ser), the Win-NMR single-folder layout and
// ParaVision (acqp). Reads parameters only; the raw-data loader reads the numbers.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "model/spectrum_document.h"

namespace zolt {

struct BrukerReadOptions {
    bool threeD = false;     // a ser file is read as 3-D when acqu3s exists
    bool processed = false;  // read pdata/1/1r, 2rr or 3rrr when present
};

// What the document-information panel shows.
struct AcquisitionInfo {
    std::string dateStamp;         // from the first "$$ " line of acqus
    double relaxationDelay = 0.0;  // D1, seconds
    int scans = 0;                 // NS
};

struct BrukerRead {
    SpectrumSource source;
    SampleMetadata metadata;  // title, solvent, pulse sequence
    AcquisitionInfo info;
    // WDW, LB, GB, SSB and SI of each axis' processing file, by f-index (raw data only).
    std::array<VendorProcessing, 4> vendorProcessing{};
};

// Every read source is ready for the loader: provenance ("Bruker", "ParaVision", "Win-NMR"),
// highest t-index, display indices and minimums (completeSource) and the probed byte order.
// Sizes follow the convention written down in io/raw_loader.h.
// path: the experiment folder or any file inside it (acqus, fid, ser ...). With `processed`
// a folder holding only pdata/1/1r or 2rr (no fid or ser) is read too.
std::optional<BrukerRead> readBrukerFolder(const std::string& path,
                                           const BrukerReadOptions& options = {});
// path: any file of a Win-NMR data set (base name with aqs, fa1, fa2, fqs ...).
std::optional<BrukerRead> readWinNmr(const std::string& path);
// path: the ParaVision folder or a file inside it; writes acqus beside acqp first.
std::optional<BrukerRead> readParaVision(const std::string& path,
                                         const BrukerReadOptions& options = {});

// For 16- and 32-bit integer sources neither little-endian nor Varian: samples 20 values of
// the file and sets or clears the "little endian" flag.
void probeByteOrder(SpectrumSource& source);

}  // namespace zolt

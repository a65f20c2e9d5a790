// What every reader hands over for one data set, whatever its format, and the choices the
// opener passes to every reader.
#pragma once

#include <array>
#include <string>

#include "model/spectrum_document.h"

namespace zolt {

struct ReadOptions {
    bool threeD = false;     // a multi-row file is read as 3-D when the format keeps a third axis
    bool processed = false;  // the spectrometer's processed spectrum, when it kept one
};

// What the document-information panel shows.
struct AcquisitionInfo {
    std::string dateStamp;         // when the data were acquired, as the spectrometer wrote it
    double relaxationDelay = 0.0;  // seconds
    int scans = 0;
};

struct DataSetRead {
    SpectrumSource source;
    SampleMetadata metadata;  // title, solvent, pulse sequence
    AcquisitionInfo info;
    // The spectrometer's own window and FT size of each axis, by f-index (raw data only).
    std::array<VendorProcessing, 4> vendorProcessing{};
};

}  // namespace zolt

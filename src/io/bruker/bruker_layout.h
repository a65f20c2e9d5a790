// Shared by the three Bruker layouts (experiment folder, Win-NMR, ParaVision): where the files
// of one data set are, and the steps that turn their parameters into a source.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/paths.h"
#include "io/bruker/bruker_parameters.h"
#include "io/bruker/bruker_reader.h"

namespace zolt {

struct BrukerLayout {
    std::string dataPath;  // fid, ser, 1r ...
    int dimensions = 1;
    bool processed = false;           // 1r, 2rr, 3rrr: real 32-bit integers
    bool arrayedSecondAxis = false;   // the indirect axis of a 2-D read is a pseudo-dimension
    bool littleEndianFloats = false;  // Win-NMR numbers
    std::vector<std::string> acquisitionFiles;  // direct axis first; all must exist
    std::vector<std::string> processingFiles;   // direct axis first; missing ones are skipped
    std::string titlePath;                      // empty when the layout has none
    std::string provenance;
};

// Reads the parameter files of a located data set; nullopt when one is missing or an axis is
// left without points.
std::optional<DataSetRead> readBrukerLayout(const BrukerLayout& layout);

// The experiment-folder layout (acqus, fid or ser, pdata/1), recorded as `provenance`.
std::optional<DataSetRead> readBrukerExperiment(const std::string& path, const ReadOptions& options,
                                                const std::string& provenance);

// The text of a ParaVision acqp rewritten as a sorted acqus: ACQ_size becomes TD, array labels
// lose their dimensions so the values follow the "=", the text ends at "##END".
std::string paraVisionToAcqus(std::string acqp);

// One axis from its acquisition file. `pulseProgramName` (without brackets) is the direct
// axis'; `ftPreference` receives AQ_mod (direct) or FnMODE (indirect) as the pipeline wants it.
void applyAcquisitionParameters(const AcquisitionParameters& a, bool direct,
                                const std::string& pulseProgramName, DimensionRecord& axis,
                                uint8_t& ftPreference);

// Mass number and atom from a NUC1/NUCLEUS value: "<13C>" -> 13, "C".
void setNucleus(DimensionRecord& axis, const std::string& value);

}  // namespace zolt

// Reads arbitrary text as every kind of Bruker parameter file: acquisition and processing
// parameters, the information panel's stamp, a ParaVision acqp and a pulse program. Whatever
// the text, the rewritten acqp must be sorted and must read again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "io/bruker/bruker_layout.h"
#include "io/bruker/bruker_parameters.h"
#include "io/bruker/bruker_pulse_program.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const AcquisitionParameters a = parseAcquisitionParameters(text);
    if (a.nuc1.size() > 15 || a.pulseProgram.size() > 31 || a.solvent.size() > 15) std::abort();
    DimensionRecord axis;
    uint8_t preference = 0;
    applyAcquisitionParameters(a, true, withoutAngleBrackets(a.pulseProgram), axis, preference);
    applyAcquisitionParameters(a, false, withoutAngleBrackets(a.pulseProgram), axis, preference);
    parseProcessingParameters(text);
    const AcquisitionInfo info = parseAcquisitionInfo(text);
    if (info.dateStamp.size() > 28) std::abort();
    pulseProgramArraysSecondAxis(text);
    quadratureModeFromName(text);

    const std::string acqus = paraVisionToAcqus(std::string(text));
    parseAcquisitionParameters(acqus);
    return 0;
}

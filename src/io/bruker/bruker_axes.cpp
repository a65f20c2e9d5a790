#include <algorithm>
#include <cctype>

#include "io/bruker/bruker_layout.h"
#include "io/bruker/bruker_pulse_program.h"
#include "io/bruker/bruker_time_shift.h"

namespace zolt {

namespace {

bool isLetter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

}  // namespace

void setNucleus(DimensionRecord& axis, const std::string& value) {
    axis.isotope = 0;
    axis.atom[0] = axis.atom[1] = 0;
    // The first character is the opening bracket; the mass number follows, then the symbol.
    size_t i = 1;
    int mass = 0;
    for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i)
        mass = std::min(mass * 10 + (value[i] - '0'), 255);
    axis.isotope = static_cast<uint8_t>(mass);
    if (i < value.size() && isLetter(value[i])) {
        axis.atom[0] = value[i];
        if (i + 1 < value.size() && value[i + 1] != '>' && isLetter(value[i + 1]))
            axis.atom[1] = value[i + 1];
    }
}

void applyAcquisitionParameters(const AcquisitionParameters& a, bool direct,
                                const std::string& pulseProgramName, DimensionRecord& axis,
                                uint8_t& ftPreference) {
    const uint32_t td = a.td > 0 ? static_cast<uint32_t>(a.td) : 0;
    axis.points = direct ? td / 2 : td;  // the direct axis counts complex points
    axis.pointsAfterNus = a.nusTd > 0 ? static_cast<uint32_t>(a.nusTd) : 0;
    axis.spectralWidth = static_cast<float>(a.sw);
    const double carrier = a.sfo1 < 1.0 ? 1.0 : a.sfo1;
    axis.carrier = static_cast<float>(carrier);
    axis.lowestPpm = static_cast<float>(a.o1 / carrier - a.sw / 2.0);
    // NUC1 reads "<off>" when the channel names its nucleus in NUCLEUS instead.
    const bool off = a.nuc1.empty() || (a.nuc1.size() > 1 && a.nuc1[1] == 'o');
    setNucleus(axis, off ? a.nucleus : a.nuc1);
    axis.timeShift = static_cast<float>(-digitalFilterDelay(a.dspfvs, a.decim, a.grpdly));
    if (direct) {
        ftPreference = static_cast<uint8_t>(a.aqMod & 0x3F);
    } else if (a.fnMode == 0) {
        ftPreference = quadratureModeFromName(pulseProgramName);
    } else {
        ftPreference = static_cast<uint8_t>(std::clamp(a.fnMode, 0, 255));
    }
}

}  // namespace zolt

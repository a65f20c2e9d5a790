// Writes a 1-D FID or spectrum as a JCAMP-DX 5.01 file: the FID as NTUPLES with a real and an
// imaginary page in the squeezed form, the spectrum as XYDATA in the difference form.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "model/dimension_record.h"

namespace zolt {

struct JcampExport {
    DimensionRecord axis;       // the direct axis: points, width, lowest ppm, carrier, shift
    std::span<const float> re;  // axis.points values
    std::span<const float> im;  // the FID's imaginary parts; unused for a spectrum
    std::string title;          // cut to 70 characters
    int quadratureMode = 0;     // the FT-preferences code of the axis
    double reference = 1.0;     // the intensity written as 80000
    bool fid = false;           // time domain, else a spectrum
    bool magnitude = false;     // a magnitude spectrum
};

// The forms of an integer: its first digit a letter, the rest decimal digits ("b5" is -25).
std::string squeezedForm(int64_t v);
std::string differenceForm(int64_t v);

// The whole file, lines ended by "\r\n".
std::string jcampText(const JcampExport& e);

// False when the file cannot be created or written.
bool writeJcamp(const JcampExport& e, const std::string& path);

}  // namespace zolt

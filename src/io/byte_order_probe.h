// The byte order of integer raw data whose format does not state it.
#pragma once

#include "model/spectrum_source.h"

namespace zolt {

// For 16- and 32-bit integer sources neither little-endian nor Varian: samples 20 values of
// the file and sets or clears the "little endian" flag.
void probeByteOrder(SpectrumSource& source);

}  // namespace zolt

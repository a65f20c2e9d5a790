// Reads arbitrary text as a compiled pulse program and as a pulse-program name. A name that
// says INADEQUATE says so whatever follows it, and the quadrature byte is one the FT knows.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "io/bruker/bruker_pulse_program.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    pulseProgramArraysSecondAxis(text);
    const uint8_t mode = quadratureModeFromName(text);
    if (mode < 1 || mode > 6) std::abort();
    if (isInadequate(text) && !isInadequate(std::string(text) + "x")) std::abort();
    return 0;
}

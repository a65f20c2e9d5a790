// What the pulse program tells that the parameters do not: arrayed (pseudo) dimensions, the
// quadrature mode of an indirect axis left at FnMODE 0, INADEQUATE's double-quantum axis.
#pragma once

#include <cstdint>
#include <string_view>

namespace zolt {

// Looks at the loop body between "go=2" and the next "exit" of the compiled pulse program: an
// increment of a variable-delay or variable-counter list (ivd, ivc) makes the second axis an
// arrayed series, while a delay increment (id0, in0, ip0, iu0, rd0, dd0, dp0) makes it a
// frequency axis at once.
bool pulseProgramArraysSecondAxis(std::string_view pulseProgram);

// FT preferences byte of an indirect axis recorded with FnMODE 0, from the pulse-program name
// ("hsqcetgpsp.3" is judged by "sp"): sh 4, tp 3, st 5, gs 6 (not for a cosy), otherwise 1.
uint8_t quadratureModeFromName(std::string_view pulseProgramName);

// INADEQUATE experiments ("inad...") have a double-quantum indirect axis.
bool isInadequate(std::string_view pulseProgramName);

}  // namespace zolt

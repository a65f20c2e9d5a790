// The parameters of a Varian experiment that shape its source, read from procpar, and the
// small decodings built on them (nuclei, axis letters, the phase-cycle coefficients).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zolt {

// One value of each parameter the reader uses; absent parameters keep these defaults.
struct VarianParameters {
    int phase = 0, lsfid = 0, ni = 0, ni2 = 0;
    std::string array, axis, f1coef, tn, dn, dn2, solvent, seqfil;
    double sfrq = 0, dfrq = 0, dfrq2 = 0;
    double sw = 0, sw1 = 0, sw2 = 0;
    double lp = 0, rp = 0;
    double rfl = 0, rfl1 = 0, rfl2 = 0, rfp = 0, rfp1 = 0, rfp2 = 0;
    double temp = 0;
    bool tempFound = false;
};

// A procpar holds each parameter as a line that begins with its name and a blank, then a line
// holding the number of values and the values. The first value is taken, read from at most 64
// characters; a string from at most 32 characters, up to its closing quote.
VarianParameters parseVarianParameters(std::string_view procpar);

// "H1", "C13", "Si29": the element symbol (an upper-case letter and an optional lower-case
// one) and the mass number. False when the text is not of that form.
bool parseVarianNucleus(std::string_view text, char (&atom)[3], int& massNumber);

// Which of the seven phase-cycle coefficient tables an f1coef begins with: 1 to 7, or 0.
int coefficientTable(std::string_view f1coef);

// The FT-preferences code of the first indirect axis: with "phase" arrayed, 0x22 for tables
// 1-4, 6 (echo/anti-echo) for tables 5-7 and 0x21 (States) when no table matches; 1 otherwise.
uint8_t firstIndirectQuadrature(const VarianParameters& p);

}  // namespace zolt

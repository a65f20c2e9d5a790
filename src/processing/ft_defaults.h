// The Fourier-transform step an axis starts with, from the FT-preferences bytes its reader set
// (Bruker AQ_mod / FnMODE, Varian codes); processing/ft_step creates steps from it.
#pragma once

#include <optional>

#include "model/spectrum_document.h"

namespace zolt {

// Codes of the direct axis (Bruker AQ_mod & 0x3F; a space: no preference).
namespace acquisition_mode {
inline constexpr uint8_t kQf = 0;    // single channel: real samples
inline constexpr uint8_t kQsim = 1;  // simultaneous quadrature
inline constexpr uint8_t kQseq = 2;  // sequential (Redfield): real samples
inline constexpr uint8_t kDqd = 3;   // digital quadrature
inline constexpr uint8_t kNone = 0x20;
}  // namespace acquisition_mode

// Codes of an indirect axis (Bruker FnMODE; Varian 0x10, 0x21, 0x22 besides 1 and 6).
namespace indirect_mode {
inline constexpr uint8_t kUndefined = 0;
inline constexpr uint8_t kQf = 1;
inline constexpr uint8_t kQseq = 2;
inline constexpr uint8_t kTppi = 3;
inline constexpr uint8_t kStates = 4;
inline constexpr uint8_t kStatesTppi = 5;
inline constexpr uint8_t kEchoAntiEcho = 6;
inline constexpr uint8_t kVarianOuterStates = 0x10;
inline constexpr uint8_t kVarianStates = 0x21;
inline constexpr uint8_t kVarianCoefficients = 0x22;  // f1coef tables 1-4
}  // namespace indirect_mode

// The step of one axis: shuffling, quadrature, real FT, conjugation and hypercomplex flags
// from its code, "apply weights" on, and the window and FT size the spectrometer's own
// processing used when `vendor` is given; otherwise no window function and the next power of
// two of the complex points (direct axis) or twice the recombined points (indirect axes).
// Nothing for an axis that is absent or a pseudo-dimension.
std::optional<FourierTransformStep> defaultFourierTransformStep(
    const SpectrumSource& source, int fIndex, const VendorProcessing* vendor = nullptr);

}  // namespace zolt

// The polar form of complex points: (modulus, phase) and back.
#pragma once

#include <cstddef>

namespace zolt {

// Toggles between (real, imaginary) and (modulus, phase); toPolar selects the direction. Every
// stored float is the one the double sqrt, atan2, cos and sin of the C library round to.
void togglePolar(float* re, float* im, size_t count, bool toPolar);

}  // namespace zolt

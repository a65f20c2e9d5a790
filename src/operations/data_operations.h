// Operations on the intensities themselves: copying them out and in, and point-wise changes.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// The real parts of the current plane with the sizes of the x, y and z axes.
struct PlaneValues {
    std::vector<float> values;
    size_t x = 1, y = 1, z = 1;
};
PlaneValues currentPlane(const SpectrumDocument& doc);

// Rebuilds the imaginary parts of every row by Hilbert transform.
OperationResult rebuildImaginaryParts(SpectrumDocument& doc);
// Magnitude representation on or off; nothing when it is already so or there is nothing to
// take the modulus of.
OperationResult setMagnitude(SpectrumDocument& doc, bool on);
// Every negative real value becomes zero.
OperationResult clearNegatives(SpectrumDocument& doc);

// The values replace the real parts (and are taken) when there are as many; otherwise nothing
// happens, they stay with the caller and false is returned.
bool replaceRealParts(SpectrumDocument& doc, std::vector<float>& values);
// Makes a fresh document a real spectrum of the values, nx by ny (one row of all values when
// the product does not match), on the given axes (those of the document it came from).
void fillFromValues(SpectrumDocument& fresh, std::vector<float> values, size_t nx, size_t ny,
                    const std::array<DimensionRecord, 4>& axes = {});

}  // namespace zolt

// The data of a 2-D JEOL Delta file: one section per combination of real and imaginary parts,
// each a grid of square tiles stored tile after tile, left to right, then top to bottom.
#pragma once

#include <cstdint>

#include "model/spectrum_document.h"

namespace zolt {

// Edge of the tiles of a 2-D file, in points.
inline constexpr uint32_t kJeolTileEdge = 32;

// A source whose sections the loader reads here: complex data ("interleaved") marked "block
// matrix". A 1-D file holds its real values, then its imaginary ones; a 2-D file has the
// sections tiled, and four of them when marked "Jeol Delta 2-D ph-sens." (the direct axis'
// part changing fastest; each increment becomes two rows, those of the indirect imaginary
// sections first). Imaginary parts are negated: the spectrometer's quadrature sense is the
// opposite of ours (whatever the processing state, so that a saved document reads the same
// values again).
bool isJeolSectionSource(const SpectrumSource& source);
// The sections of the matrix' size lie within a file of that size, and its sizes are whole
// tiles.
bool jeolSectionsFit(const SpectrumSource& source, uint64_t fileSize);
// Fills the matrix, whose arrays are allocated; false when the file cannot be read.
bool readJeolSections(const SpectrumSource& source, SpectrumMatrix& matrix);

}  // namespace zolt

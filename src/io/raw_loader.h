// Turns a source into the working matrix: reads and converts the raw numbers.
//
// Sizes of a source, as the readers set them:
// - headerSize bytes are skipped once at the start of the file.
// - A multi-row raw file (a Bruker ser): blockSize is the stride in bytes between the starts
//   of consecutive rows, and blockHeader the padding bytes inside that stride that are not data,
//   skipped after each row's data. A Bruker row of N complex points takes N x 8 bytes (N x 16 for
//   doubles) rounded up to a multiple of 1024, so blockHeader = blockSize - N x 8.
// - 1-D data: blockSize is kDefaultBlockSize and blockHeader 0 (no padding).
// - Processed Bruker data (1r, 2rr, 3rrr; "real only", 32-bit integers): plain rows of N x 4
//   bytes (blockSize = N x 4 for 2-D and 3-D). With "block matrix" the file is stored in tiles
//   of XDIM points by subMatrixHeight rows, one tile after the other across each band of rows;
//   blockSize = XDIM x XDIM x 8, so XDIM = sqrt(blockSize / 8), and subMatrixHeight 0 means
//   square tiles (XDIM rows).
//
// Layout of a raw file as the readers describe it in the source:
// - `headerSize` bytes are skipped once at the start of the file.
// - The data are rows along the direct axis (the highest f-index with more than one point);
//   the other axes follow in decreasing f-index, the slowest last, as in the matrix.
// - Complex rows hold adjacent pairs, real first. With "interleaved" a row holds its real
//   values first and then its imaginary values (two blocks of points values). With
//   "real only" there is no imaginary part.
// - Multi-row files: `blockSize` is the stride in bytes between the starts of consecutive
//   rows (a Bruker ser row of points x 8 bytes rounded up to a multiple of 1024), and
//   `blockHeader` the padding bytes inside that stride that are not data (blockSize -
//   points x 8 for Bruker), skipped after each row's data. The loader takes the stride as
//   the row's data bytes + blockHeader, so a blockHeader of 0 means rows follow each other
//   without gaps whatever blockSize says. 1-D data: blockSize 0x100000, blockHeader 0.
// - "block matrix": the file is a grid of tiles, each `tileWidth` points wide and
//   `subMatrixHeight` rows high, stored tile after tile, left to right, then top to bottom;
//   the reader stores the tile width as blockSize = width x width x 8. A sub-matrix height
//   of 0 means square tiles; a height above the number of rows is cut to it.
// - A file may end inside its last row (an acquisition stopped while writing it): the
//   missing values are zero when at least half of that row is present. Anything shorter
//   is refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kReadErrorCaption = "Failed to Read the file";
inline constexpr const char* kReadErrorText = "Error found while trying to read data-points";

// Largest matrix the loader builds, in bytes of floats over all its arrays, the work row of
// 1-D data included (guards hostile point counts and huge files of unstated size).
inline constexpr size_t kMaxMatrixBytes = size_t{4} << 30;

// nullopt when the file is missing, too short or its sizes are out of bounds, and for
// number types and flags this loader does not decode (plain text, VAX). "Varian binary"
// sources are read block by block by io/varian/varian_blocks, JCAMP-DX tables ("ASCII Squeezed
// Difference Form") decoded by io/jcamp/jcamp_table_loading.
std::optional<SpectrumMatrix> loadMatrix(const SpectrumSource& source);

// Bytes of one raw value of a binary number type (long 4, short 2, float 4, 24 bits 3,
// double 8); 0 for the types that are not fixed-size binary numbers.
size_t rawValueBytes(NumberType type);
// One raw value from its first byte; `bytes` holds rawValueBytes(type) bytes.
float decodeRawValue(const unsigned char* bytes, NumberType type, bool littleEndian);
// The raw value that starts at a byte offset of the source's file, in the source's byte
// order; nullopt when the file cannot be read there.
std::optional<float> readRawValue(const SpectrumSource& source, uint64_t byteOffset);

}  // namespace zolt

// The binary side of a Varian fid: its 32-byte file header, and the reading of its blocks
// (each behind a 28-byte block header) into the working matrix. Everything is big-endian.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "model/spectrum_document.h"

namespace zolt {

inline constexpr uint32_t kVarianFileHeaderBytes = 32;
inline constexpr uint32_t kVarianBlockHeaderBytes = 28;

// Bits of the status word of the file header.
namespace varian_status {
inline constexpr uint16_t kSpectrum = 0x2;  // frequency-domain data
inline constexpr uint16_t kLong = 0x4;      // 32-bit integers
inline constexpr uint16_t kFloat = 0x8;
inline constexpr uint16_t kComplex = 0x10;
inline constexpr uint16_t kHypercomplex = 0x40;
}  // namespace varian_status

struct VarianFileHeader {
    uint32_t blocks = 0;
    uint32_t tracesPerBlock = 0;
    uint32_t pointsPerTrace = 0;  // values: a complex point takes two
    uint32_t bytesPerElement = 0;
    uint32_t bytesPerTrace = 0;
    uint32_t bytesPerBlock = 0;  // block header included
    uint16_t version = 0;
    uint16_t status = 0;
    uint32_t blockHeaders = 0;
};

// Nothing when fewer than 32 bytes are given.
std::optional<VarianFileHeader> parseVarianFileHeader(std::string_view bytes);

// The number type the status word and element size describe.
NumberType varianNumberType(const VarianFileHeader& h);
bool varianRealOnly(const VarianFileHeader& h);

// Blocks wholly inside a file of that size, at most as many as the header announces.
uint32_t varianBlocksPresent(const VarianFileHeader& h, uint64_t fileSize);

// For a source flagged "Varian binary": the blocks begin after headerSize bytes, each made of
// blockHeader bytes of header and blockSize bytes of values, which fill the matrix in order
// (complex values as adjacent pairs, conjugated into our quadrature sense). A block whose
// completed-transients count is below 1 was never acquired and stays zero; a non-zero scale s
// multiplies the block by 2^|s|. False when the header of a block the matrix needs lies beyond
// the file (checked before the matrix is allocated); values missing at the file's end stay zero.
bool varianBlocksFit(const SpectrumSource& source, uint64_t matrixValues, uint64_t fileSize);
// Fills the matrix, whose arrays are allocated and zero; false when the file cannot be read.
bool readVarianBlocks(const SpectrumSource& source, SpectrumMatrix& matrix);

}  // namespace zolt

// Where a spectrum's raw data come from and how they are coded.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/dimension_record.h"

namespace zolt {

enum class NumberType : uint8_t {
    Long = 0,           // 32-bit integer
    Short = 1,          // 16-bit integer
    Float = 2,          // 32-bit float
    Bits24 = 3,         // 24-bit integer
    Double = 4,         // 64-bit float
    AsciiSqueezed = 5,  // JCAMP-DX compressed text
    Text = 6,
    XEasy16 = 7,
    InMemory = 8,
    NoData = 9,
    SpinSystem = 10,
};

// The document-file word of a number type ("long", "short", "float" ...).
const char* numberTypeName(NumberType t);

namespace source_flags {
inline constexpr uint32_t kLittleEndian = 0x1;
inline constexpr uint32_t kLooseNativeFile = 0x2;
inline constexpr uint32_t kMagnitude = 0x8;
inline constexpr uint32_t kRealOnly = 0x10;
inline constexpr uint32_t kInterleaved = 0x20;
inline constexpr uint32_t kVarianBinary = 0x40;
inline constexpr uint32_t kBlockMatrix = 0x400;
inline constexpr uint32_t kComplexConjugate = 0x4000;
inline constexpr uint32_t kVaxFloats = 0x8000;
inline constexpr uint32_t kNmrPipeComplex = 0x10000;
inline constexpr uint32_t kRanceKay = 0x20000;
inline constexpr uint32_t kDosy = 0x40000;
inline constexpr uint32_t kJeolDelta2DPhaseSensitive = 0x80000;
}  // namespace source_flags

struct SourceFlagName {
    uint32_t bit;
    const char* key;
};
// Every flag with its document-file key, in bit order.
const std::vector<SourceFlagName>& sourceFlagNames();

// A saved block size of 0 means this.
inline constexpr uint32_t kDefaultBlockSize = 0x100000;

struct SpectrumSource {
    std::string rawPath;              // full path of the raw data file
    std::string fileName;             // bare file name
    std::string provenance = "Zolt";  // the format the data were read from
    std::array<DimensionRecord, 4> dims{};
    std::array<uint8_t, 4> ftPreferences{};  // per f-index 1-3; [0] unused
    std::array<uint8_t, 4> phaseable{};      // per f-index 1-3; [0] unused
    NumberType numberType = NumberType::Long;
    int8_t highestTIndex = 0;
    int8_t xIndex = 0, yIndex = 0, zIndex = 0;
    // Rows per tile of a block-matrix file (1 to 255); 0 for square tiles or no tiles.
    uint8_t subMatrixHeight = 0;
    uint32_t flags = 0;
    uint32_t headerSize = 0;                            // bytes skipped at the start of the file
    uint32_t blockHeader = 0;                           // bytes skipped before each block
    uint32_t blockSize = 0;                             // bytes per block (a padded ser row)
    float yFactorReal = 1.0f, yFactorImaginary = 1.0f;  // JCAMP-DX compressed form
    std::vector<float> memory;  // InMemory: interleaved or real-only samples
};

// Axes with at least 2 points that are not pseudo-dimensions.
int countDimensions(const SpectrumSource& s);
// The highest f-index whose axis has more than one point (the direct axis), or 0.
int directFIndex(const SpectrumSource& s);
// Sets "interleaved", "real only" and "complex conjugate" keeping only the first by precedence.
uint32_t normalisedFlags(uint32_t flags);

}  // namespace zolt

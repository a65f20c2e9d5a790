// The 2048-byte header of an NMRPipe file: 512 32-bit floats in the byte order of the machine
// that wrote it, recognised by the value 2.345 in word 2.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zolt {

inline constexpr size_t kNmrPipeHeaderBytes = 2048;

// Word indices (from 0) of the header values the reader uses.
namespace nmrpipe_word {
inline constexpr int kByteOrderCheck = 2;  // 2.345
inline constexpr int kDirectLabel = 16;    // 8 characters: "1H", "13C" ...
inline constexpr int kIndirectLabel = 18;
inline constexpr int kDimensionCount = 9;
inline constexpr int kDirectSize = 99;
inline constexpr int kDirectSweepWidth = 100;  // Hz
inline constexpr int kDirectOrigin = 101;      // Hz of the right-hand edge
inline constexpr int kQuadratureFlag = 106;    // 0: complex data
inline constexpr int kDirectObserve = 119;     // MHz
inline constexpr int kMagnitudeFlag = 135;
inline constexpr int kTemperature = 157;  // degrees Celsius
inline constexpr int kIndirectObserve = 218;
inline constexpr int kRowCount = 219;
inline constexpr int kDirectTransformed = 220;
inline constexpr int kTransposed = 221;
inline constexpr int kIndirectTransformed = 222;
inline constexpr int kIndirectSweepWidth = 229;
inline constexpr int kIndirectOrigin = 249;
inline constexpr int kIndirectAcquisition = 256;  // 1 TPPI, 2 States
inline constexpr int kFileCount = 442;            // planes of a series of files
}  // namespace nmrpipe_word

struct NmrPipeHeader {
    // The words in the machine's order, whatever the file's.
    std::array<float, kNmrPipeHeaderBytes / 4> words{};
    bool bigEndian = false;  // the file's byte order

    // Word i, or 0 when it is not a finite number.
    double value(int i) const;
    // The 8 characters from word i on, up to the first zero.
    std::string label(int i) const;
};

// Nothing when the bytes are fewer than a header or word 2 is not 2.345 in either order.
std::optional<NmrPipeHeader> parseNmrPipeHeader(std::span<const unsigned char> bytes);

}  // namespace zolt

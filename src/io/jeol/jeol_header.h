// The fixed header of a JEOL Delta file (1360 bytes, always big-endian) and its parameter
// section (64-byte records in the byte order the header names).
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace zolt {

inline constexpr size_t kJeolHeaderBytes = 1360;
inline constexpr int kJeolMaxAxes = 8;

// How the values of one axis are stored.
enum class JeolAxisType : uint8_t {
    None = 0,
    Real = 1,
    Tppi = 2,
    Complex = 3,
    RealComplex = 4,  // complex along the first axis only: two sections for the whole file
    Envelope = 5,
};

// Data formats the reader knows (the low six bits of byte 14).
namespace jeol_format {
inline constexpr int kOneD = 1;
inline constexpr int kTwoD = 2;
}  // namespace jeol_format

// Unit codes of an axis (second byte of each unit pair).
namespace jeol_unit {
inline constexpr int kHertz = 13;
inline constexpr int kPpm = 26;
inline constexpr int kSecond = 28;
}  // namespace jeol_unit

struct JeolUnit {
    int base = 0;
    int exponent = 0;  // of the SI prefix: -3 for milli, 3 for kilo
};

struct JeolHeader {
    bool littleEndian = false;  // of the parameters and the data, not of this header
    int dimensions = 0;
    bool singlePrecision = false;  // 32-bit floats; otherwise 64-bit
    int format = 0;
    std::array<JeolAxisType, kJeolMaxAxes> axisType{};
    std::array<JeolUnit, kJeolMaxAxes> unit{};
    std::array<uint32_t, kJeolMaxAxes> points{};
    std::array<uint32_t, kJeolMaxAxes> offsetStart{}, offsetStop{};
    std::array<double, kJeolMaxAxes> axisStart{}, axisStop{};
    std::array<std::string, kJeolMaxAxes> axisTitle{};  // "Proton", "Carbon13", "13C" ...
    std::array<double, kJeolMaxAxes> baseFrequency{};   // MHz
    std::string title;
    uint32_t paramStart = 0, paramLength = 0;
    uint32_t dataStart = 0;
    uint64_t dataLength = 0;
};

// Nothing when fewer than kJeolHeaderBytes are given or the file identifier is not JEOL's.
std::optional<JeolHeader> parseJeolHeader(std::span<const unsigned char> bytes);

// One value of the parameter section, its number already in the SI unit its record names
// (seconds, Hz ...), or its text with the padding blanks removed.
struct JeolParameter {
    double number = 0.0;
    std::string text;
    bool isText = false;
};

// Parameters by lower-case name ("x_offset", "solvent", "orders" ...). `section` holds the
// bytes of the parameter section; records that would reach past it are not read.
std::map<std::string, JeolParameter> parseJeolParameters(std::span<const unsigned char> section,
                                                         bool littleEndian);

}  // namespace zolt

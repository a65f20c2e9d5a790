// Bruker's JCAMP-like parameter files (acqus, acqu2s, procs, acqp ...): one "##$NAME= value"
// line per parameter, sorted by name, array values on the lines after their label.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

// Parameter files are a few kB; anything larger is not one.
inline constexpr uintmax_t kMaxParameterFileBytes = uintmax_t{16} << 20;
// A value is parsed from at most this many characters after the "=".
inline constexpr size_t kParameterValueWindow = 32;

// Reads a whole text file; nullopt when it is missing, unreadable or above the size limit.
std::optional<std::string> readParameterFile(const std::string& path,
                                             uintmax_t maxBytes = kMaxParameterFileBytes);

enum class ParameterKind : uint8_t { Integer, Real, Text };

struct ParameterKey {
    std::string_view key;  // "##$TD=", with the "="
    ParameterKind kind = ParameterKind::Integer;
    int maxLength = 15;  // Text: characters kept
};

struct ParameterValue {
    bool found = false;  // the key was met and its value parsed
    int64_t integer = 0;
    double real = 0.0;
    std::string text;
};

// Parses the value right after a key the way scanf would ("%d", "%f", "%15s"), reading at most
// kParameterValueWindow characters of `text` from `offset`. Non-finite reals count as unparsed.
ParameterValue parseParameterValue(std::string_view text, size_t offset, const ParameterKey& key);

// The merge walk: a pointer moves through the sorted file while the keys, sorted too, are
// taken in order, so the whole file is passed once. The walk starts at the first key or, when
// that is absent, at the first "##$". One result per key, in the keys' order.
std::vector<ParameterValue> mergeWalkParameters(std::string_view text,
                                                std::span<const ParameterKey> keys);
// A plain search of the whole text, for a key the merge walk may have passed over.
ParameterValue findParameter(std::string_view text, const ParameterKey& key);

// "<CDCl3>" -> "CDCl3".
std::string withoutAngleBrackets(std::string_view value);

// What an acqus, acqu2s or acqu3s tells about its axis.
struct AcquisitionParameters {
    int aqMod = 0;
    int decim = 0;
    int dspfvs = 0;
    int dtypa = 0;
    int fnMode = 0;
    double grpdly = 0.0;
    std::string nuc1;     // as written, "<13C>"
    std::string nucleus;  // as written, "<off>"
    int nusTd = 0;
    double o1 = 0.0;
    std::string pulseProgram;  // as written, "<zg30>"
    double sfo1 = 0.0;
    std::string solvent;  // as written, "<CDCl3>"
    double sw = 0.0;      // ppm
    int td = 0;
    bool tdFound = false;
};
AcquisitionParameters parseAcquisitionParameters(std::string_view text);

// What a procs, proc2s or proc3s tells about its axis.
struct ProcessingParameters {
    bool offsetFound = false;
    double offset = 0.0;  // ppm of the first point
    double phc0 = 0.0;    // degrees
    double phc1 = 0.0;    // degrees
    int si = 0;
    int stsi = 0;
    int stsr = 0;
    double swP = 0.0;  // Hz
    int xdim = 0;
    // The window and its parameters (plain searches, outside the merge walk).
    bool windowFound = false;
    int wdw = 0;       // 0 none, 1 EM, 2 GM, 3 SINE, 4 QSINE, others not taken over
    double lb = 0.0;   // Hz
    double gb = 0.0;   // fraction of the acquisition time
    double ssb = 0.0;  // the sine bells start at pi / SSB
};
ProcessingParameters parseProcessingParameters(std::string_view text);

// The date stamp (first "$$ " line), D1 (second value of the D array) and NS of an acqus.
struct AcquisitionInfo;
AcquisitionInfo parseAcquisitionInfo(std::string_view text);

}  // namespace zolt

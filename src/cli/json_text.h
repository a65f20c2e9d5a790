// Small pieces of JSON text for the command-line output.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

// A quoted JSON string. Control characters are escaped; bytes that do not form UTF-8 are
// taken as Latin-1 so that the output is always valid UTF-8.
std::string jsonString(std::string_view text);
// The shortest text that reads back as the same value; null for NaN and infinities.
std::string jsonNumber(float value);
std::string jsonNumber(double value);

}  // namespace zolt

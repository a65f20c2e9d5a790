// The colour scales of the fast plot: eight functions from a signed palette position (about
// -255 ... 255, beyond that the ends) to a colour, white around zero. The preferences choose one
// by its number; 1 is the default.
#pragma once

#include <QRgb>
#include <array>

namespace zolt {

inline constexpr int kPaletteCount = 8;
inline constexpr int kDefaultPalette = 1;

// The names offered to the user, palette 1 first; palette 0, plain grey, has none.
inline constexpr std::array<const char*, 7> kPaletteNames = {
    "brown & blue",   "red & blue", "red & green", "green & blue",
    "phosphorescent", "galaxy",     "thermometer"};

// Palette numbers outside 0 ... 7 wrap around.
QRgb paletteColour(int palette, double position);

}  // namespace zolt

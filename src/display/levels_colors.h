// The rules of the Levels & Colors dialog, kept apart from its widgets: the plot mode list, the
// arrows of the level counts, the threshold and the ratio with their clamps, and the undo of
// every change since the dialog opened. The dialog works on the main plot of a page.
#pragma once

#include <array>
#include <cstdint>

#include "model/display_record.h"

namespace zolt {

// The plot modes offered, in the order of their index in the flags.
inline constexpr std::array<const char*, 7> kPlotModeNames = {
    "Fast Plot",    "Contours", "Gradient Contours", "Stacked Plot",
    "White-Washed", "Arrayed",  "Chessboard"};

struct LevelsColorsToolTips {
    static constexpr const char* plotMode = "Plot Mode for this Spectrum";
    static constexpr const char* positiveLevels = "number of positive contour levels";
    static constexpr const char* negativeLevels = "number of negative contour levels";
    static constexpr const char* threshold =
        "intensity value corresponding to the lowest solid contour";
    static constexpr const char* ratio = "constant ratio between adjacent levels";
    static constexpr const char* mainColor = "main color";
    static constexpr const char* auxiliaryColor = "auxiliary color";
    static constexpr const char* undo = "Undoes all changes since the dialog was opened";
};

inline constexpr int kMostContourLevels = 127;
inline constexpr float kThresholdArrowFactor = 1.02f;
inline constexpr float kLowestRatio2D = 1.15f, kLowestRatio1D = 0.01f, kHighestRatio = 3.0f;

// Everything the dialog changes, as it was when it opened.
struct LevelsColorsState {
    uint32_t plotMode = 0;
    int8_t positiveLevels = 0, negativeLevels = 0;
    float threshold = 1.0f, ratio = 1.0f;
    std::array<uint16_t, 3> color1{}, color2{};
};

// Nothing is read or changed on a page without plots.
LevelsColorsState levelsColorsState(const PageRecord& page);
// Undoes all changes: the state taken when the dialog opened comes back.
void restoreLevelsColors(PageRecord& page, const LevelsColorsState& opened);

// Index into kPlotModeNames; an index outside the list is ignored.
void choosePlotMode(DisplayParameters& plot, int index);
// One step up (direction > 0) or down, the count kept within 0 ... kMostContourLevels.
int8_t stepLevelCount(int8_t count, int direction);
// Times 1.02 up, divided by 1.02 down, kept within the bounds of any threshold.
float stepThreshold(float threshold, int direction);
// Plus or minus 0.02 with a vertical axis (clamped to 1.15 ... 3), 0.005 without (0.01 ... 3).
float stepRatio(float ratio, int direction, bool hasVertical);

}  // namespace zolt

// Where the document windows go in the frame's work space when they are tiled or cascaded, and
// the zoom that synchronised windows share.
#pragma once

#include <vector>

#include "model/spectrum_document.h"

namespace zolt {

namespace command_ids {
inline constexpr int kTileVertically = 901, kTileHorizontally = 902, kDoNotTile = 903;
}  // namespace command_ids

struct WindowRect {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const WindowRect&) const = default;
};

// Tile Vertically puts the windows side by side (each as tall as the work space), Tile
// Horizontally one above the other (each as wide).
enum class Tiling { Vertical, Horizontal };

// One rectangle per window, the front one first (left or top); together they cover the work
// space without overlapping. The last window takes the pixels a division leaves over.
std::vector<WindowRect> tileWindows(int count, int width, int height, Tiling tiling);

// Do Not Tile: each window at its usual size (shrunk to fit), the front one first; each window
// lies one step below and right of the one behind it, so the front one is lowest right.
std::vector<WindowRect> cascadeWindows(int count, int width, int height);

inline constexpr int kCascadeStep = 28;
inline constexpr int kUsualWindowWidth = 820, kUsualWindowHeight = 560;

// With Synchronize on, a horizontal zoom of one trace: every other trace shows the same ppm
// range, through the same display operation. Returns the documents that changed; maps and the
// source itself are left alone.
std::vector<SpectrumDocument*> zoomTracesAlike(const std::vector<SpectrumDocument*>& documents,
                                               const SpectrumDocument& source, double fromPpm,
                                               double toPpm);

}  // namespace zolt

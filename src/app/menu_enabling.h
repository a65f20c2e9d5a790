// What the frame enables and checks in a top-level menu as it opens; the front document then
// enables what applies to it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/command_table.h"

namespace zolt {

// What the frame knows when a menu opens.
struct FrameState {
    uint32_t flags = 0;  // the preference flags word
    int documents = 0;   // open documents that can be tiled
    bool frontDocument = false;
    int savedFormats = 0;
    bool focusWidget = false;  // some window has the keyboard focus
    bool consoleShown = false;
    bool crossPeaksOpen = false;
    int synchronisation = 0;  // 0 none, 1 smart marks, 2 synchronize
};

struct ItemState {
    int id = 0;
    bool enabled = false;
    bool checked = false;
    std::string text;  // a new text for the item, empty to keep its own
};

// The frame's items of menus 1-9 (every other item of those menus starts disabled).
std::vector<ItemState> frameMenuItems(Menu menu, const FrameState& state);

// The preference bit a frame command switches on and off (Call Open Babel, Fast Selection,
// First Order, Lock Equal Letters, Global Cross), 0 for any other command.
uint32_t toggledFlag(int id);

// Saved formats the Custom Format submenu holds at most before Save Current Format... stops.
inline constexpr int kMaxSavedFormats = 49;

inline constexpr const char* kShowConsoleText = "Show Console     Ctrl+0";
inline constexpr const char* kHideConsoleText = "Hide Console     Ctrl+0";

}  // namespace zolt

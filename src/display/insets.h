// The insets of a page: removing them, and the keys that rotate the plots.
#pragma once

#include "model/display_record.h"

namespace zolt {

// Inset mode 1: the main plot goes and the first inset takes its place (the mode returns to 0
// with no inset left). Mode 0: every inset goes.
void removeInsets(PageRecord& page);

// "7" moves the main plot to the end, "9" the last inset to the front, either setting the
// inset mode to 1; any other key toggles the mode. With no insets the mode is 0.
void pressInsetKey(PageRecord& page, char key);

}  // namespace zolt

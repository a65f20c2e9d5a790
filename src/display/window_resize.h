// How the plots of a page follow a resized window.
#pragma once

#include "model/display_record.h"

namespace zolt {

// No plot gets smaller than this, however small the window.
inline constexpr float kMinPlotPixels = 16.0f;

// The client area changed from w0 x h0 to w1 x h1 pixels: the main plot takes up the change,
// the insets keep their place relative to the window. Nothing happens when the size is the
// same or either size is empty.
void followResize(PageRecord& page, int w0, int h0, int w1, int h1);

}  // namespace zolt

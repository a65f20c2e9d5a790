// Moving the frequency scale of one axis (referencing): what is drawn along it moves too.
#pragma once

#include "model/display_record.h"
#include "model/spectrum_document.h"

namespace zolt {

// Every limit of an axis with f-index f moves by delta; a plot that shows f on neither axis
// has its zeta moved instead.
void moveScaleInRecords(PageRecord& page, int f, float delta);

// The axis itself (its lowest ppm, in the source and the matrix) and everything placed on it
// in ppm: the display records, the peak lists, the integral regions and the marks, so that
// they stay on the signals they were set on.
void moveFrequencyScale(SpectrumDocument& doc, int f, float delta);

}  // namespace zolt

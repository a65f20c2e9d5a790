// Exit and closing the frame: the question asked when documents are unsaved.
#pragma once

#include <string>
#include <vector>

#include "app/platform.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kQuitAnywayText = "quit anyway?";

// Documents whose modified flag is set.
int unsavedCount(const std::vector<SpectrumDocument*>& documents);
// "there is an unsaved document" or "there are %d unsaved documents".
std::string unsavedCaption(int count);

// Whether the program may quit: at once with nothing unsaved, else when the user answers OK.
// The question is always asked: there is no preference that turns it off.
bool confirmQuit(Platform& platform, const std::vector<SpectrumDocument*>& documents);

}  // namespace zolt

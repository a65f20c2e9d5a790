// Automatic processing at start-up: the start-up script is made sure of while the preferences
// are loaded, and decides whether newly read data are processed by it.
#pragma once

#include <cstdint>

#include "app/preferences.h"

namespace zolt {

// The StartupScriptCheck of loadPreferences: the flags with "Automatic Processing" set only when
// "autoexec.lua" is in the scripts folder, the default script being written there when it is
// missing. An unset folder becomes the default one; without a home folder the bit is cleared.
uint32_t ensureStartupScript(Preferences& prefs);

}  // namespace zolt

// Preferences changed for a limited time: switches set for this run only, put back when the
// time runs out or the program ends. Nothing of it is ever stored.
#pragma once

#include <cstdint>

#include "app/preferences.h"

namespace zolt {

struct TimedPreferences {
    uint32_t changed = 0;   // the switches set for a while
    uint32_t original = 0;  // their values before (only the bits of `changed` count)
    bool active() const { return changed != 0; }
};

// Sets the switches of `mask` to the bits of `values`; a switch already changed for a while
// keeps its first original value, so that restoring gives back what the user had.
void changeForAWhile(Preferences& prefs, TimedPreferences& timed, uint32_t mask, uint32_t values);
// Puts the changed switches back to their original values and forgets them.
void restoreTimedPreferences(Preferences& prefs, TimedPreferences& timed);
// The block as it is without the timed changes: what the settings dialog shows and stores.
Preferences lastingPreferences(const Preferences& prefs, const TimedPreferences& timed);

}  // namespace zolt

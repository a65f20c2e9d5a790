#include "app/timed_preferences.h"

namespace zolt {

void changeForAWhile(Preferences& prefs, TimedPreferences& timed, uint32_t mask, uint32_t values) {
    const uint32_t fresh = mask & ~timed.changed;
    timed.original = (timed.original & ~fresh) | (prefs.flags & fresh);
    timed.changed |= mask;
    prefs.flags = (prefs.flags & ~mask) | (values & mask);
}

void restoreTimedPreferences(Preferences& prefs, TimedPreferences& timed) {
    prefs = lastingPreferences(prefs, timed);
    timed = {};
}

Preferences lastingPreferences(const Preferences& prefs, const TimedPreferences& timed) {
    Preferences p = prefs;
    p.flags = (p.flags & ~timed.changed) | (timed.original & timed.changed);
    return p;
}

}  // namespace zolt

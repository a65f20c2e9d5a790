// How every zolt-cli command sets the program up from the user's settings storage.
#pragma once

#include <iosfwd>

#include "app/application.h"
#include "app/settings_store.h"

namespace zolt {

// The stored preferences; the start-up script is made sure of only when scripts run by
// themselves on opening, so that explicit scripts stay alone.
Preferences headlessPreferences(const SettingsStore& settings, bool automaticScripts);
// The settings the application reads later (peak-picking options), the automatic switch, and
// the picture writer of the `picture` command (which says on `err` when it cannot draw at all).
void useHeadlessSettings(Application& app, SettingsStore& settings, bool automaticScripts,
                         std::ostream& err);

}  // namespace zolt

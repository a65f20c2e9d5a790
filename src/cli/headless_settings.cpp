#include "cli/headless_settings.h"

#include "app/automatic_processing.h"

namespace zolt {

Preferences headlessPreferences(const SettingsStore& settings, bool automaticScripts) {
    return automaticScripts ? loadPreferences(settings, ensureStartupScript)
                            : loadPreferences(settings);
}

void useHeadlessSettings(Application& app, SettingsStore& settings, bool automaticScripts) {
    app.setAutomaticScripts(automaticScripts);
    app.setSettingsStore(&settings);
}

}  // namespace zolt

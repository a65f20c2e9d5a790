#include "cli/headless_settings.h"

#include "app/automatic_processing.h"
#include "cli/picture_module.h"

namespace zolt {

Preferences headlessPreferences(const SettingsStore& settings, bool automaticScripts) {
    return automaticScripts ? loadPreferences(settings, ensureStartupScript)
                            : loadPreferences(settings);
}

void useHeadlessSettings(Application& app, SettingsStore& settings, bool automaticScripts,
                         std::ostream& err) {
    app.setAutomaticScripts(automaticScripts);
    app.setSettingsStore(&settings);
    app.setPictureWriter(
        [&app, &err](const SpectrumDocument& doc, const std::string& path, std::string_view type) {
            const ModulePictureWriter write = pictureModule(err);
            return write && write(doc, path, type, app.preferences());
        });
}

}  // namespace zolt

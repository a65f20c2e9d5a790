#include "cli/headless_settings.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

#include "app/automatic_processing.h"
#include "plot/page_renderer.h"
#include "plot/picture_output.h"

namespace zolt {

// Drawing needs a GUI application object, but no screen. Commands that draw nothing never pay
// for one: it is made when the first picture is written and lives until the program ends.
void ensureGuiApplication() {
    if (QCoreApplication::instance()) return;
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") &&
        !std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static int argc = 1;
    static char name[] = "zolt-cli";
    static char* argv[] = {name, nullptr};
    static std::unique_ptr<QGuiApplication> gui = std::make_unique<QGuiApplication>(argc, argv);
}

Preferences headlessPreferences(const SettingsStore& settings, bool automaticScripts) {
    return automaticScripts ? loadPreferences(settings, ensureStartupScript)
                            : loadPreferences(settings);
}

void useHeadlessSettings(Application& app, SettingsStore& settings, bool automaticScripts) {
    app.setAutomaticScripts(automaticScripts);
    app.setSettingsStore(&settings);
    app.setPictureWriter(
        [&app](const SpectrumDocument& doc, const std::string& path, std::string_view type) {
            ensureGuiApplication();
            return writePicture(doc, path, type, {}, renderStyle(app.preferences()));
        });
}

}  // namespace zolt

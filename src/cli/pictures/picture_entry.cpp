// The picture module of zolt-cli: the renderer behind the executable's picture writer. Only the
// drawing is here; the documents, their processing and the preferences stay in the executable,
// whose symbols this module uses.
#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "cli/picture_module.h"
#include "plot/picture_output.h"

// Drawing needs a GUI application object, but no screen: made once, when the module is loaded,
// for the rest of the run.
extern "C" __attribute__((visibility("default"))) void zolt_cli_pictures_start() {
    if (QCoreApplication::instance()) return;
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") &&
        !std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static int argc = 1;
    static char name[] = "zolt-cli";
    static char* argv[] = {name, nullptr};
    static std::unique_ptr<QGuiApplication> gui = std::make_unique<QGuiApplication>(argc, argv);
}

extern "C" __attribute__((visibility("default"))) bool zolt_cli_write_picture(
    const zolt::SpectrumDocument& doc, const std::string& path, std::string_view type,
    const zolt::Preferences& prefs) {
    return zolt::writePicture(doc, path, type, {}, zolt::renderStyle(prefs));
}

static_assert(std::is_same_v<decltype(&zolt_cli_write_picture), zolt::ModulePictureWriter>,
              "the executable calls the writer through this type");

#include "app/automatic_processing.h"

#include "scripting/startup_script.h"

namespace zolt {

uint32_t ensureStartupScript(Preferences& prefs) {
    uint32_t flags = prefs.flags & ~pref_flags::kAutomaticProcessing;
    if (!prefs.scriptsFolder || prefs.scriptsFolder->empty()) {
        const std::string folder = defaultScriptsFolder();
        if (folder.empty()) return flags;
        prefs.scriptsFolder = folder;
    }
    if (ensureStartupScriptIn(*prefs.scriptsFolder)) flags |= pref_flags::kAutomaticProcessing;
    return flags;
}

}  // namespace zolt

#include "scripting/startup_script.h"

#include <filesystem>

#include "base/files.h"
#include "base/paths.h"

namespace zolt {

bool ensureStartupScriptIn(const std::string& folder) {
    if (folder.empty()) return false;
    std::error_code ec;
    std::filesystem::create_directories(toPath(folder), ec);
    if (!isDirectory(folder)) return false;
    const std::string path = fromPath(toPath(folder) / kStartupScriptFile);
    if (pathExists(path)) return true;
    // All or nothing: a half-written script would run as one.
    return writeFileReplacing(path, defaultStartupScript());
}

}  // namespace zolt

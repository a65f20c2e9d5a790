#include "cli/picture_module.h"

#include <dlfcn.h>

#include <filesystem>
#include <iostream>

namespace zolt {

namespace {

using StartFunction = void (*)();

struct LoadedModule {
    ModulePictureWriter writer = nullptr;
    std::string error;
};

// The module beside the executable itself, wherever that was started from or linked to.
std::string modulePath() {
    std::error_code ec;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ((ec ? std::filesystem::path(".") : exe.parent_path()) / kPictureModuleName).string();
}

LoadedModule load() {
    // Every symbol bound now: a module that does not fit the executable fails here, with the
    // loader's reason, and never in the middle of a drawing.
    void* handle = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) return {nullptr, dlerror()};
    auto start = reinterpret_cast<StartFunction>(dlsym(handle, "zolt_cli_pictures_start"));
    auto writer = reinterpret_cast<ModulePictureWriter>(dlsym(handle, "zolt_cli_write_picture"));
    if (!start || !writer) return {nullptr, modulePath() + ": not a zolt-cli picture module"};
    start();
    return {writer, {}};
}

}  // namespace

ModulePictureWriter pictureModule(std::ostream& err) {
    static const LoadedModule module = load();
    if (!module.writer) err << "zolt-cli: cannot load the picture module: " << module.error << '\n';
    return module.writer;
}

}  // namespace zolt

// zolt-cli's pictures: the renderer and Qt's GUI libraries live in a module beside the
// executable, loaded when something first draws, so that the commands that draw nothing start
// without mapping them.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "app/preferences.h"
#include "model/spectrum_document.h"

namespace zolt {

// The module's one entry: the page of `doc` written to `path` as `type` ("PNGf", "PDF " ...,
// else by the extension) in the style `prefs` give; false when the format is unknown or the file
// cannot be written.
using ModulePictureWriter = bool (*)(const SpectrumDocument& doc, const std::string& path,
                                     std::string_view type, const Preferences& prefs);

// The module's file name, in the executable's folder.
inline constexpr const char* kPictureModuleName = "zolt-cli-pictures.so";

// Loads the module on first call and makes its GUI application; nullptr when it cannot be
// loaded, after "zolt-cli: cannot load the picture module: REASON" on `err` (at every call, so
// that each drawing command says why it drew nothing).
ModulePictureWriter pictureModule(std::ostream& err);

}  // namespace zolt

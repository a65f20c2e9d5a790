// A document package: a folder holding the processed intensities as "data" and the
// document describing them as "plist.zolt", which opens again as a document.
#pragma once

#include <string>

#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kExportDataName = "data";
inline constexpr const char* kExportDocumentName = "plist.zolt";

// Creates the folder when needed. False when anything cannot be written; a package that
// could not be completed leaves no "plist.zolt" behind.
bool exportPackage(const SpectrumDocument& doc, const std::string& folder);

}  // namespace zolt

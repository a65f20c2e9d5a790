// A document package: a folder holding the processed intensities as "data" and the
// document describing them as "plist.zolt", which opens again as a document.
#pragma once

#include <string>

#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kExportDataName = "data";
inline constexpr const char* kExportDocumentName = "plist.zolt";

// Creates the folder when needed. The package is written whole beside the folder and then
// takes its place, so that a failure (false) leaves the previous package as it was; other
// files in the folder stay with the new package.
bool exportPackage(const SpectrumDocument& doc, const std::string& folder);

}  // namespace zolt

// The saved document that a data path leads to: the one beside the data file, the folder's, or
// the one kept with the spectrometer's processed data.
#pragma once

#include <string>

#include "io/format_recognition.h"

namespace zolt {

// True when a data file (not itself a document) has its saved document beside it.
bool hasCompanionDocument(const std::string& path);

// The document file of a path recognised as a document: the path itself when it is one, its
// companion document, the folder's plist.zolt, or, with the preference for processed-data
// documents, pdata/1/plist.zolt; the path itself when none exists.
std::string documentFileFor(const std::string& path, const RecognitionOptions& recognition);

}  // namespace zolt

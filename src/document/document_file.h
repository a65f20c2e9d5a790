// The document file: a property list that refers to the raw data and records the
// processing, the display and the analysis; never the intensities.
#pragma once

#include <memory>
#include <string>

#include "base/message.h"
#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr int kWriterVersion = 711;
inline constexpr const char* kLastUseStamp = "1995-10-08T07:57:45Z";
inline constexpr const char* kNewerVersionCaption = "This file requires another version of Zolt";
inline constexpr const char* kNewerVersionText =
    "You can either update your copy of the program or rename the *.zolt file";
inline constexpr const char* kSystemErrorCaption = "There was a System Error";
inline constexpr const char* kSystemErrorText = "Failed to Create the File";

// The root dictionary of a document; each section file adds its own keys.
plist::Value* buildDocumentTree(const SpectrumDocument& doc);

// The document file of a spectrum: beside its raw data, the raw file name with ".zolt".
std::string documentPathFor(const SpectrumDocument& doc);

struct SaveResult {
    bool ok = false;
    Message message;  // on failure
};

// Writes the new document completely before the previous one is renamed to its "back" file
// (doBackUp) or replaced, so that a failure never loses the previous version.
SaveResult saveDocument(const SpectrumDocument& doc, const std::string& path, bool doBackUp);

struct DocumentRead {
    std::unique_ptr<SpectrumDocument> document;  // source, metadata, steps; no matrix yet
    Message message;                             // on failure
};

// Parses a document file and rebuilds its source (locating moved raw data), metadata and
// processing record. The caller reads the data and replays the processing.
DocumentRead readDocumentFile(const std::string& path);

}  // namespace zolt

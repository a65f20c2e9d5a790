// Reading a data set into a new document, and walking a folder for data sets.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/message.h"
#include "app/preferences.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr size_t kMaxDocuments = 30;
inline constexpr const char* kTooManyCaption = "Too Many Document Windows";
inline constexpr const char* kTooManyText = "you can't exceed the maximum of 30";
inline constexpr const char* kNothingRecognisedCaption = "Complete Failure: no file was recognized";
inline constexpr const char* kNothingRecognisedText =
    "Hint: try starting from an outer or an inner folder";
// Path components a window name keeps.
inline constexpr int kWindowNameDepth = 3;

// A file, or an experiment folder, read, completed and loaded, with the default FT steps of
// its time-domain axes. Nothing, and the message to show, when it cannot be read.
std::unique_ptr<SpectrumDocument> readDocument(const std::string& path, const Preferences& prefs,
                                               Message& failure);

// True when the folder itself is one data set (its parameter file lies inside).
bool isDataSetFolder(const std::string& path);

// The data sets inside a folder, in directory order: sub-folders that are data sets, and
// files of a format this program reads; other sub-folders are searched in turn. The visitor
// returns false to stop the walk.
void walkDataSets(const std::string& folder, const std::function<bool(const std::string&)>& visit);

// The last components of the data path (the file name only for loose native files).
std::string windowNameFor(const SpectrumSource& source);

}  // namespace zolt

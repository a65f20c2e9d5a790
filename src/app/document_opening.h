// Reading a data set into a new document, and naming its window.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "app/preferences.h"
#include "base/message.h"
#include "io/reader_table.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr size_t kMaxDocuments = 30;
inline constexpr const char* kTooManyCaption = "Too Many Document Windows";
inline constexpr const char* kTooManyText = "you can't exceed the maximum of 30";
inline constexpr const char* kNothingRecognisedCaption = "Complete Failure: no file was recognized";
inline constexpr const char* kNothingRecognisedText =
    "Hint: try starting from an outer or an inner folder";
inline constexpr const char* kMissingPathText = "This file or folder does not exist";
// Path components a window name keeps.
inline constexpr int kWindowNameDepth = 3;

// A file, or an experiment folder, read by its format's row of `readers`, completed and loaded,
// with the default FT steps of its time-domain axes; a saved document read again with its
// processing, unless `customWorkflows` says its custom workflow will run in its place. Nothing,
// and the message to show, when it cannot be read or does not exist.
std::unique_ptr<SpectrumDocument> readDocument(const std::string& path, const Preferences& prefs,
                                               Message& failure,
                                               std::span<const ReaderRow> readers = readerTable(),
                                               bool customWorkflows = false);

// The last components of the data path (the file name only for loose native files).
std::string windowNameFor(const SpectrumSource& source);

}  // namespace zolt

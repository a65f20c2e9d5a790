// The keys of a document file that this program reads but does not fill (another program's,
// a newer version's, lists it cannot edit yet): kept as read and written back unchanged.
#pragma once

#include <memory>
#include <string_view>

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

struct KeptKeys {
    plist::Shared root;  // the root dictionary as read
};

// Keeps the root dictionary (sharing it, not copying).
std::shared_ptr<const KeptKeys> keepKeys(plist::Value* root);

// Whether a section fills the key itself from the document.
using FilledKey = bool (*)(std::string_view key);

// Adds to `built` every entry of `kept` whose key is not filled, in the order read; the values
// are shared with `kept`. Nothing when either is not a dictionary.
void addKeptKeys(plist::Value* built, const plist::Value* kept, FilledKey filled);

// The entry of the kept root under `key`, or nullptr.
const plist::Value* keptEntry(const SpectrumDocument& doc, std::string_view key);

}  // namespace zolt

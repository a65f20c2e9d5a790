// The "spectroscopy" dictionary of a document file: the source of a spectrum with its axes.
#pragma once

#include <optional>
#include <string_view>

#include "io/plist.h"
#include "model/spectrum_matrix.h"
#include "model/spectrum_source.h"

namespace zolt {

// The phases are taken from the matrix when there is one (they change as the spectrum is
// phased), otherwise from the source.
plist::Value* sourceToTree(const SpectrumSource& source, const SpectrumMatrix* matrix);
// The source from a "spectroscopy" dictionary; the raw file is not located here.
std::optional<SpectrumSource> sourceFromTree(const plist::Value* spectroscopy);
// Whether sourceToTree fills the key (whether or not it writes it for a given source).
bool isSourceKey(std::string_view key);

}  // namespace zolt

// Turns a source into the working matrix: reads and converts the raw numbers.
#pragma once

#include <optional>
#include <string>

#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kReadErrorCaption = "Failed to Read the file";
inline constexpr const char* kReadErrorText = "Error found while trying to read data-points";

// Largest matrix the loader builds, in bytes of floats (guards hostile point counts).
inline constexpr size_t kMaxMatrixBytes = size_t{4} << 30;

// nullopt when the file is missing, too short or its sizes are out of bounds.
std::optional<SpectrumMatrix> loadMatrix(const SpectrumSource& source);

}  // namespace zolt

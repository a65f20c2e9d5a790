// Transforms the next time-domain dimension of a document into the frequency domain.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/message.h"
#include "model/spectrum_document.h"

namespace zolt {

inline constexpr const char* kTooLargeCaption = "The size of this spectrum can't be handled";
inline constexpr const char* kTooLargeText = "Try reducing the size of the spectrum";
inline constexpr const char* kNusMissingCaption = "Missing NUS Metadata";
inline constexpr const char* kNusMissingText =
    "The file 'nuslist' is missing or unreadable. This file is required to map the "
    "experimental points onto the full grid.";
inline constexpr const char* kNusMemoryCaption = "Insufficient Memory";
inline constexpr const char* kNusMemoryText =
    "Could not allocate the expanded matrix for NUS reconstruction. Try reducing the Zero "
    "Filling or closing other spectra.";

// Largest number of floats per array the transform accepts.
inline constexpr size_t kMaxTransformFloats = 0x20000000;

enum class FtOutcome {
    Transformed,
    LeftUntransformed,       // FT size below 32: phases cleared, the axis counted as done
    StoppedBeforeTransform,  // transient flag 0x4000: weighted, zero-filled time domain
    NothingToTransform,      // no time-domain dimension left, or the matrix does not fit it
    TooLarge,
    RotationFailed,  // silent
    NusListMissing,
    NusNoMemory,
};

struct FtResult {
    FtOutcome outcome = FtOutcome::NothingToTransform;
    std::optional<Message> message;
    // What the transform command reports: true unless the transient stop flag was set.
    bool proceeds() const { return outcome != FtOutcome::StoppedBeforeTransform; }
};

// Transforms the highest remaining time-domain dimension (the source's highest t-index) by
// its Fourier-transform step, adding the default step when the record has none. NUS axes read
// the "nuslist" beside the raw data; the sampled rows are placed on the full grid, the others
// left at zero.
FtResult transformNextDimension(SpectrumDocument& doc);

// The sampling list of a NUS acquisition: one increment number per line. nullopt when the
// file is missing, empty, or holds anything but non-negative integers.
std::optional<std::vector<uint32_t>> readNusList(const std::string& path);

}  // namespace zolt

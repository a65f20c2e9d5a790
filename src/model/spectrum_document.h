// An open spectrum: its source, its working matrix and its sample metadata.
#pragma once

#include <string>

#include "model/processing_step.h"
#include "model/spectrum_matrix.h"
#include "model/spectrum_source.h"

namespace zolt {

struct SampleMetadata {
    std::string title;             // "optional title"
    std::string formula;           // "ASCII formula"
    std::string smiles;            // "SMILES string"
    std::string solvent;           // "solvent"
    std::string pulseSequence;     // "pulse sequence"
    float temperature = 0.0f;      // saved only when not zero
};

struct SpectrumDocument {
    SpectrumSource source;
    SpectrumMatrix matrix;
    SampleMetadata metadata;
    ProcessingRecord processing;
};

}  // namespace zolt

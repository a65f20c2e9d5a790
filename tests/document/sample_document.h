// A document as a reader leaves it, for the document file's tests.
#pragma once

#include <fstream>
#include <string>

#include "model/spectrum_document.h"

namespace zolt::testing_documents {

// A 2-D document as a Bruker reader leaves it, beside a raw file in a temporary folder.
inline SpectrumDocument sampleDocument(const std::string& folder) {
    SpectrumDocument doc;
    doc.source.rawPath = folder + "/ser";
    doc.source.fileName = "ser";
    std::ofstream(doc.source.rawPath) << "raw";
    doc.source.provenance = "Bruker";
    doc.source.numberType = NumberType::Long;
    doc.source.flags = source_flags::kInterleaved | source_flags::kLittleEndian;
    doc.source.blockSize = 8192;
    doc.source.blockHeader = 0;
    doc.source.highestTIndex = 2;
    doc.source.xIndex = 2;
    doc.source.yIndex = 1;
    doc.source.dims[2] = {1024, 0, 12.5f, -1.25f, 600.13f, 0.5f, -0.25f, -76.0f, 1, {'H', 0}};
    doc.source.dims[1] = {256, 128, 160.0f, -10.0f, 150.9f, 0.0f, 0.0f, 0.0f, 13, {'C', 0}};
    doc.source.ftPreferences = {0, 6, 3, 0};
    doc.metadata.title = "cyclosporin\nHSQC";
    doc.metadata.solvent = "C6D6";
    doc.metadata.temperature = 298.0f;
    FourierTransformStep ft;
    ft.ftSize = 2048;
    ft.flags = ft_flags::kApplyWeights | ft_flags::kExponential;
    ft.weights[kWeightExponential] = 0.3f;
    doc.processing.steps.push_back({2, ft});
    doc.processing.doneMask = done_mask::transformed(2);
    return doc;
}

}  // namespace zolt::testing_documents

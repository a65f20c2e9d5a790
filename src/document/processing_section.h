// The processing part of a document file: "processing parameters" (the steps and the mask of
// the operations performed) and "performed processing" (the log, for readers of the file).
#pragma once

#include "io/plist.h"
#include "model/spectrum_document.h"

namespace zolt {

plist::Value* processingToTree(const ProcessingRecord& record);
// False when a step is malformed (a required key missing); the record is then incomplete and
// the document must not open. Nothing changes without a dictionary.
bool processingFromTree(const plist::Value* parameters, ProcessingRecord& record);

// The log's text, one string per non-empty line. The Whittaker lambda of the log takes the
// point counts of the document's matrix.
plist::Value* performedProcessingToTree(const SpectrumDocument& doc);

}  // namespace zolt

// Writing a document's data out in other programs' formats.
#pragma once

#include <string>

#include "model/spectrum_document.h"

namespace zolt {

// The intensity the JCAMP-DX export writes as 80000: the range the main plot shows, or, for a
// document never drawn, its largest absolute real value (1 for an empty one).
double jcampReferenceIntensity(const SpectrumDocument& doc);

// Writes the 1-D document (an FID while its axis is in the time domain, else its spectrum) as
// a JCAMP-DX file titled with the document's optional title. False, and nothing written, for a
// document of more than one dimension or without points, and when the file cannot be created:
// the caller sounds the error tone.
bool exportJcamp(const SpectrumDocument& doc, const std::string& path);

}  // namespace zolt

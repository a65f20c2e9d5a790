// An open spectrum: its source, its working matrix and its sample metadata.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/display_record.h"
#include "model/integral_region.h"
#include "model/peak_list.h"
#include "model/processing_step.h"
#include "model/spectrum_matrix.h"
#include "model/spectrum_source.h"

namespace zolt {

struct SampleMetadata {
    std::string title;          // "optional title"
    std::string formula;        // "ASCII formula"
    std::string smiles;         // "SMILES string"
    std::string solvent;        // "solvent"
    std::string pulseSequence;  // "pulse sequence"
    float temperature = 0.0f;   // saved only when not zero
};

// How the document window was laid out when saved.
struct WindowState {
    std::array<int, 7> pageAndMargins{};  // page size and the four margins
    bool freeSize = false;                // the plot is not tied to the page
    bool drawer = false;                  // the side drawer is open
    int pageNumber = 0;
    bool hasBounds = false;
    std::array<int, 4> bounds{};  // left, top, right, bottom in the frame's client area
};

// The weighting and transform size the spectrometer's own software used for one axis (Bruker
// procs, proc2s, proc3s): a newly read document starts its Fourier-transform steps from them.
struct VendorProcessing {
    bool present = false;
    int window = 0;  // 0 none, 1 exponential, 2 gaussian, 3 sine bell, 4 squared sine bell
    double lineBroadening = 0.0;    // Hz; negative with the gaussian
    double gaussianFraction = 0.0;  // where the gaussian peaks, a fraction of the acquisition
    double sineBellDivisor = 0.0;   // the bells start at pi / divisor (0 or 1: a pure sine)
    int ftSize = 0;                 // complex points
};

// Bits of a document's flags word.
namespace document_flags {
inline constexpr uint32_t kCustomWorkflow = 0x4000;
inline constexpr uint32_t kModified = 0x20000;
}  // namespace document_flags

// What a document file held beyond what this program fills (a newer program's keys, lists not
// yet edited here); defined by the document file, which writes it back unchanged.
struct KeptKeys;

struct SpectrumDocument {
    SpectrumSource source;
    SpectrumMatrix matrix;
    SampleMetadata metadata;
    ProcessingRecord processing;
    WindowState windowState;
    // Lowest program version able to read the saved file: a source new from a reader is 141.
    int readWithVersion = 141;
    bool writtenByNewerVersion = false;
    std::string windowName;
    // The document file it was opened from or last saved to; empty for a new document.
    std::string documentPath;
    uint32_t flags = 0;  // document_flags
    // The spectrometer's own processing of each axis (by f-index), when the reader found it.
    std::array<VendorProcessing, 4> vendorProcessing{};
    // What the window shows and at which scale; the normalisation of the integrals.
    PageRecord page;
    PeakLists peaks;
    std::vector<IntegralRegion> integrals;
    // Marked ppm positions of the horizontal and of the vertical axis.
    std::array<std::vector<float>, 2> marks;
    // Shared by copies: it is never changed once read.
    std::shared_ptr<const KeptKeys> keptKeys;
};

}  // namespace zolt

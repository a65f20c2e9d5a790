// Sorting a path to one of the known spectrometer and document formats.
#pragma once

#include <string>

namespace zolt {

// Names and readers of the codes: io/reader_table.h.
enum class FormatCode : int {
    Zolt = 0,
    Bruker = 1,
    ParaVision = 2,
    Varian = 3,
    Spinsight = 4,
    WinNmr = 5,
    CaraXEasy = 6,
    SpinSystemDocument = 7,
    PosterDocument = 8,
    Tavrel = 9,
    Corvane = 10,
    Aspect = 11,
    NtNmr = 12,
    JeolDelta = 13,
    JeolGx = 14,
    JcampDx = 15,
    GeMedNmr = 16,
    Siemens = 17,
    Philips = 18,
    MacNmr = 19,
    Alice = 20,
    Ascii = 21,
    NmrPipe = 22,
    MacFid = 23,
    Simpson = 24,
    Nuts2 = 25,
    Clipping = 26,
    Unknown = 27,
    MoleculeFile = 28,
};

struct RecognitionOptions {
    // The preference for processed-data documents: pdata/1/plist.zolt wins over acqus.
    bool preferProcessedDocuments = false;
};

// The first matching rule wins: extensions of documents, companion documents, parameter
// files in the folder, extensions of data files, content signatures, molecule files.
FormatCode recognizeFormat(const std::string& path, const RecognitionOptions& options = {});

// The document saved beside a data file: "fid" gives "fid.zolt"; a spin-system or poster
// document is its own.
std::string companionDocumentPath(const std::string& path);

// Structure files (molfile, SD file, ...) that can only be shown inside a spectrum.
bool isMoleculeFile(const std::string& path);

inline constexpr const char* kMoleculeFileCaption = "Open an NMR spectrum first";
inline constexpr const char* kMoleculeFileText =
    "You have chosen a kind of file that Zolt can only show within another document.";

}  // namespace zolt

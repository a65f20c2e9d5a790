#include "io/reader_table.h"

#include "io/bruker/bruker_reader.h"
#include "io/jcamp/jcamp_reader.h"
#include "io/jeol/jeol_reader.h"
#include "io/nmrpipe/nmrpipe_reader.h"
#include "io/text_header/text_header_reader.h"
#include "io/varian/varian_reader.h"

namespace zolt {

namespace {

// Saved documents are read by the document layer: their row only names them and marks the
// folders they describe. Formats without a reader mark no folder, so that walking a folder
// does not stop at data it cannot open.
constexpr ReaderRow kReaders[] = {
    {FormatCode::Zolt, "Zolt", nullptr, "plist.zolt"},
    {FormatCode::Bruker, "Bruker", readBrukerFolder, "acqus"},
    {FormatCode::ParaVision, "ParaVision", readParaVision, "acqp"},
    {FormatCode::Varian, "Varian", readVarianFolder, "procpar"},
    {FormatCode::Spinsight, "Spinsight", nullptr, nullptr},
    {FormatCode::WinNmr, "Win-NMR", readWinNmr, nullptr},
    {FormatCode::CaraXEasy, "CARA-XEasy", nullptr, nullptr},
    {FormatCode::Tavrel, "Tavrel", nullptr, nullptr},
    {FormatCode::Corvane, "Corvane", nullptr, nullptr},
    {FormatCode::Aspect, "Aspect", nullptr, nullptr},
    {FormatCode::NtNmr, "NT-NMR", nullptr, nullptr},
    {FormatCode::JeolDelta, "Jeol Delta", readJeolDelta, nullptr},
    {FormatCode::JeolGx, "Jeol GX", nullptr, nullptr},
    {FormatCode::JcampDx, "JCAMP-DX", readJcamp, nullptr},
    {FormatCode::GeMedNmr, "GE_MED_NMR", nullptr, nullptr},
    {FormatCode::Siemens, "Siemens", readTextHeader, nullptr},
    {FormatCode::Philips, "Philips", nullptr, nullptr},
    {FormatCode::MacNmr, "MacNMR", nullptr, nullptr},
    {FormatCode::Alice, "Alice", nullptr, nullptr},
    {FormatCode::Ascii, "ASCII", nullptr, nullptr},
    {FormatCode::NmrPipe, "NMRPipe", readNmrPipe, nullptr},
    {FormatCode::MacFid, "MacFID", nullptr, nullptr},
    {FormatCode::Simpson, "Simpson", nullptr, nullptr},
    {FormatCode::Nuts2, "Nuts 2", nullptr, nullptr},
};

}  // namespace

std::span<const ReaderRow> readerTable() {
    return kReaders;
}

const ReaderRow* findReader(FormatCode code, std::span<const ReaderRow> rows) {
    for (const ReaderRow& row : rows)
        if (row.code == code) return &row;
    return nullptr;
}

const char* formatName(FormatCode code, std::span<const ReaderRow> rows) {
    const ReaderRow* row = findReader(code, rows);
    return row ? row->name : "Zolt";
}

std::string incoherentFileText(FormatCode code, std::span<const ReaderRow> rows) {
    return std::string("This ") + formatName(code, rows) + " file seems incoherent";
}

}  // namespace zolt

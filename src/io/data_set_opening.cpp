#include "io/data_set_opening.h"

#include "io/byte_order_probe.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"

namespace zolt {

std::optional<DataSetRead> readDataSet(const std::string& path, FormatCode code,
                                       ReadOptions options, Message& failure,
                                       std::span<const ReaderRow> rows) {
    if (code == FormatCode::MoleculeFile) {
        failure = {kMoleculeFileCaption, kMoleculeFileText};
        return std::nullopt;
    }
    if (code == FormatCode::Unknown) {
        failure = {kReadErrorCaption, kUnknownFormatText};
        return std::nullopt;
    }
    const ReaderRow* row = findReader(code, rows);
    std::optional<DataSetRead> read;
    if (row && row->read) {
        read = row->read(path, options);
        if (!read && !options.processed) {
            // An experiment kept without its raw data still shows its processed spectrum.
            options.processed = true;
            read = row->read(path, options);
        }
    }
    if (!read) {
        failure = {kReadErrorCaption, incoherentFileText(code, rows)};
        return std::nullopt;
    }
    SpectrumSource& s = read->source;
    completeSource(s);
    s.provenance = row->name;
    using namespace source_flags;
    const bool integers = s.numberType == NumberType::Long || s.numberType == NumberType::Short;
    if (integers && !(s.flags & (kLittleEndian | kVarianBinary))) probeByteOrder(s);
    return read;
}

}  // namespace zolt

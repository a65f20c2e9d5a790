#include "io/data_set_opening.h"

#include <filesystem>

#include "base/paths.h"
#include "io/byte_order_probe.h"
#include "io/data_set_walk.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"

namespace zolt {

namespace {

// Raw data that are there but cannot be read are reported: only an experiment kept without
// them falls back to its processed spectrum.
bool keptWithoutRawData(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path given = toPath(path);
    const auto folder = std::filesystem::is_directory(given, ec) ? given : given.parent_path();
    return !pathExists(dataFileOf(fromPath(folder)));
}

}  // namespace

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
        if (!read && !options.processed && keptWithoutRawData(path)) {
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

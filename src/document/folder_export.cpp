#include "document/folder_export.h"

#include <bit>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "document/document_file.h"
#include "processing/dimension_rotation.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

// The working matrix in the layout the loader reads: direct axis contiguous, first
// hypercomplex half only.
SpectrumMatrix exportLayout(const SpectrumMatrix& m, int direct) {
    SpectrumMatrix copy = m;
    if (copy.dims[0].points == 2) {
        const size_t half = copy.re.size() / 2;
        copy.re.resize(half);
        if (!copy.im.empty()) copy.im.resize(half);
        copy.dims[0].points = 1;
    }
    if (direct > 0 && copy.contiguous != direct) rotateToContiguous(copy, direct);
    return copy;
}

// Little-endian 32-bit floats, real and imaginary parts adjacent.
bool writeSamples(const SpectrumMatrix& m, const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    const bool complex = !m.im.empty();
    std::vector<unsigned char> buffer;
    buffer.reserve(size_t{1} << 16);
    bool ok = true;
    auto putFloat = [&buffer](float v) {
        uint32_t bits = std::bit_cast<uint32_t>(v);
        for (int b = 0; b < 4; ++b) buffer.push_back(static_cast<unsigned char>(bits >> (8 * b)));
    };
    for (size_t i = 0; i < m.re.size() && ok; ++i) {
        putFloat(m.re[i]);
        if (complex) putFloat(m.im[i]);
        if (buffer.size() >= (size_t{1} << 16) - 8 || i + 1 == m.re.size()) {
            ok = std::fwrite(buffer.data(), 1, buffer.size(), f) == buffer.size();
            buffer.clear();
        }
    }
    return std::fclose(f) == 0 && ok;
}

}  // namespace

bool exportPackage(const SpectrumDocument& doc, const std::string& folder) {
    if (doc.matrix.re.empty()) return false;
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (!fs::is_directory(folder, ec)) return false;

    const int direct = directFIndex(doc.matrix.dims);
    const SpectrumMatrix m = exportLayout(doc.matrix, direct);
    const std::string dataPath = (fs::path(folder) / kExportDataName).string();
    const std::string documentPath = (fs::path(folder) / kExportDocumentName).string();
    fs::remove(documentPath, ec);
    if (!writeSamples(m, dataPath)) return false;

    // The package describes the intensities as they are: nothing left to replay.
    SpectrumDocument package;
    package.metadata = doc.metadata;
    package.windowState = doc.windowState;
    SpectrumSource& s = package.source;
    s.rawPath = dataPath;
    s.fileName = kExportDataName;
    s.provenance = doc.source.provenance;
    s.numberType = NumberType::Float;
    s.flags = source_flags::kLittleEndian;
    if (m.im.empty()) s.flags |= source_flags::kRealOnly;
    if (m.state & matrix_state::kMagnitude) s.flags |= source_flags::kMagnitude;
    s.blockSize = kDefaultBlockSize;
    s.dims = m.dims;
    s.dims[0] = {};
    s.dims[0].points = 1;
    s.ftPreferences = doc.source.ftPreferences;
    s.phaseable = doc.source.phaseable;
    s.highestTIndex = doc.source.highestTIndex;
    s.xIndex = doc.source.xIndex;
    s.yIndex = doc.source.yIndex;
    s.zIndex = doc.source.zIndex;
    for (const ProcessingStep& step : doc.processing.steps)
        if (step.kind() == StepKind::FourierTransform) package.processing.steps.push_back(step);
    package.readWithVersion = doc.readWithVersion;
    return saveDocument(package, documentPath, false).ok;
}

}  // namespace zolt

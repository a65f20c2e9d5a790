#include "document/folder_export.h"

#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include "base/files.h"
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
    ok = ok && std::fflush(f) == 0 && ::fsync(::fileno(f)) == 0;
    return std::fclose(f) == 0 && ok;
}

constexpr const char* kPackageFiles[] = {kExportDataName, kExportDocumentName};

bool isPackageFile(const fs::path& name) {
    for (const char* file : kPackageFiles)
        if (name == file) return true;
    return false;
}

// Moves the new package in place of the old one, whose other files move over with it. The old
// folder is removed only once it holds nothing of its own any more.
bool swapIn(const fs::path& fresh, const fs::path& target) {
    std::error_code ec;
    if (!fs::exists(fs::symlink_status(target, ec))) {
        fs::rename(fresh, target, ec);
        return !ec;
    }
    if (!fs::is_directory(fs::symlink_status(target, ec))) return false;
    // An empty folder of a fresh name, which the rename replaces.
    const std::optional<std::string> aside = createFolderBeside(target.string());
    if (!aside) return false;
    fs::rename(target, *aside, ec);
    if (ec) return fs::remove(*aside, ec), false;
    fs::rename(fresh, target, ec);
    if (ec) {
        fs::rename(*aside, target, ec);
        return false;
    }
    bool emptied = true;
    for (const fs::directory_entry& e : fs::directory_iterator(*aside, ec)) {
        if (isPackageFile(e.path().filename())) continue;
        std::error_code moved;
        fs::rename(e.path(), target / e.path().filename(), moved);
        emptied = emptied && !moved;
    }
    if (emptied && !ec) fs::remove_all(*aside, ec);
    return true;
}

// The whole package in a folder of its own.
bool writePackage(const SpectrumDocument& doc, const fs::path& folder) {
    const int direct = directFIndex(doc.matrix.dims);
    const SpectrumMatrix m = exportLayout(doc.matrix, direct);
    const std::string dataPath = (folder / kExportDataName).string();
    if (!writeSamples(m, dataPath)) return false;

    // The package describes the intensities as they are: nothing left to replay.
    SpectrumDocument package;
    package.metadata = doc.metadata;
    package.windowState = doc.windowState;
    package.peaks = doc.peaks;
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
    return saveDocument(package, (folder / kExportDocumentName).string(), false).ok;
}

}  // namespace

bool exportPackage(const SpectrumDocument& doc, const std::string& folder) {
    if (doc.matrix.re.empty()) return false;
    fs::path target = fs::path(folder).lexically_normal();
    if (!target.has_filename()) target = target.parent_path();
    std::error_code ec;
    if (target.has_parent_path()) fs::create_directories(target.parent_path(), ec);
    // Written completely beside the old package, which stays as it was until then.
    const std::optional<std::string> fresh = createFolderBeside(target.string());
    if (!fresh) return false;
    // A fresh folder is private; the package gets the permissions of the one it replaces, or
    // those of any new folder.
    const fs::file_status old = fs::status(target, ec);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    fs::permissions(
        *fresh,
        fs::is_directory(old) ? old.permissions() : fs::perms::all & ~static_cast<fs::perms>(mask),
        ec);
    if (!writePackage(doc, *fresh)) return fs::remove_all(*fresh, ec), false;
    syncFolderOf((fs::path(*fresh) / kExportDataName).string());
    if (!swapIn(*fresh, target)) return fs::remove_all(*fresh, ec), false;
    syncFolderOf(target.string());
    return true;
}

}  // namespace zolt

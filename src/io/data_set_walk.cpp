#include "io/data_set_walk.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "base/paths.h"
#include "io/companion_document.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// Sub-folders deeper than this are not searched.
constexpr int kMaxFolderDepth = 8;

// A folder is known by its device and inode, whatever links lead to it: each real folder is
// searched once, so that a loop of symbolic links cannot multiply the walk.
using FolderIdentity = std::pair<dev_t, ino_t>;

bool firstVisit(const fs::path& folder, std::set<FolderIdentity>& seen) {
    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0) return false;
    return seen.insert({st.st_dev, st.st_ino}).second;
}

// Saved documents are opened by the document layer, everything else by its row's reader.
bool opens(FormatCode code, std::span<const ReaderRow> rows) {
    if (code == FormatCode::Zolt) return true;
    const ReaderRow* row = findReader(code, rows);
    return row && row->read;
}

bool walk(const fs::path& folder, int depth, const std::function<bool(const std::string&)>& visit,
          std::span<const ReaderRow> rows, std::set<FolderIdentity>& seen) {
    if (!firstVisit(folder, seen)) return true;
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        const fs::path& p = it->path();
        if (it->is_directory(ec)) {
            if (isDataSetFolder(fromPath(p), rows)) {
                if (firstVisit(p, seen) && !visit(fromPath(p))) return false;
            } else if (depth < kMaxFolderDepth && !walk(p, depth + 1, visit, rows, seen)) {
                return false;
            }
        } else if (!hasCompanionDocument(fromPath(p)) &&
                   opens(recognizeFormat(fromPath(p)), rows)) {
            // One data set per folder: its other files name the same data.
            if (!visit(fromPath(p))) return false;
            if (isDataSetFolder(fromPath(folder), rows)) return true;
        }
    }
    return true;
}

}  // namespace

bool isDataSetFolder(const std::string& path, std::span<const ReaderRow> rows) {
    for (const ReaderRow& row : rows)
        if (row.dataSetFile && pathExists(fromPath(toPath(path) / row.dataSetFile))) return true;
    return false;
}

// Spectrometers that keep an experiment as a folder call its FID "fid"; Bruker keeps 2-D and
// 3-D data in "ser" instead.
std::string dataFileOf(const std::string& folder) {
    const fs::path ser = toPath(folder) / "ser";
    const fs::path fid = toPath(folder) / "fid";
    if (!pathExists(fromPath(fid)) && pathExists(fromPath(ser))) return fromPath(ser);
    return fromPath(fid);
}

void walkDataSets(const std::string& folder, const std::function<bool(const std::string&)>& visit,
                  std::span<const ReaderRow> rows) {
    std::set<FolderIdentity> seen;
    walk(toPath(folder), 0, visit, rows, seen);
}

std::string withoutDataSetExtension(std::string name) {
    for (std::string_view extension : {".spins", ".fid"})
        if (name.ends_with(extension)) name.resize(name.size() - extension.size());
    return name;
}

}  // namespace zolt

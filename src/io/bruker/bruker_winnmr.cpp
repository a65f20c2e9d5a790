#include "io/bruker/bruker_layout.h"

namespace zolt {

namespace {

// Win-NMR names its files in either case; the lower-case one is tried first.
std::string existingWithExtension(const std::string& base, const std::string& extension) {
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(c - 'a' + 'A');
    for (const std::string& e : {extension, upper})
        if (isRegularFile(base + "." + e)) return base + "." + e;
    return {};
}

}  // namespace

std::optional<DataSetRead> readWinNmr(const std::string& path, const ReadOptions& /*options*/) {
    const std::filesystem::path given = toPath(path);
    const std::string base = fromPath(given.parent_path() / given.stem());
    BrukerLayout layout;
    layout.provenance = "Win-NMR";
    layout.littleEndianFloats = true;
    layout.dataPath = existingWithExtension(base, "ser");
    layout.dimensions = 2;
    if (layout.dataPath.empty()) {
        layout.dataPath = existingWithExtension(base, "fid");
        layout.dimensions = 1;
    }
    if (layout.dataPath.empty()) return std::nullopt;
    // The direct axis first: aqs for 1-D; fa2 then fa1 for 2-D.
    const std::vector<std::string> names = layout.dimensions == 1
                                               ? std::vector<std::string>{"aqs"}
                                               : std::vector<std::string>{"fa2", "fa1"};
    for (const std::string& name : names) {
        const std::string file = existingWithExtension(base, name);
        if (file.empty()) return std::nullopt;
        layout.acquisitionFiles.push_back(file);
    }
    const std::string procs = existingWithExtension(base, "fqs");
    if (!procs.empty()) layout.processingFiles.push_back(procs);
    return readBrukerLayout(layout);
}

}  // namespace zolt

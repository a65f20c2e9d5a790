// Builds a folder tree from arbitrary bytes (folders, files with a few bytes of content and
// symbolic links, named as experiments name them) and walks it for data sets, recognising
// each one found: the walk ends, and finds each real data set once.
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "io/data_set_walk.h"
#include "io/format_recognition.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kNames[] = {
    "acqus", "acqu2s",  "fid",   "ser",   "procpar", "acqp",   "acq",        "pdata",    "1",
    "2",     "1r",      "2rr",   "procs", "title",   "x.zolt", "plist.zolt", "fid.zolt", "a.txt",
    "b.16",  "c.spins", "d.jdx", "e.tnt", "abcdef1", "data",   "sub"};
constexpr size_t kNameCount = sizeof(kNames) / sizeof(kNames[0]);

// The tree is built one level below a folder of its own, so that a link to ".." at its top
// still points into that folder.
const fs::path& base() {
    static const fs::path b =
        fs::temp_directory_path() / ("zolt-format-walk-fuzz-" + std::to_string(getpid()));
    return b;
}

const fs::path& root() {
    static const fs::path r = base() / "tree";
    return r;
}

// Links make a path built from names point anywhere: nothing is created, and no step is taken,
// where the path really leads outside the tree.
bool insideTree(const fs::path& p) {
    std::error_code ec;
    const fs::path real = fs::weakly_canonical(p.parent_path(), ec);
    const fs::path top = fs::weakly_canonical(root(), ec);
    if (ec) return false;
    const auto [end, unused] = std::mismatch(top.begin(), top.end(), real.begin(), real.end());
    return end == top.end();
}

// Each entry: an operation byte (kind, name) and for files a length byte and the content.
void build(const uint8_t* data, size_t size) {
    std::error_code ec;
    fs::path here = root();
    for (size_t i = 0; i < size;) {
        const uint8_t op = data[i++];
        const fs::path target = here / kNames[(op >> 3) % kNameCount];
        const bool allowed = insideTree(target);
        switch (op & 7) {
            case 0:
            case 1:
                if (!allowed) break;
                fs::create_directory(target, ec);
                if (op & 1) here = target;
                break;
            case 2:
            case 3: {
                size_t n = 0;
                if (i < size) {
                    const size_t wanted = data[i++] % 64;
                    n = std::min(wanted, size - i);
                }
                if (allowed)
                    std::ofstream(target, std::ios::binary)
                        .write(reinterpret_cast<const char*>(data + i),
                               static_cast<std::streamsize>(n));
                i += n;
                break;
            }
            case 4:
                if (allowed) fs::create_directory_symlink("..", target, ec);
                break;
            case 5:
                if (allowed) fs::create_directory_symlink(".", target, ec);
                break;
            case 6:
                if (allowed) fs::create_symlink(root(), target, ec);
                break;
            default:
                if (here != root()) here = here.parent_path();
                break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    std::error_code ec;
    fs::remove_all(base(), ec);
    fs::create_directories(root(), ec);
    build(data, size);
    std::set<std::string> found;
    walkDataSets(root().string(), [&](const std::string& path) {
        const std::string member = fs::is_directory(path, ec) ? dataFileOf(path) : path;
        recognizeFormat(member);
        const auto canonical = fs::canonical(path, ec);
        // A data set reached twice through links is one real data set found twice.
        if (!ec && !found.insert(canonical.string()).second) std::abort();
        return true;
    });
    return 0;
}

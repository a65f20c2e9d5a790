// Reads arbitrary text as the processing parameters of a processed 2-D experiment (procs and
// proc2s, split at the first NUL byte) beside fixed acquisition parameters and a small 2rr:
// whatever region and tiling the text claims, reading and loading stay within the file.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "io/bruker/bruker_layout.h"
#include "io/bruker/bruker_parameters.h"
#include "io/raw_loader.h"

namespace {

constexpr const char* kAcqus =
    "##$BF1= 500.13\n##$BYTORDA= 0\n##$DECIM= 16\n##$DSPFVS= 20\n##$GRPDLY= 67.98\n"
    "##$NUC1= <1H>\n##$O1= 2350\n##$PULPROG= <cosygpqf>\n##$SFO1= 500.1323\n"
    "##$SW_h= 5000\n##$TD= 256\n##END=\n";
constexpr const char* kAcqu2s =
    "##$BF1= 500.13\n##$FnMODE= 6\n##$NUC1= <1H>\n##$SFO1= 500.1323\n##$SW_h= 5000\n"
    "##$TD= 16\n##END=\n";
constexpr size_t k2rrBytes = 64 * 1024;

const std::string& folder() {
    static const std::string dir = [] {
        const auto d = std::filesystem::temp_directory_path() /
                       ("zolt-procs-fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directories(d);
        std::ofstream(d / "acqus") << kAcqus;
        std::ofstream(d / "acqu2s") << kAcqu2s;
        std::ofstream(d / "2rr", std::ios::binary) << std::string(k2rrBytes, '\x01');
        return d.string();
    }();
    return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t split = text.find('\0');
    const std::string procs = text.substr(0, split);
    const std::string proc2s = split == std::string::npos ? std::string() : text.substr(split + 1);
    parseProcessingParameters(procs);
    parseProcessingParameters(proc2s);

    const std::string& dir = folder();
    std::ofstream(dir + "/procs", std::ios::binary) << procs;
    std::ofstream(dir + "/proc2s", std::ios::binary) << proc2s;
    BrukerLayout layout;
    layout.dataPath = dir + "/2rr";
    layout.dimensions = 2;
    layout.processed = true;
    layout.acquisitionFiles = {dir + "/acqus", dir + "/acqu2s"};
    layout.processingFiles = {dir + "/procs", dir + "/proc2s"};
    layout.provenance = "Bruker";
    if (auto read = readBrukerLayout(layout)) {
        if (auto m = loadMatrix(read->source)) {
            // Rows of a file cut short are zero-filled, never more than the file's worth.
            if (m->re.size() * sizeof(float) > 2 * k2rrBytes) std::abort();
        }
    }
    return 0;
}

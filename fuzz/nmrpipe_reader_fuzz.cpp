// Feeds arbitrary files to the NMRPipe reader and the loader after it: whatever the header
// claims, reading stays inside the file and the memory it justifies.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "io/nmrpipe/nmrpipe_reader.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"

namespace {

std::string scratchPath() {
    return "/tmp/zolt-nmrpipe-fuzz-" + std::to_string(getpid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = scratchPath();
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    auto read = zolt::readNmrPipe(path);
    if (!read) return 0;
    zolt::completeSource(read->source);
    if (auto m = zolt::loadMatrix(read->source)) {
        // Touch every value so that a wrong size shows up under the sanitizers.
        volatile float sum = 0;
        for (float v : m->re) sum = sum + v;
        for (float v : m->im) sum = sum + v;
    }
    return 0;
}

// Feeds arbitrary files to the text-header reader and the loader after it.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "io/raw_loader.h"
#include "io/source_completion.h"
#include "io/text_header/text_header_reader.h"

namespace {

std::string scratchPath() {
    return "/tmp/zolt-text-header-fuzz-" + std::to_string(getpid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = scratchPath();
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    auto read = zolt::readTextHeader(path);
    if (!read) return 0;
    zolt::completeSource(read->source);
    if (auto m = zolt::loadMatrix(read->source)) {
        volatile float sum = 0;
        for (float v : m->re) sum = sum + v;
        for (float v : m->im) sum = sum + v;
    }
    return 0;
}

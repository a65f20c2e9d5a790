// What the single-file reader targets share: the input written to a scratch file, read by the
// reader, completed and loaded, and every loaded value touched so that a wrong size shows up
// under the sanitizers.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "io/raw_loader.h"
#include "io/source_completion.h"

namespace zolt::fuzzing {

template <class Read>
int readThroughScratchFile(const uint8_t* data, size_t size, const char* tag, Read read) {
    static const std::string path =
        std::string("/tmp/zolt-") + tag + "-fuzz-" + std::to_string(getpid());
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    auto dataSet = read(path);
    if (!dataSet) return 0;
    completeSource(dataSet->source);
    if (auto m = loadMatrix(dataSet->source)) {
        volatile float sum = 0;
        for (float v : m->re) sum = sum + v;
        for (float v : m->im) sum = sum + v;
    }
    return 0;
}

}  // namespace zolt::fuzzing

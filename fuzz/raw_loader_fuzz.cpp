// Feeds arbitrary sources and file contents to the raw-data loader: the first 16 bytes
// describe the source (number type, flags, sizes), the rest is the raw file.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "io/raw_loader.h"

namespace {

uint32_t word16(const uint8_t* p) {
    return uint32_t{p[0]} | uint32_t{p[1]} << 8;
}

std::string scratchPath() {
    return "/tmp/zolt-raw-loader-fuzz-" + std::to_string(getpid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 16) return 0;
    zolt::SpectrumSource s;
    s.numberType = static_cast<zolt::NumberType>(data[0] % 11);
    s.flags = word16(data + 1) | (uint32_t{data[3]} << 16);
    s.dims[1].points = data[4];
    s.dims[2].points = word16(data + 5);
    s.dims[3].points = data[7] & 0x80 ? word16(data + 7) << 8 : data[7];
    s.headerSize = data[9];
    s.blockHeader = data[10] & 0x80 ? 0xFFFFFF00u | data[10] : data[10];
    s.blockSize = word16(data + 11) * 8;
    s.subMatrixHeight = data[13];
    s.xIndex = static_cast<int8_t>(data[14] % 5);
    s.phaseable[2] = data[15] & 1;
    const uint8_t* body = data + 16;
    const size_t bodySize = size - 16;
    if (s.numberType == zolt::NumberType::InMemory) {
        s.memory.resize(bodySize / sizeof(float));
        // An empty buffer has no storage to copy into (memcpy may not be given null).
        if (!s.memory.empty()) std::memcpy(s.memory.data(), body, s.memory.size() * sizeof(float));
    } else {
        static const std::string path = scratchPath();
        if (FILE* f = std::fopen(path.c_str(), "wb")) {
            std::fwrite(body, 1, bodySize, f);
            std::fclose(f);
        }
        s.rawPath = path;
    }
    if (auto m = zolt::loadMatrix(s)) {
        // Touch every value so that a wrong size shows up under the sanitizers.
        volatile float sum = 0;
        for (float v : m->re) sum = sum + v;
        for (float v : m->im) sum = sum + v;
    }
    return 0;
}

// Feeds arbitrary files to the JEOL Delta reader and the loader after it: whatever the header
// claims, reading stays inside the file and the memory it justifies.
#include "io/jeol/jeol_reader.h"
#include "single_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return zolt::fuzzing::readThroughScratchFile(
        data, size, "jeol", [](const std::string& p) { return zolt::readJeolDelta(p); });
}

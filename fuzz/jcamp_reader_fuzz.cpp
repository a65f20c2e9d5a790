// Feeds arbitrary files to the JCAMP-DX reader and the loader after it, which decodes the tables:
// whatever the labels claim, decoding stays inside the file and the memory it justifies.
#include "io/jcamp/jcamp_reader.h"
#include "single_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return zolt::fuzzing::readThroughScratchFile(
        data, size, "jcamp", [](const std::string& p) { return zolt::readJcamp(p); });
}

// Feeds arbitrary files to the NMRPipe reader and the loader after it: whatever the header
// claims, reading stays inside the file and the memory it justifies.
#include "io/nmrpipe/nmrpipe_reader.h"
#include "single_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return zolt::fuzzing::readThroughScratchFile(
        data, size, "nmrpipe", [](const std::string& p) { return zolt::readNmrPipe(p); });
}

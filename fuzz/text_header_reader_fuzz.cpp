// Feeds arbitrary files to the text-header reader and the loader after it.
#include "io/text_header/text_header_reader.h"
#include "single_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return zolt::fuzzing::readThroughScratchFile(
        data, size, "text-header", [](const std::string& p) { return zolt::readTextHeader(p); });
}

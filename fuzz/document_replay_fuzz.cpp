// Reads arbitrary text as a saved document, gives it small raw data in memory of the size its
// axes claim (within a bound) and replays its processing: whatever steps the text holds, the
// replay ends, within the sizes the dialogs allow.
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <variant>

#include "document/document_file.h"
#include "document/processing_replay.h"
#include "io/raw_loader.h"
#include "processing/ft_step.h"

namespace {

constexpr uint64_t kMaxPoints = 4096;  // raw points of the fuzzed data
constexpr uint32_t kMaxReplayedFt = 16384;

std::string scratchPath() {
    return (std::filesystem::temp_directory_path() /
            ("zolt-document-fuzz-" + std::to_string(getpid()) + ".zolt"))
        .string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    static const std::string path = scratchPath();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    DocumentRead read = readDocumentFile(path);
    if (!read.document) return 0;
    SpectrumDocument& doc = *read.document;

    // The steps the replay will run, as it will bound them: large transforms are slow, not
    // wrong, and are left out of the search.
    for (ProcessingStep step : doc.processing.steps) {
        boundReplayedStep(step);
        if (const auto* ft = std::get_if<FourierTransformStep>(&step.data))
            if (ft->ftSize > kMaxReplayedFt) return 0;
    }
    SpectrumSource& s = doc.source;
    uint64_t points = 1;
    for (int f = 1; f <= 3; ++f) points *= std::max<uint32_t>(s.dims[f].points, 1);
    if (points > kMaxPoints) return 0;
    s.numberType = NumberType::InMemory;
    s.memory.resize(2 * points);
    for (size_t i = 0; i < s.memory.size(); ++i)
        s.memory[i] = static_cast<float>(std::cos(0.05 * static_cast<double>(i)) * 1000.0);
    auto matrix = loadMatrix(s);
    if (!matrix) return 0;
    doc.matrix = std::move(*matrix);
    replayProcessing(doc, true);
    // Touch every value so that a wrong size shows up under the sanitizers.
    volatile float sum = 0;
    for (float v : doc.matrix.re) sum = sum + v;
    for (float v : doc.matrix.im) sum = sum + v;
    return 0;
}

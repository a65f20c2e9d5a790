// Feeds arbitrary experiments to the Varian reader: the input is a procpar, a form feed, then
// the fid. Whatever the bytes, the reader and the loader must stay inside the file and inside
// the bounds the file's size sets. The whole input is read as a procpar too.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "io/raw_loader.h"
#include "io/varian/varian_parameters.h"
#include "io/varian/varian_reader.h"

namespace {

std::string scratchFolder() {
    const std::string dir = "/tmp/zolt-varian-fuzz-" + std::to_string(getpid()) + ".fid";
    std::filesystem::create_directories(dir);
    return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const VarianParameters p = parseVarianParameters(input);
    if (p.tn.size() > 32 || p.array.size() > 32 || p.f1coef.size() > 32) std::abort();
    char atom[3];
    int mass = 0;
    parseVarianNucleus(p.tn, atom, mass);
    firstIndirectQuadrature(p);

    const size_t split = input.find('\f');
    static const std::string dir = scratchFolder();
    std::ofstream(dir + "/procpar", std::ios::binary | std::ios::trunc) << input.substr(0, split);
    std::ofstream(dir + "/fid", std::ios::binary | std::ios::trunc)
        << (split == std::string_view::npos ? std::string_view() : input.substr(split + 1));
    const auto read = readVarianFolder(dir);
    if (!read) return 0;
    if (auto m = loadMatrix(read->source)) {
        // No more floats than the fid held values (a 16-bit value becomes one float).
        if (m->re.size() + m->im.size() > size) std::abort();
        volatile float sum = 0;
        for (float v : m->re) sum = sum + v;
        for (float v : m->im) sum = sum + v;
    }
    return 0;
}

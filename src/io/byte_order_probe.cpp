#include "io/byte_order_probe.h"

#include <fstream>

#include "base/paths.h"

namespace zolt {

namespace {

constexpr int kProbeValues = 20;
constexpr int kProbeBytes = kProbeValues * 4;

bool isSignFill(unsigned char b) {
    return b == 0 || b == 255;
}

}  // namespace

// Small integers in a FID have their high byte all zeros or all ones: whichever end of the
// four-byte values shows that more often is the high end.
void probeByteOrder(SpectrumSource& source) {
    using namespace source_flags;
    if (source.numberType != NumberType::Long && source.numberType != NumberType::Short) return;
    if ((source.flags & (kLittleEndian | kVarianBinary)) || source.provenance == "Varian") return;
    const int direct = directFIndex(source);
    uint64_t end = uint64_t{4} * source.dims[direct].points;
    if (source.flags & (kRealOnly | kInterleaved)) end /= 2;
    if (source.numberType == NumberType::Short) end /= 2;
    end += source.headerSize;
    const auto size = fileSize(source.rawPath);
    if (size && end > *size) end = *size;
    const uint64_t begin = end > kProbeBytes ? end - kProbeBytes : 0;
    unsigned char bytes[kProbeBytes] = {};
    size_t count = 0;
    if (size) {
        std::ifstream in(toPath(source.rawPath), std::ios::binary);
        if (in.seekg(static_cast<std::streamoff>(begin)) &&
            in.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(end - begin)))
            count = static_cast<size_t>(end - begin) / 4;
    }
    int first = 0, fourth = 0;
    for (size_t v = 0; v < count; ++v) {
        first += isSignFill(bytes[4 * v]) ? 1 : 0;
        fourth += isSignFill(bytes[4 * v + 3]) ? 1 : 0;
    }
    if (first > fourth)
        source.flags &= ~kLittleEndian;
    else
        source.flags |= kLittleEndian;
}

}  // namespace zolt

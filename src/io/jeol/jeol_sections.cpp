#include "io/jeol/jeol_sections.h"

#include <filesystem>
#include <fstream>
#include <vector>

#include "base/paths.h"
#include "io/raw_loader.h"

namespace zolt {

namespace {

struct SectionShape {
    uint64_t columns = 0;   // points of the direct axis
    uint64_t fileRows = 0;  // rows of one section
    int sections = 0;       // 2 or 4
    bool phaseSensitive = false;
    bool tiled = false;  // 2-D
};

SectionShape shapeOf(const SpectrumSource& s) {
    SectionShape sh;
    sh.phaseSensitive = s.flags & source_flags::kJeolDelta2DPhaseSensitive;
    sh.sections = sh.phaseSensitive ? 4 : 2;
    const int direct = directFIndex(s);
    sh.columns = direct ? s.dims[direct].points : 0;
    sh.tiled = direct == 2;
    sh.fileRows = sh.tiled ? s.dims[1].points / (sh.phaseSensitive ? 2 : 1) : 1;
    return sh;
}

}  // namespace

bool isJeolSectionSource(const SpectrumSource& source) {
    using namespace source_flags;
    const uint32_t flags = normalisedFlags(source.flags);
    return (flags & kBlockMatrix) && (flags & kInterleaved) &&
           source.numberType != NumberType::InMemory;
}

bool jeolSectionsFit(const SpectrumSource& source, uint64_t fileSize) {
    const SectionShape sh = shapeOf(source);
    const size_t valueBytes = rawValueBytes(source.numberType);
    if (valueBytes == 0 || source.dims[3].points > 1 || sh.columns == 0 || sh.fileRows == 0 ||
        (sh.phaseSensitive && (!sh.tiled || source.dims[1].points % 2)))
        return false;
    if (sh.tiled && (sh.columns % kJeolTileEdge || sh.fileRows % kJeolTileEdge)) return false;
    // Both factors are below 2^32 and the matrix already passed the loader's bound.
    const uint64_t bytes = sh.columns * sh.fileRows * sh.sections * valueBytes;
    return source.headerSize + bytes <= fileSize;
}

bool readJeolSections(const SpectrumSource& source, SpectrumMatrix& m) {
    const SectionShape sh = shapeOf(source);
    const size_t vb = rawValueBytes(source.numberType);
    const bool little = source.flags & source_flags::kLittleEndian;
    std::ifstream in(toPath(source.rawPath), std::ios::binary);
    if (!in) return false;
    in.seekg(source.headerSize);
    const uint64_t T = sh.tiled ? kJeolTileEdge : 1;
    const uint64_t tilesAcross = sh.tiled ? sh.columns / T : 1;
    std::vector<unsigned char> band;
    try {
        band.resize(T * sh.columns * vb);
    } catch (const std::bad_alloc&) {
        return false;
    }
    // Sections follow each other; each is read one band of tiles (32 rows) at a time.
    for (int section = 0; section < sh.sections; ++section) {
        const bool imaginary = section & 1;
        std::vector<float>& part = imaginary ? m.im : m.re;
        const float sign = imaginary ? -1.0f : 1.0f;
        const uint64_t rowOffset =
            sh.phaseSensitive ? static_cast<uint64_t>(1 - (section >> 1)) : 0;
        const uint64_t rowStep = sh.phaseSensitive ? 2 : 1;
        for (uint64_t firstRow = 0; firstRow < sh.fileRows; firstRow += T) {
            in.read(reinterpret_cast<char*>(band.data()),
                    static_cast<std::streamsize>(band.size()));
            if (!in) return false;
            const unsigned char* p = band.data();
            for (uint64_t tile = 0; tile < tilesAcross; ++tile)
                for (uint64_t k = 0; k < T; ++k) {
                    const uint64_t row = (firstRow + k) * rowStep + rowOffset;
                    const uint64_t width = sh.tiled ? T : sh.columns;
                    float* out = part.data() + row * sh.columns + tile * width;
                    for (uint64_t c = 0; c < width; ++c, p += vb)
                        out[c] = sign * decodeRawValue(p, source.numberType, little);
                }
        }
    }
    return true;
}

}  // namespace zolt

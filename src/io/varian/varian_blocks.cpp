#include "io/varian/varian_blocks.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <vector>

#include "base/paths.h"
#include "io/raw_loader.h"

namespace zolt {

namespace {

constexpr size_t kChunkBytes = size_t{1} << 16;

uint32_t bigEndian32(const unsigned char* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

uint16_t bigEndian16(const unsigned char* p) {
    return static_cast<uint16_t>(p[0] << 8 | p[1]);
}

struct BlockPlan {
    uint64_t header = 0, blockHeader = 0, blockBytes = 0, stride = 0;
    uint64_t valuesPerBlock = 0;
    size_t valueBytes = 0;
};

std::optional<BlockPlan> planBlocks(const SpectrumSource& s) {
    BlockPlan p;
    p.valueBytes = rawValueBytes(s.numberType);
    p.header = s.headerSize;
    p.blockHeader = s.blockHeader;
    p.blockBytes = s.blockSize;
    p.stride = p.blockHeader + p.blockBytes;
    if (p.valueBytes == 0 || p.blockHeader < kVarianBlockHeaderBytes) return std::nullopt;
    p.valuesPerBlock = p.blockBytes / p.valueBytes;
    if (p.valuesPerBlock == 0) return std::nullopt;
    return p;
}

// Where value v of the matrix goes: pairs split into the two arrays, or one after the other.
void store(SpectrumMatrix& m, bool realOnly, float imSign, uint64_t v, float value) {
    if (realOnly)
        m.re[v] = value;
    else if (v & 1)
        m.im[v >> 1] = imSign * value;
    else
        m.re[v >> 1] = value;
}

}  // namespace

std::optional<VarianFileHeader> parseVarianFileHeader(std::string_view bytes) {
    if (bytes.size() < kVarianFileHeaderBytes) return std::nullopt;
    const auto* b = reinterpret_cast<const unsigned char*>(bytes.data());
    VarianFileHeader h;
    h.blocks = bigEndian32(b);
    h.tracesPerBlock = bigEndian32(b + 4);
    h.pointsPerTrace = bigEndian32(b + 8);
    h.bytesPerElement = bigEndian32(b + 12);
    h.bytesPerTrace = bigEndian32(b + 16);
    h.bytesPerBlock = bigEndian32(b + 20);
    h.version = bigEndian16(b + 24);
    h.status = bigEndian16(b + 26);
    h.blockHeaders = bigEndian32(b + 28);
    return h;
}

NumberType varianNumberType(const VarianFileHeader& h) {
    if (h.status & varian_status::kFloat) return NumberType::Float;
    if (h.status & varian_status::kLong) return NumberType::Long;
    return h.bytesPerElement == 4 ? NumberType::Float : NumberType::Short;
}

bool varianRealOnly(const VarianFileHeader& h) {
    return !(h.status & (varian_status::kComplex | varian_status::kHypercomplex));
}

uint32_t varianBlocksPresent(const VarianFileHeader& h, uint64_t fileSize) {
    if (h.bytesPerBlock == 0 || fileSize < kVarianFileHeaderBytes) return 0;
    const uint64_t present = (fileSize - kVarianFileHeaderBytes) / h.bytesPerBlock;
    return static_cast<uint32_t>(std::min<uint64_t>(present, h.blocks));
}

bool varianBlocksFit(const SpectrumSource& source, uint64_t matrixValues, uint64_t fileSize) {
    const auto plan = planBlocks(source);
    if (!plan) return false;
    const uint64_t blocks = (matrixValues + plan->valuesPerBlock - 1) / plan->valuesPerBlock;
    if (blocks == 0) return true;
    // The last block's header must be in the file; values it lacks stay zero.
    uint64_t last = 0;
    if (__builtin_mul_overflow(blocks - 1, plan->stride, &last)) return false;
    return last <= fileSize && plan->header + plan->blockHeader <= fileSize - last;
}

bool readVarianBlocks(const SpectrumSource& source, SpectrumMatrix& m) {
    const auto plan = planBlocks(source);
    if (!plan) return false;
    std::ifstream file(toPath(source.rawPath), std::ios::binary);
    if (!file) return false;
    const bool realOnly = m.im.empty();
    // The spectrometer records its quadrature channels in the opposite sense to ours: read as
    // they are, every frequency would come out mirrored about the carrier.
    const float imSign = -1.0f;
    const uint64_t values = realOnly ? m.re.size() : m.re.size() * 2;
    std::vector<unsigned char> chunk(std::min<uint64_t>(kChunkBytes, plan->blockBytes));
    uint64_t v = 0;
    for (uint64_t block = 0; v < values; ++block) {
        const uint64_t start = plan->header + block * plan->stride;
        const uint64_t inBlock = std::min(plan->valuesPerBlock, values - v);
        unsigned char header[kVarianBlockHeaderBytes];
        file.seekg(static_cast<std::streamoff>(start));
        if (!file.read(reinterpret_cast<char*>(header), sizeof header)) return v > 0;
        const auto scale = static_cast<int16_t>(bigEndian16(header));
        const auto transients = static_cast<int32_t>(bigEndian32(header + 8));
        if (transients < 1) {  // never acquired: the block stays zero
            v += inBlock;
            continue;
        }
        // The sign of the scale is ignored: a negative scale multiplies too.
        const int exponent = std::abs(int{scale});
        file.seekg(static_cast<std::streamoff>(start + plan->blockHeader));
        for (uint64_t done = 0; done < inBlock;) {
            const uint64_t n = std::min<uint64_t>(inBlock - done, chunk.size() / plan->valueBytes);
            file.read(reinterpret_cast<char*>(chunk.data()),
                      static_cast<std::streamsize>(n * plan->valueBytes));
            const auto got = static_cast<uint64_t>(std::max<std::streamsize>(file.gcount(), 0)) /
                             plan->valueBytes;
            const unsigned char* p = chunk.data();
            for (uint64_t k = 0; k < got; ++k, p += plan->valueBytes) {
                const float x = decodeRawValue(p, source.numberType, false);
                store(m, realOnly, imSign, v + done + k, exponent ? std::ldexp(x, exponent) : x);
            }
            if (got < n) return true;  // the file ends inside its last block
            done += n;
        }
        v += inBlock;
    }
    return true;
}

}  // namespace zolt

#include "io/raw_loader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <new>
#include <vector>

#include "io/jcamp/jcamp_table_loading.h"
#include "io/jeol/jeol_sections.h"
#include "io/varian/varian_blocks.h"

namespace zolt {
namespace {

// Raw values are converted through a staging buffer of this many values: for 16-bit data
// that buffer is half the size of the floats it fills.
constexpr size_t kChunkValues = 4096;
constexpr uint64_t kMaxFloats = kMaxMatrixBytes / sizeof(float);

uint64_t assembleWord(const unsigned char* b, size_t n, bool littleEndian) {
    uint64_t v = 0;
    for (size_t i = 0; i < n; ++i) v |= uint64_t{b[littleEndian ? i : n - 1 - i]} << (8 * i);
    return v;
}

// Out-of-range doubles become infinities instead of an undefined conversion.
float narrowToFloat(double d) {
    constexpr double kMax = std::numeric_limits<float>::max();
    if (d > kMax) return std::numeric_limits<float>::infinity();
    if (d < -kMax) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(d);
}

bool multiplyAdd(uint64_t a, uint64_t b, uint64_t c, uint64_t& out) {
    uint64_t p = 0;
    return !__builtin_mul_overflow(a, b, &p) && !__builtin_add_overflow(p, c, &out);
}

// The bytes the numbers come from: the raw file, or the source's own buffer.
struct RawInput {
    std::ifstream file;
    const unsigned char* memory = nullptr;
    uint64_t size = 0;
    uint64_t position = 0;
};

size_t readAt(RawInput& in, uint64_t offset, unsigned char* out, size_t n) {
    if (offset >= in.size) return 0;
    n = static_cast<size_t>(std::min<uint64_t>(n, in.size - offset));
    if (in.memory) {
        std::memcpy(out, in.memory + offset, n);
        return n;
    }
    if (offset != in.position) {
        in.file.clear();
        in.file.seekg(static_cast<std::streamoff>(offset));
    }
    in.file.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(n));
    const auto got = static_cast<size_t>(std::max<std::streamsize>(in.file.gcount(), 0));
    in.position = offset + got;
    return got;
}

// A run of raw values that lands in the matrix: adjacent pairs split into `re` and `im`,
// or (im null) values that go one after the other into `re`.
struct Segment {
    uint64_t offset = 0;
    size_t values = 0;
    float* re = nullptr;
    float* im = nullptr;
    float sign = 1.0f;  // applied to imaginary parts (complex conjugate)
};

struct Decoding {
    NumberType type = NumberType::Long;
    bool littleEndian = false;
    size_t valueBytes = 0;
    std::vector<unsigned char> staging;
};

// Values beyond the end of the input stay as they are (zero).
void readSegment(RawInput& in, const Segment& s, Decoding& d) {
    const size_t vb = d.valueBytes;
    for (size_t done = 0; done < s.values;) {
        const size_t n = std::min(kChunkValues, s.values - done);
        const size_t got =
            readAt(in, s.offset + uint64_t{done} * vb, d.staging.data(), n * vb) / vb;
        const unsigned char* p = d.staging.data();
        for (size_t k = 0; k < got; ++k, p += vb) {
            const float v = decodeRawValue(p, d.type, d.littleEndian);
            const size_t i = done + k;
            if (!s.im)
                s.re[i] = s.sign * v;
            else if (i & 1)
                s.im[i >> 1] = s.sign * v;
            else
                s.re[i >> 1] = v;
        }
        if (got < n) return;
        done += n;
    }
}

struct Shape {
    uint64_t points = 0;     // every axis multiplied
    uint64_t rowPoints = 0;  // along the contiguous axis
    uint64_t rows = 0;
    bool realOnly = false;
    bool interleaved = false;
    float imSign = 1.0f;
};

// Where each part of the input lands; checked against the input size before allocating.
struct Layout {
    bool tiled = false;
    uint64_t header = 0;
    uint64_t stride = 0;  // plain rows: data bytes + padding
    uint64_t tileWidth = 0, tileHeight = 0;
};

uint64_t squareRootOfTileBytes(uint32_t blockSize) {
    const uint64_t area = blockSize / 8;
    auto w = static_cast<uint64_t>(std::sqrt(static_cast<double>(area)));
    while (w * w > area) --w;
    while ((w + 1) * (w + 1) <= area) ++w;
    return w * w * 8 == blockSize ? w : 0;
}

std::optional<Layout> planRows(const SpectrumSource& src, const Shape& sh, uint64_t inputSize,
                               size_t valueBytes, bool memory) {
    Layout l;
    l.header = memory ? 0 : src.headerSize;
    const uint64_t rowBytes = sh.rowPoints * (sh.realOnly ? 1 : 2) * valueBytes;
    l.stride = rowBytes + (memory ? 0 : src.blockHeader);
    uint64_t full = 0;
    if (!multiplyAdd(sh.rows - 1, l.stride, l.header + rowBytes, full)) return std::nullopt;
    // A file may stop inside its last row; a buffer in memory must be whole.
    if (inputSize < (memory ? full : full - rowBytes / 2)) return std::nullopt;
    return l;
}

std::optional<Layout> planTiles(const SpectrumSource& src, const Shape& sh, uint64_t inputSize,
                                size_t valueBytes) {
    Layout l;
    l.tiled = true;
    l.header = src.headerSize;
    if (sh.interleaved) return std::nullopt;
    l.tileWidth = squareRootOfTileBytes(src.blockSize);
    if (l.tileWidth < 2 || l.tileWidth > sh.rowPoints || sh.rowPoints % l.tileWidth)
        return std::nullopt;
    l.tileHeight = src.subMatrixHeight ? src.subMatrixHeight : l.tileWidth;
    l.tileHeight = std::min(l.tileHeight, sh.rows);
    if (sh.rows % l.tileHeight) return std::nullopt;
    uint64_t full = 0;
    if (!multiplyAdd(sh.points * (sh.realOnly ? 1 : 2), valueBytes, l.header, full) ||
        inputSize < full)
        return std::nullopt;
    return l;
}

void readRows(RawInput& in, const Shape& sh, const Layout& l, SpectrumMatrix& m, Decoding& d) {
    const uint64_t rowValues = sh.rowPoints * (sh.realOnly ? 1 : 2);
    for (uint64_t r = 0; r < sh.rows; ++r) {
        const uint64_t base = l.header + r * l.stride;
        float* re = m.re.data() + r * sh.rowPoints;
        float* im = sh.realOnly ? nullptr : m.im.data() + r * sh.rowPoints;
        if (sh.realOnly) {
            readSegment(in, {base, sh.rowPoints, re, nullptr, 1.0f}, d);
        } else if (sh.interleaved) {
            readSegment(in, {base, sh.rowPoints, re, nullptr, 1.0f}, d);
            readSegment(
                in, {base + sh.rowPoints * d.valueBytes, sh.rowPoints, im, nullptr, sh.imSign}, d);
        } else {
            readSegment(in, {base, rowValues, re, im, sh.imSign}, d);
        }
    }
}

// Tiles are stored one after the other, left to right, then top to bottom.
void readTiles(RawInput& in, const Shape& sh, const Layout& l, SpectrumMatrix& m, Decoding& d) {
    const uint64_t perPoint = sh.realOnly ? 1 : 2;
    const uint64_t segmentBytes = l.tileWidth * perPoint * d.valueBytes;
    uint64_t offset = l.header;
    for (uint64_t tileRow = 0; tileRow < sh.rows / l.tileHeight; ++tileRow)
        for (uint64_t tile = 0; tile < sh.rowPoints / l.tileWidth; ++tile)
            for (uint64_t k = 0; k < l.tileHeight; ++k, offset += segmentBytes) {
                const uint64_t at =
                    (tileRow * l.tileHeight + k) * sh.rowPoints + tile * l.tileWidth;
                float* im = sh.realOnly ? nullptr : m.im.data() + at;
                readSegment(in, {offset, l.tileWidth * perPoint, m.re.data() + at, im, sh.imSign},
                            d);
            }
}

bool openInput(const SpectrumSource& src, RawInput& in) {
    if (src.numberType == NumberType::InMemory) {
        in.memory = reinterpret_cast<const unsigned char*>(src.memory.data());
        in.size = uint64_t{src.memory.size()} * sizeof(float);
        return true;
    }
    std::error_code ec;
    if (!std::filesystem::is_regular_file(src.rawPath, ec)) return false;
    in.size = std::filesystem::file_size(src.rawPath, ec);
    if (ec) return false;
    in.file.open(src.rawPath, std::ios::binary);
    return in.file.good();
}

uint16_t stateWord(const SpectrumSource& src, uint32_t flags) {
    using namespace source_flags;
    uint16_t s = 0;
    if (flags & kRealOnly) s |= matrix_state::kRealOnly;
    if (flags & kMagnitude) s |= matrix_state::kMagnitude;
    if (src.phaseable[2]) s |= matrix_state::kF2Phaseable;
    if (flags & kComplexConjugate) s |= matrix_state::kComplexConjugate;
    if (flags & kDosy) s |= matrix_state::kDosy;
    return s;
}

}  // namespace

size_t rawValueBytes(NumberType type) {
    switch (type) {
        case NumberType::Long:
            return 4;
        case NumberType::Short:
            return 2;
        case NumberType::Float:
            return 4;
        case NumberType::Bits24:
            return 3;
        case NumberType::Double:
            return 8;
        default:
            return 0;
    }
}

float decodeRawValue(const unsigned char* bytes, NumberType type, bool littleEndian) {
    switch (type) {
        case NumberType::Long:
            return static_cast<float>(
                static_cast<int32_t>(static_cast<uint32_t>(assembleWord(bytes, 4, littleEndian))));
        case NumberType::Short:
            return static_cast<float>(
                static_cast<int16_t>(static_cast<uint16_t>(assembleWord(bytes, 2, littleEndian))));
        case NumberType::Bits24: {
            const auto v = static_cast<int32_t>(assembleWord(bytes, 3, littleEndian));
            return static_cast<float>(v & 0x800000 ? v - 0x1000000 : v);
        }
        case NumberType::Float:
            return std::bit_cast<float>(
                static_cast<uint32_t>(assembleWord(bytes, 4, littleEndian)));
        case NumberType::Double:
            return narrowToFloat(std::bit_cast<double>(assembleWord(bytes, 8, littleEndian)));
        default:
            return 0.0f;
    }
}

std::optional<float> readRawValue(const SpectrumSource& source, uint64_t byteOffset) {
    const bool memory = source.numberType == NumberType::InMemory;
    const NumberType type = memory ? NumberType::Float : source.numberType;
    const size_t vb = rawValueBytes(type);
    RawInput in;
    if (vb == 0 || !openInput(source, in)) return std::nullopt;
    unsigned char bytes[8] = {};
    if (readAt(in, byteOffset, bytes, vb) != vb) return std::nullopt;
    const bool little = memory ? std::endian::native == std::endian::little
                               : (source.flags & source_flags::kLittleEndian) != 0;
    return decodeRawValue(bytes, type, little);
}

std::optional<SpectrumMatrix> loadMatrix(const SpectrumSource& source) {
    using namespace source_flags;
    const uint32_t flags = normalisedFlags(source.flags);
    if (flags & kVaxFloats) return std::nullopt;
    const bool memory = source.numberType == NumberType::InMemory;
    const bool varian = (flags & kVarianBinary) && !memory;
    const bool jcamp = source.numberType == NumberType::AsciiSqueezed;
    Decoding d;
    d.type = memory ? NumberType::Float : source.numberType;
    d.littleEndian = memory ? std::endian::native == std::endian::little : (flags & kLittleEndian);
    d.valueBytes = rawValueBytes(d.type);
    if (d.valueBytes == 0 && !jcamp) return std::nullopt;

    SpectrumMatrix m;
    m.phaseable = source.phaseable;
    m.xIndex = static_cast<uint8_t>(source.xIndex);
    m.yIndex = static_cast<uint8_t>(source.yIndex);
    m.zIndex = static_cast<uint8_t>(source.zIndex);
    m.dimensions = static_cast<uint8_t>(countDimensions(source));
    m.dims = source.dims;
    for (auto& dim : m.dims) dim.points = dim.points ? dim.points : 1;
    const int direct = directFIndex(source);
    m.contiguous = static_cast<uint8_t>(direct ? direct : 1);
    m.state = stateWord(source, flags);

    Shape sh;
    sh.points = 1;
    for (const auto& dim : m.dims) {
        sh.points *= dim.points;  // each factor < 2^32 and the product kept < 2^30
        if (sh.points > kMaxFloats) return std::nullopt;
    }
    sh.realOnly = flags & kRealOnly;
    sh.interleaved = flags & kInterleaved;
    sh.imSign = (flags & kComplexConjugate) ? -1.0f : 1.0f;
    sh.rowPoints = m.dims[m.contiguous].points;
    sh.rows = sh.points / sh.rowPoints;

    const int x = source.xIndex >= 1 && source.xIndex <= 3 ? source.xIndex : m.contiguous;
    const bool oneD = m.dimensions <= 1;
    // Every array the matrix gets counts, the work row of 1-D data included.
    const uint64_t floats = sh.points * (sh.realOnly ? 1 : 2) + (oneD ? m.dims[x].points : 0);
    if (floats > kMaxFloats) return std::nullopt;

    RawInput in;
    if (!openInput(source, in)) return std::nullopt;
    const bool jeol = isJeolSectionSource(source);
    const bool tiled = (flags & kBlockMatrix) && !memory;
    const auto layout = tiled ? planTiles(source, sh, in.size, d.valueBytes)
                              : planRows(source, sh, in.size, d.valueBytes, memory);
    const uint64_t values = sh.points * (sh.realOnly ? 1 : 2);
    if (jeol     ? !jeolSectionsFit(source, in.size)
        : jcamp  ? !jcampTableFits(source, values, in.size)
        : varian ? !varianBlocksFit(source, values, in.size)
                 : !layout)
        return std::nullopt;
    try {
        m.re.assign(sh.points, 0.0f);
        if (!sh.realOnly) m.im.assign(sh.points, 0.0f);
        if (oneD) {
            m.workRow.assign(m.dims[x].points, 0.0f);
            m.state |= matrix_state::kWorkRow;
        }
        d.staging.resize(kChunkValues * d.valueBytes);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    if (jeol) {
        if (!readJeolSections(source, m)) return std::nullopt;
    } else if (jcamp) {
        if (!loadJcampTable(source, m)) return std::nullopt;
    } else if (varian) {
        if (!readVarianBlocks(source, m)) return std::nullopt;
    } else if (layout->tiled)
        readTiles(in, sh, *layout, m, d);
    else
        readRows(in, sh, *layout, m, d);
    return m;
}

}  // namespace zolt

#include "io/nmrpipe/nmrpipe_reader.h"

#include <algorithm>
#include <cmath>

#include "base/files.h"
#include "base/paths.h"
#include "io/nmrpipe/nmrpipe_header.h"
#include "io/nucleus_label.h"

namespace zolt {

namespace {

using namespace nmrpipe_word;

// Larger counts cannot be data of a file the loader accepts (4 bytes per value).
constexpr double kMaxCount = double{1u << 30};

// A header value that counts something: a whole number from 1 up.
std::optional<uint32_t> countOf(double v) {
    if (!(v >= 1.0) || v > kMaxCount || v != std::floor(v)) return std::nullopt;
    return static_cast<uint32_t>(v);
}

// The words of one axis' parameters.
struct AxisWords {
    int observe, sweepWidth, origin, label;
};
constexpr AxisWords kDirectWords{kDirectObserve, kDirectSweepWidth, kDirectOrigin, kDirectLabel};
constexpr AxisWords kIndirectWords{kIndirectObserve, kIndirectSweepWidth, kIndirectOrigin,
                                   kIndirectLabel};

void setAxis(const NmrPipeHeader& h, const AxisWords& w, uint32_t points, DimensionRecord& d) {
    d.points = points;
    const double observe = h.value(w.observe);
    d.carrier = static_cast<float>(observe);
    if (observe > 0.0) {
        d.spectralWidth = static_cast<float>(h.value(w.sweepWidth) / observe);
        d.lowestPpm = static_cast<float>(h.value(w.origin) / observe);
    }
    setNucleusFromLabel(d, h.label(w.label));
}

// Bruker FnMODE codes of the indirect acquisition the header names.
uint8_t indirectPreference(double mode) {
    if (mode == 1.0) return 3;  // TPPI
    if (mode == 2.0) return 4;  // States
    return 0;
}

}  // namespace

std::optional<DataSetRead> readNmrPipe(const std::string& path, const ReadOptions& /*options*/) {
    const std::string head = readFileHead(path, kNmrPipeHeaderBytes);
    const auto h = parseNmrPipeHeader(
        std::span(reinterpret_cast<const unsigned char*>(head.data()), head.size()));
    if (!h) return std::nullopt;
    const auto points = countOf(h->value(kDirectSize));
    const auto rows = countOf(h->value(kRowCount));
    if (!points || !rows) return std::nullopt;
    int dimensions = static_cast<int>(std::clamp(h->value(kDimensionCount), 1.0, 3.0));
    if (h->value(kFileCount) > 1.0) dimensions = std::min(dimensions, 2);
    const bool twoD = *rows > 1;
    dimensions = twoD ? std::min(dimensions, 2) : 1;

    DataSetRead r;
    SpectrumSource& s = r.source;
    s.rawPath = path;
    s.fileName = fromPath(toPath(path).filename());
    s.numberType = NumberType::Float;
    s.headerSize = kNmrPipeHeaderBytes;
    s.blockSize = *points * 4;
    s.flags = source_flags::kLooseNativeFile;
    if (!h->bigEndian) s.flags |= source_flags::kLittleEndian;
    const bool complex = h->value(kQuadratureFlag) == 0.0;
    s.flags |= complex ? source_flags::kInterleaved | source_flags::kNmrPipeComplex
                       : source_flags::kRealOnly;
    if (h->value(kMagnitudeFlag) != 0.0) s.flags |= source_flags::kMagnitude;

    const bool transposed = h->value(kTransposed) != 0.0;
    const AxisWords& directWords = transposed ? kIndirectWords : kDirectWords;
    const AxisWords& indirectWords = transposed ? kDirectWords : kIndirectWords;
    const int direct = twoD ? 2 : 1;
    setAxis(*h, directWords, *points, s.dims[direct]);
    // A direct axis of complex points is a quadrature signal whatever the spectrometer did.
    s.ftPreferences[direct] = ' ';
    s.phaseable[direct] = complex ? 1 : 0;
    if (twoD && dimensions == 1) {
        s.dims[1].points = *rows;
        makePseudoDimension(s.dims[1], *rows);
    } else if (twoD) {
        setAxis(*h, indirectWords, *rows, s.dims[1]);
        s.ftPreferences[1] = indirectPreference(h->value(kIndirectAcquisition));
        s.phaseable[1] = complex ? 1 : 0;
    }
    int timeDomain = dimensions;
    if (h->value(kDirectTransformed) != 0.0) --timeDomain;
    if (h->value(kIndirectTransformed) != 0.0) --timeDomain;
    s.highestTIndex = static_cast<int8_t>(std::max(timeDomain, 0));

    r.metadata.temperature = static_cast<float>(h->value(kTemperature) + 273.15);
    return r;
}

}  // namespace zolt

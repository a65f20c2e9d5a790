#include "io/jeol/jeol_reader.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <vector>

#include "base/files.h"
#include "base/paths.h"
#include "io/jeol/jeol_axes.h"
#include "io/jeol/jeol_header.h"
#include "io/jeol/jeol_sections.h"

namespace zolt {

namespace {

// A parameter section larger than this is not a list of parameters.
constexpr uint32_t kMaxParameterBytes = 1u << 20;
// Larger counts cannot be the data of a file the loader accepts.
constexpr uint32_t kMaxPoints = 1u << 28;

// FT-preferences codes: no preference on the direct axis; the indirect axis of a phase-sensitive
// file holds echo and anti-echo signals (Bruker FnMODE 6), as the gradient-selected
// experiments acquire them.
constexpr uint8_t kDirectQuadrature = ' ';
constexpr uint8_t kIndirectEchoAntiEcho = 6;

using Parameters = std::map<std::string, JeolParameter>;

double number(const Parameters& p, const std::string& name) {
    const auto it = p.find(name);
    return it == p.end() || it->second.isText ? 0.0 : it->second.number;
}

std::string text(const Parameters& p, const std::string& name) {
    const auto it = p.find(name);
    return it == p.end() || !it->second.isText ? std::string() : it->second.text;
}

Parameters readParameters(const std::string& path, const JeolHeader& h, uint64_t fileSize) {
    if (h.paramLength == 0 || h.paramLength > kMaxParameterBytes ||
        uint64_t{h.paramStart} + h.paramLength > fileSize)
        return {};
    std::ifstream in(toPath(path), std::ios::binary);
    std::vector<unsigned char> bytes(h.paramLength);
    in.seekg(h.paramStart);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!in) return {};
    return parseJeolParameters(bytes, h.littleEndian);
}

// How many sections of real and imaginary parts the data hold: 1, 2 or 4; 0 for the layouts
// not read.
int sectionCount(const JeolHeader& h, int dimensions) {
    const JeolAxisType x = h.axisType[0];
    if (dimensions == 1) {
        if (x == JeolAxisType::Complex) return 2;
        return x == JeolAxisType::Real || x == JeolAxisType::Tppi ? 1 : 0;
    }
    const JeolAxisType y = h.axisType[1];
    if (x == JeolAxisType::Complex && y == JeolAxisType::Complex) return 4;
    if (x == JeolAxisType::RealComplex || x == JeolAxisType::Complex) return 2;
    return x == JeolAxisType::Real ? 1 : 0;
}

bool sizesFit(const JeolHeader& h, int dimensions, int sections, uint64_t fileSize) {
    uint64_t values = static_cast<uint64_t>(sections);
    for (int k = 0; k < dimensions; ++k) {
        const uint32_t n = h.points[static_cast<size_t>(k)];
        if (n < 1 || n > kMaxPoints) return false;
        if (dimensions == 2 && n % kJeolTileEdge) return false;
        values *= n;
        if (values > kMaxPoints) return false;
    }
    if (h.points[0] < 2) return false;
    const uint64_t bytes = values * (h.singlePrecision ? 4 : 8);
    return h.dataStart >= kJeolHeaderBytes && h.dataStart + bytes <= fileSize;
}

// The header states where its first and last kept points lie on the axis' scale, in seconds
// for a time-domain axis and in ppm or Hz for a transformed one.
void setScale(const JeolHeader& h, size_t k, double offsetPpm, DimensionRecord& d) {
    const double span = static_cast<double>(h.offsetStop[k]) - h.offsetStart[k];
    const double scale = std::pow(10.0, h.unit[k].exponent);
    const double step = span > 0 ? (h.axisStop[k] - h.axisStart[k]) * scale / span : 0.0;
    const double carrier = h.baseFrequency[k];
    if (h.unit[k].base == jeol_unit::kSecond) {
        if (step > 0 && carrier > 0) {
            d.spectralWidth = spectralWidthFromHz(1.0 / step, carrier);
            d.lowestPpm = static_cast<float>(offsetPpm - d.spectralWidth / 2.0);
        }
        return;
    }
    // Transformed: point 0 is the high-frequency edge, the scale runs downwards.
    double ppmStep = -step;
    double first = h.axisStart[k] * scale - h.offsetStart[k] * step;
    if (h.unit[k].base == jeol_unit::kHertz) {
        if (!(carrier > 0)) return;
        ppmStep /= carrier;
        first /= carrier;
    } else if (h.unit[k].base != jeol_unit::kPpm) {
        return;
    }
    const double width = ppmStep * h.points[k];
    d.spectralWidth = static_cast<float>(width);
    d.lowestPpm = static_cast<float>(first - width + ppmStep / 2.0);
}

void setAxis(const JeolHeader& h, const Parameters& p, size_t k, DimensionRecord& d) {
    d.points = h.points[k];
    d.carrier = static_cast<float>(h.baseFrequency[k]);
    const std::string prefix = k == 0 ? "x_" : "y_";
    if (!setJeolNucleus(d, h.axisTitle[k])) setJeolNucleus(d, text(p, prefix + "domain"));
    setScale(h, k, number(p, prefix + "offset"), d);
}

void readMetadata(const JeolHeader& h, const Parameters& p, DataSetRead& r) {
    r.metadata.solvent = text(p, "solvent");
    r.metadata.pulseSequence = text(p, "experiment");
    r.metadata.title = h.title.empty() ? text(p, "sample_id") : h.title;
    const auto temperature = p.find("temp_get");
    if (temperature != p.end() && !temperature->second.isText)
        r.metadata.temperature = static_cast<float>(temperature->second.number + 273.15);
    // Any number may stand in a damaged file: kept inside what the count holds.
    const double scans = number(p, "scans");
    r.info.scans = std::isnan(scans) ? 0 : static_cast<int>(std::clamp(scans, 0.0, 2147483647.0));
    r.info.relaxationDelay = number(p, "relaxation_delay");
}

}  // namespace

std::optional<DataSetRead> readJeolDelta(const std::string& path, const ReadOptions& /*options*/) {
    const std::string head = readFileHead(path, kJeolHeaderBytes);
    const auto h = parseJeolHeader(
        std::span(reinterpret_cast<const unsigned char*>(head.data()), head.size()));
    if (!h) return std::nullopt;
    std::error_code ec;
    const uint64_t fileSize = std::filesystem::file_size(toPath(path), ec);
    if (ec) return std::nullopt;
    const int dimensions = h->format == jeol_format::kOneD   ? 1
                           : h->format == jeol_format::kTwoD ? 2
                                                             : 0;
    const int sections = dimensions ? sectionCount(*h, dimensions) : 0;
    if (sections == 0 || !sizesFit(*h, dimensions, sections, fileSize)) return std::nullopt;
    const Parameters p = readParameters(path, *h, fileSize);

    DataSetRead r;
    SpectrumSource& s = r.source;
    s.rawPath = path;
    s.fileName = fromPath(toPath(path).filename());
    s.numberType = h->singlePrecision ? NumberType::Float : NumberType::Double;
    s.headerSize = h->dataStart;
    s.blockSize = kDefaultBlockSize;
    using namespace source_flags;
    // Complex data come in sections, which the loader reads through io/jeol/jeol_sections.
    s.flags = kLooseNativeFile | (sections > 1 ? kInterleaved | kBlockMatrix : kRealOnly);
    if (h->littleEndian) s.flags |= kLittleEndian;

    const int direct = dimensions;
    setAxis(*h, p, 0, s.dims[direct]);
    s.ftPreferences[direct] = kDirectQuadrature;
    s.phaseable[direct] = sections > 1 ? 1 : 0;
    int timeDomain = h->unit[0].base == jeol_unit::kSecond ? 1 : 0;
    if (timeDomain)
        s.dims[direct].timeShift =
            static_cast<float>(-jeolGroupDelay(text(p, "orders"), text(p, "factors")));
    if (dimensions == 2) {
        setAxis(*h, p, 1, s.dims[1]);
        s.flags |= kBlockMatrix;
        s.blockSize = kJeolTileEdge * kJeolTileEdge * 8;
        if (sections == 4) {
            // Each increment is two rows: the anti-echo and the echo signal.
            s.flags |= kJeolDelta2DPhaseSensitive;
            s.dims[1].points *= 2;
            s.ftPreferences[1] = kIndirectEchoAntiEcho;
            s.phaseable[1] = 1;
        }
        if (h->unit[1].base == jeol_unit::kSecond) ++timeDomain;
    }
    s.highestTIndex = static_cast<int8_t>(timeDomain);
    readMetadata(*h, p, r);
    return r;
}

}  // namespace zolt

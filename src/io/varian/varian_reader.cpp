#include "io/varian/varian_reader.h"

#include <algorithm>
#include <limits>

#include "base/files.h"
#include "base/paths.h"
#include "io/raw_loader.h"
#include "io/source_completion.h"
#include "io/varian/varian_blocks.h"
#include "io/varian/varian_parameters.h"

namespace zolt {

namespace {

constexpr uintmax_t kMaxParameterBytes = uintmax_t{16} << 20;
constexpr uintmax_t kMaxTextBytes = uintmax_t{1} << 20;
constexpr size_t kMetadataChars = 15;
constexpr double kDegreesToRadians = 0.017453292;
constexpr double kCelsiusToKelvin = 273.15;
constexpr uint8_t kNoPreference = 0x20;
constexpr uint8_t kStates = 0x21;
constexpr uint8_t kOuterStates = 0x10;

enum class Channel { Observe, Decoupler, SecondDecoupler, Pseudo, Unknown };

Channel channelOf(const std::string& axis, size_t i) {
    if (i >= axis.size()) return Channel::Pseudo;  // no letter: an arrayed series
    switch (axis[i]) {
        case 'p':
            return Channel::Observe;
        case '1':
        case 'd':
            return Channel::Decoupler;
        case '2':
            return Channel::SecondDecoupler;
        default:
            return Channel::Unknown;
    }
}

struct AxisParameters {
    double sw, rfl, rfp;
};

// Parameters of the direct axis, the first indirect and the second indirect one.
AxisParameters axisParameters(const VarianParameters& p, size_t i) {
    if (i == 0) return {p.sw, p.rfl, p.rfp};
    if (i == 1) return {p.sw1, p.rfl1, p.rfp1};
    return {p.sw2, p.rfl2, p.rfp2};
}

void setFrequencyAxis(const VarianParameters& p, Channel channel, size_t i, bool inadequate,
                      DimensionRecord& d) {
    const std::string* nucleus = &p.tn;
    double carrier = p.sfrq;
    if (channel == Channel::Decoupler) nucleus = &p.dn, carrier = p.dfrq;
    if (channel == Channel::SecondDecoupler) nucleus = &p.dn2, carrier = p.dfrq2;
    // A carrier below 1 MHz would give no usable scale; the opener raises it to 1 MHz anyway.
    const double mhz = carrier >= 1.0 ? carrier : 1.0;
    const AxisParameters a = axisParameters(p, i);
    d.carrier = static_cast<float>(carrier);
    d.spectralWidth = static_cast<float>(a.sw / mhz);
    d.lowestPpm = static_cast<float>((a.rfp - a.rfl) / mhz);
    char atom[3];
    int mass = 0;
    if (parseVarianNucleus(*nucleus, atom, mass)) {
        d.isotope = static_cast<uint8_t>(mass);
        setAtom(d, atom);
    }
    if (inadequate && i > 0) {  // the double-quantum axis has no nucleus of its own
        d.isotope = 0;
        setAtom(d, "X");
        d.lowestPpm = -d.spectralWidth / 2.0f;
    }
}

std::string cut(const std::string& text, size_t chars) {
    return text.substr(0, std::min(text.size(), chars));
}

// Points of the indirect axes: 2-D takes every trace; 3-D shares them between the two.
bool setIndirectPoints(const VarianParameters& p, int n, uint64_t traces, SpectrumSource& s) {
    if (traces > std::numeric_limits<uint32_t>::max()) return false;
    if (n == 2) {
        s.dims[1].points = static_cast<uint32_t>(traces);
        return true;
    }
    const bool phaseArrayed = p.array.find("phase") != std::string::npos;
    const uint64_t first = uint64_t(p.ni) * (phaseArrayed ? 2 : 1);
    if (first == 0 || first > traces) return false;
    s.dims[2].points = static_cast<uint32_t>(first);
    s.dims[1].points = static_cast<uint32_t>(traces / first);
    return true;
}

}  // namespace

std::optional<DataSetRead> readVarianFolder(const std::string& path, const ReadOptions&) {
    const std::filesystem::path given = toPath(path);
    const std::filesystem::path folder = isDirectory(path) ? given : given.parent_path();
    const std::string fid = fromPath(folder / "fid");
    const auto header = parseVarianFileHeader(readFileHead(fid, kVarianFileHeaderBytes));
    const auto procpar = readWholeFile(fromPath(folder / "procpar"), kMaxParameterBytes);
    const auto size = fileSize(fid);
    if (!header || !procpar || !size) return std::nullopt;
    VarianParameters p = parseVarianParameters(*procpar);

    DataSetRead r;
    SpectrumSource& s = r.source;
    s.rawPath = fid;
    s.fileName = "fid";
    s.provenance = "Varian";
    s.numberType = varianNumberType(*header);
    s.flags = source_flags::kVarianBinary;
    const bool realOnly = varianRealOnly(*header);
    if (realOnly) s.flags |= source_flags::kRealOnly;
    if (header->bytesPerBlock <= kVarianBlockHeaderBytes) return std::nullopt;
    s.headerSize = kVarianFileHeaderBytes;
    s.blockHeader = kVarianBlockHeaderBytes;
    s.blockSize = header->bytesPerBlock - kVarianBlockHeaderBytes;
    // The traces a header announces must fit in its blocks.
    const uint64_t dataBytes =
        uint64_t{header->tracesPerBlock} * header->pointsPerTrace * rawValueBytes(s.numberType);
    if (dataBytes == 0 || dataBytes > s.blockSize) return std::nullopt;
    const uint64_t traces = uint64_t{varianBlocksPresent(*header, *size)} * header->tracesPerBlock;
    if (traces == 0) return std::nullopt;

    if (p.ni < 2 && p.ni2 >= 2) p.ni = p.ni2, p.ni2 = 0;
    const int n = p.ni < 2 ? 1 : (p.ni2 > 1 ? 3 : 2);
    DimensionRecord& direct = s.dims[n];
    direct.points = realOnly ? header->pointsPerTrace : header->pointsPerTrace / 2;
    if (n > 1 && !setIndirectPoints(p, n, traces, s)) return std::nullopt;

    const bool inadequate = p.seqfil.starts_with("inadqt");
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        DimensionRecord& d = s.dims[n - i];
        Channel channel = channelOf(p.axis, i);
        if (channel == Channel::Pseudo && i > 0) {
            makePseudoDimension(d, d.points);
            continue;
        }
        // No dialog here: a letter naming no channel stands for the observed nucleus.
        if (channel == Channel::Pseudo || channel == Channel::Unknown) channel = Channel::Observe;
        setFrequencyAxis(p, channel, i, inadequate, d);
    }
    direct.phase0 = static_cast<float>((p.rp + p.lp) * kDegreesToRadians);
    direct.phase1 = static_cast<float>(p.lp * -kDegreesToRadians);
    direct.timeShift = static_cast<float>(-p.lsfid);
    s.ftPreferences[n] = kNoPreference;
    if (n > 1) s.ftPreferences[n - 1] = firstIndirectQuadrature(p);
    if (n == 3) {
        s.ftPreferences[1] = kStates;
        if (p.array.starts_with("phase2,phase")) s.ftPreferences[2] = kOuterStates;
        s.flags |= source_flags::kRanceKay;
    }
    for (int f = 1; f <= n; ++f) {
        if (s.dims[f].points == 0) return std::nullopt;
        s.phaseable[f] = isPseudoDimension(s.dims[f]) ? 0 : 1;
    }
    s.highestTIndex = static_cast<int8_t>(header->status & varian_status::kSpectrum ? 0 : n);

    r.metadata.solvent = cut(p.solvent, kMetadataChars);
    r.metadata.pulseSequence = cut(p.seqfil, kMetadataChars);
    if (p.tempFound) r.metadata.temperature = static_cast<float>(p.temp + kCelsiusToKelvin);
    if (auto title = readWholeFile(fromPath(folder / "text"), kMaxTextBytes))
        r.metadata.title = std::move(*title);
    completeSource(s);
    return r;
}

}  // namespace zolt

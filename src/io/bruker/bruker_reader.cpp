#include "io/bruker/bruker_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "io/bruker/bruker_layout.h"
#include "io/bruker/bruker_pulse_program.h"
#include "io/byte_order_probe.h"
#include "io/source_completion.h"

namespace zolt {

namespace {

constexpr uint64_t kRowAlignment = 1024;  // ser rows start on 1 kB boundaries
constexpr int kMaxTileWidth = 1024;
constexpr int kMaxTileHeight = 255;         // what the 8-bit sub-matrix height holds
constexpr uint8_t kBrukerEchoAntiEcho = 6;  // FnMODE

// Sizes and blocks of an FID or a ser file. False when a row would not fit the 32-bit fields.
bool setRawSizes(const BrukerLayout& layout, const AcquisitionParameters& direct,
                 SpectrumSource& s) {
    const int n = layout.dimensions;
    const uint64_t bytesPerPoint = s.numberType == NumberType::Double ? 16 : 8;
    const auto size = fileSize(layout.dataPath);
    if (n == 1) {
        if (direct.td == 0 && size)
            s.dims[1].points = static_cast<uint32_t>(
                std::min<uint64_t>(*size / bytesPerPoint, std::numeric_limits<uint32_t>::max()));
        s.blockSize = kDefaultBlockSize;
        s.blockHeader = 0;
        return true;
    }
    const uint64_t row = s.dims[n].points * bytesPerPoint;
    const uint64_t padded = (row + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (padded == 0 || padded > std::numeric_limits<uint32_t>::max()) return false;
    s.blockSize = static_cast<uint32_t>(padded);
    s.blockHeader = static_cast<uint32_t>(padded - row);
    // An interrupted acquisition leaves fewer complete rows than TD asks for.
    if (n == 2 && size && *size / padded < s.dims[1].points)
        s.dims[1].points = static_cast<uint32_t>(*size / padded);
    return true;
}

// Only the first indirect axis may carry a NUS count, and only one that changes its size.
void settleNusCounts(SpectrumSource& s, int n, const std::array<AcquisitionParameters, 3>& acq) {
    if (n < 2) {
        s.dims[1].pointsAfterNus = 0;
        return;
    }
    const int first = n - 1;
    bool others = false;
    for (int f = 1; f <= n; ++f)
        if (f != first && s.dims[f].pointsAfterNus) others = true;
    const DimensionRecord& d = s.dims[first];
    const bool keep = !others && d.pointsAfterNus != 0 &&
                      d.pointsAfterNus != static_cast<uint32_t>(std::max(acq[1].td, 0));
    for (int f = 1; f <= n; ++f)
        if (!keep || f != first) s.dims[f].pointsAfterNus = 0;
}

// An indirect axis without an offset shares the scale of the axis of its nucleus.
void borrowLowestPpm(SpectrumSource& s, int n) {
    for (int f = 1; f < n; ++f) {
        DimensionRecord& d = s.dims[f];
        if (d.lowestPpm != 0.0f) continue;
        for (int g = f + 1; g <= n && g <= f + 2; ++g) {
            if (s.dims[g].isotope == d.isotope) {
                d.lowestPpm = s.dims[g].lowestPpm;
                break;
            }
        }
    }
}

VendorProcessing vendorProcessing(const ProcessingParameters& p) {
    VendorProcessing v;
    v.present = p.windowFound || p.si > 0;
    v.window = p.windowFound ? p.wdw : 0;
    v.lineBroadening = p.lb;
    v.gaussianFraction = p.gb;
    v.sineBellDivisor = p.ssb;
    v.ftSize = p.si;
    return v;
}

// Bruker combines echo and anti-echo with the anti-echo's sign opposite to the one our
// recombination expects, so the PHC0 it keeps for the axis transformed just before (whose
// real and imaginary parts the recombination consumes) is a quarter turn from the phase that
// makes that axis absorptive here.
void turnBeforeEchoAntiEcho(SpectrumSource& s, int n, const std::array<bool, 4>& phaseRead) {
    for (int f = 1; f < n; ++f) {
        if (s.ftPreferences[f] != kBrukerEchoAntiEcho || !phaseRead[f + 1]) continue;
        DimensionRecord& d = s.dims[f + 1];
        d.phase0 = static_cast<float>(
            std::remainder(double{d.phase0} + std::numbers::pi / 2.0, 2.0 * std::numbers::pi));
    }
}

// procs, proc2s, proc3s: the offset, the spectrometer's phases, its window and FT size and,
// for processed data, the stored region and its tiling.
bool applyProcessing(const BrukerLayout& layout, SpectrumSource& s,
                     std::array<VendorProcessing, 4>& vendor) {
    const int n = layout.dimensions;
    int tileWidth = 0;
    std::array<bool, 4> phaseRead{};
    for (int i = 0; i < n && i < static_cast<int>(layout.processingFiles.size()); ++i) {
        const auto text = readParameterFile(layout.processingFiles[i]);
        if (!text) continue;
        const ProcessingParameters p = parseProcessingParameters(*text);
        const int f = n - i;
        DimensionRecord& d = s.dims[f];
        if (i == 0 && d.lowestPpm == 0.0f && p.offsetFound)
            d.lowestPpm = static_cast<float>(p.offset - d.spectralWidth);
        if (!layout.processed) {
            vendor[f] = vendorProcessing(p);
            if (n > 1) {
                d.phase0 = static_cast<float>(p.phc0 * kDegreesToStoredRadians);
                d.phase1 = static_cast<float>(p.phc1 * kDegreesToStoredRadians);
                phaseRead[f] = true;
            }
            continue;
        }
        if (p.si > 0 && p.stsi > 0) {
            const double step = static_cast<double>(d.spectralWidth) / p.si;
            d.points = static_cast<uint32_t>(p.stsi);
            if (i == 0) d.points = std::min(d.points, static_cast<uint32_t>(p.si));
            d.spectralWidth = static_cast<float>(p.stsi * step);
            d.lowestPpm = static_cast<float>(d.lowestPpm + (double(p.si) - p.stsr - p.stsi) * step);
            if (!(d.spectralWidth >= 0.01f))
                d.spectralWidth = static_cast<float>(p.swP / d.carrier);
        }
        // Only 2-D and 3-D files are stored in tiles; a 1r is one row whatever XDIM says.
        if (i == 0 && n > 1 && p.xdim >= 2 && p.xdim <= kMaxTileWidth) {
            tileWidth = p.xdim;
            s.flags |= source_flags::kBlockMatrix;
            s.blockSize = static_cast<uint32_t>(p.xdim) * static_cast<uint32_t>(p.xdim) * 8;
            s.subMatrixHeight = 0;  // square tiles unless the next axis says otherwise
        }
        if (i == 1 && tileWidth && p.xdim != tileWidth && p.xdim >= 1 && p.xdim <= kMaxTileHeight)
            s.subMatrixHeight = static_cast<uint8_t>(p.xdim);
    }
    if (!layout.processed) turnBeforeEchoAntiEcho(s, n, phaseRead);
    if (layout.processed && n > 1 && !(s.flags & source_flags::kBlockMatrix)) {
        const uint64_t row = uint64_t{4} * s.dims[n].points;
        if (row == 0 || row > std::numeric_limits<uint32_t>::max()) return false;
        s.blockSize = static_cast<uint32_t>(row);
        s.blockHeader = 0;
    }
    return true;
}

}  // namespace

std::optional<DataSetRead> readBrukerLayout(const BrukerLayout& layout) {
    const int n = layout.dimensions;
    if (n < 1 || n > 3 || static_cast<int>(layout.acquisitionFiles.size()) < n) return std::nullopt;
    DataSetRead r;
    SpectrumSource& s = r.source;
    s.rawPath = layout.dataPath;
    s.fileName = fromPath(toPath(layout.dataPath).filename());
    s.provenance = layout.provenance;

    std::array<AcquisitionParameters, 3> acq;
    for (int i = 0; i < n; ++i) {
        const auto text = readParameterFile(layout.acquisitionFiles[i]);
        if (!text) return std::nullopt;
        acq[i] = parseAcquisitionParameters(*text);
        if (i == 0) r.info = parseAcquisitionInfo(*text);
    }
    r.metadata.solvent = withoutAngleBrackets(acq[0].solvent);
    r.metadata.pulseSequence = withoutAngleBrackets(acq[0].pulseProgram);
    const std::string& program = r.metadata.pulseSequence;
    for (int i = 0; i < n; ++i)
        applyAcquisitionParameters(acq[i], i == 0, program, s.dims[n - i], s.ftPreferences[n - i]);
    if (isInadequate(program)) {
        // The indirect axis of an INADEQUATE is the double-quantum frequency.
        for (int f = 1; f < n; ++f) {
            DimensionRecord& d = s.dims[f];
            d.isotope = 0;
            setAtom(d, "X");
            d.lowestPpm = -d.spectralWidth / 2.0f;
            if (f == 1) d.carrier = 2.0f * s.dims[2].carrier;
        }
    }

    if (layout.processed) {
        s.numberType = NumberType::Long;
        s.flags |= source_flags::kRealOnly;
    } else if (layout.littleEndianFloats) {
        s.numberType = NumberType::Float;
        s.flags |= source_flags::kLittleEndian;
    } else if (acq[0].dtypa == 2) {
        s.numberType = NumberType::Double;
        s.flags |= source_flags::kLittleEndian;
    }
    if (!layout.processed) {
        if (!setRawSizes(layout, acq[0], s)) return std::nullopt;
        settleNusCounts(s, n, acq);
    } else {
        for (DimensionRecord& d : s.dims) d.pointsAfterNus = 0;
    }
    borrowLowestPpm(s, n);
    if (!applyProcessing(layout, s, r.vendorProcessing)) return std::nullopt;
    if (layout.arrayedSecondAxis && n == 2) makePseudoDimension(s.dims[1], s.dims[1].points);
    for (int f = 1; f <= n; ++f)
        if (s.dims[f].points == 0) return std::nullopt;
    if (!layout.processed)
        for (int f = 1; f <= n; ++f) s.phaseable[f] = isPseudoDimension(s.dims[f]) ? 0 : 1;
    s.highestTIndex = static_cast<int8_t>(layout.processed ? 0 : n);

    if (!layout.titlePath.empty())
        if (auto title = readParameterFile(layout.titlePath)) r.metadata.title = std::move(*title);
    completeSource(s);
    probeByteOrder(s);
    return r;
}

std::optional<DataSetRead> readBrukerFolder(const std::string& path, const ReadOptions& options) {
    return readBrukerExperiment(path, options, "Bruker");
}

std::optional<DataSetRead> readBrukerExperiment(const std::string& path, const ReadOptions& options,
                                                const std::string& provenance) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path given = toPath(path);
    const bool isFolder = fs::is_directory(given, ec);
    const std::string folder = fromPath(isFolder ? given : given.parent_path());
    const auto inFolder = [&](const std::string& name) {
        return folder.empty() ? name : folder + "/" + name;
    };

    BrukerLayout layout;
    layout.provenance = provenance;
    if (isRegularFile(inFolder("ser"))) {
        layout.dataPath = inFolder("ser");
        layout.dimensions = 2;
    } else if (!isFolder && isRegularFile(path + ".ser")) {
        layout.dataPath = path + ".ser";
        layout.dimensions = 2;
    } else if (isRegularFile(inFolder("fid"))) {
        layout.dataPath = inFolder("fid");
        layout.dimensions = 1;
    } else if (options.processed && isRegularFile(inFolder("acqu2s")) &&
               isRegularFile(inFolder("pdata/1/2rr"))) {
        // Processed data kept without their FID (the raw files were not archived).
        layout.dimensions = 2;
    } else if (options.processed && isRegularFile(inFolder("pdata/1/1r"))) {
        layout.dimensions = 1;
    } else {
        return std::nullopt;
    }
    if (layout.dimensions == 2 && options.threeD && !layout.dataPath.empty()) {
        if (isRegularFile(inFolder("acqu3s"))) {
            layout.dimensions = 3;
        } else if (auto program = readParameterFile(inFolder("pulseprogram"))) {
            layout.arrayedSecondAxis = pulseProgramArraysSecondAxis(*program);
        }
    }
    const int n = layout.dimensions;
    if (options.processed) {
        const std::string name = std::to_string(n) + std::string(static_cast<size_t>(n), 'r');
        if (isRegularFile(inFolder("pdata/1/" + name))) {
            layout.dataPath = inFolder("pdata/1/" + name);
            layout.processed = true;
        }
    }
    if (!layout.processed && layout.dataPath.empty()) return std::nullopt;
    const std::array<const char*, 3> acquisition = {"acqus", "acqu2s", "acqu3s"};
    const std::array<const char*, 3> processing = {"procs", "proc2s", "proc3s"};
    for (int i = 0; i < n; ++i) {
        layout.acquisitionFiles.push_back(inFolder(acquisition[i]));
        layout.processingFiles.push_back(inFolder(std::string("pdata/1/") + processing[i]));
    }
    layout.titlePath = inFolder("pdata/1/title");
    return readBrukerLayout(layout);
}

}  // namespace zolt

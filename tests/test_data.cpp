#include "test_data.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "app/document_opening.h"
#include "io/bruker/bruker_reader.h"
#include "io/raw_loader.h"
#include "processing/ft_pipeline.h"
#include "processing/local_maxima.h"

namespace zolt::testdata {

namespace {

namespace fs = std::filesystem;

std::string findRoot() {
    if (const char* env = std::getenv("ZOLT_TESTDATA_DIR"); env && *env) return env;
    if (readable(ZOLT_TESTDATA_DIR)) return ZOLT_TESTDATA_DIR;
    std::vector<fs::path> candidates;
    std::error_code ec;
    const fs::path program = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        candidates.push_back(program.parent_path() / "testdata");
        candidates.push_back(program.parent_path().parent_path() / "testdata");
    }
    const fs::path here = fs::current_path(ec);
    if (!ec) {
        candidates.push_back(here / "testdata");
        candidates.push_back(here / "build" / "testdata");
    }
    for (const auto& c : candidates)
        if (readable(c.string())) return c.lexically_normal().string();
    return ZOLT_TESTDATA_DIR;
}

}  // namespace

bool readable(const std::string& folder) {
    std::error_code ec;
    fs::directory_iterator listing(folder, ec);
    return !ec;
}

std::string nodeModules() {
    if (const char* env = std::getenv("ZOLT_NODE_MODULES_DIR"); env && *env) return env;
    return ZOLT_NODE_MODULES_DIR;
}

std::string testSource(const std::string& relative) {
    return (fs::path(ZOLT_TESTS_SOURCE_DIR) / relative).string();
}

std::string root() {
    static const std::string found = findRoot();
    return found;
}

std::string bruker(const std::string& name) {
    static const std::map<std::string, std::string> folders = {
        {"aspirin-1h", "aspirin-1h/1"},
        {"aspirin-1h-processed", "aspirin-1h-processed/1"},
        {"naphtoicAcid-1h", "naphtoicAcid-1h/1"},
        {"strychnine-1h", "strychnine-1h/strychnine/10"},
        {"cyclosporin-1h", "cyclosporin_1h/cyclosporin_1h/1"},
        {"cyclosporin-cosy", "cyclosporin_cosy/cyclosporin_cosy/1"},
        {"cyclosporin-hsqc", "cyclosporin_hsqc/cyclosporin_hsqc/3"},
        {"cyclosporin-hmbc", "cyclosporin_hmbc/cyclosporin_hmbc/2"},
        {"inversion-recovery", "inversionRecovery2D/inversionRecovery2D/1"},
        {"t1rho-1h", "t1rho-1H/189"},
        {"cosy-nus", "cosy-nus/2"},
        {"hsqc-nus", "hsqc-nus/3"},
    };
    auto it = folders.find(name);
    if (it == folders.end()) throw std::invalid_argument("no test set " + name);
    return root() + "/bruker/" + it->second;
}

std::string shared(const std::string& relative) {
    return std::string(ZOLT_SHARED_TESTDATA_DIR) + "/" + relative;
}

namespace {

// Every folder handed out is removed, with what the test left in it, when the program ends.
struct TempDirs {
    std::vector<std::filesystem::path> made;
    ~TempDirs() {
        std::error_code ec;
        for (const auto& dir : made) std::filesystem::remove_all(dir, ec);
    }
};

}  // namespace

std::string freshTempDir(const std::string& tag) {
    static TempDirs dirs;
    std::random_device rd;
    auto dir = std::filesystem::temp_directory_path() /
               ("zolt-" + tag + "-" + std::to_string(rd()) + std::to_string(rd()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    dirs.made.push_back(dir);
    return dir.string();
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::unique_ptr<SpectrumDocument> openExperiment(const std::string& name) {
    Message failure;
    return readDocument(bruker(name), Preferences{}, failure);
}

bool transformAll(SpectrumDocument& doc) {
    while (doc.source.highestTIndex > 0)
        if (transformNextDimension(doc).outcome != FtOutcome::Transformed) return false;
    return true;
}

std::unique_ptr<SpectrumDocument> openTransformed(const std::string& name) {
    auto doc = openExperiment(name);
    return doc && transformAll(*doc) ? std::move(doc) : nullptr;
}

std::optional<SpectrumMatrix> vendorSpectrum(const std::string& name) {
    ReadOptions processed;
    processed.processed = true;
    const auto read = readBrukerFolder(bruker(name), processed);
    // Without processed files the reader falls back to the time-domain data.
    if (!read || !(read->source.flags & source_flags::kRealOnly)) return std::nullopt;
    auto m = loadMatrix(read->source);
    if (!m) return std::nullopt;
    // 1i has the layout of 1r: the same reading gives the imaginary parts.
    SpectrumSource imaginary = read->source;
    imaginary.rawPath = std::filesystem::path(imaginary.rawPath).replace_filename("1i").string();
    if (countDimensions(read->source) == 1 && std::filesystem::exists(imaginary.rawPath))
        if (auto im = loadMatrix(imaginary); im && im->re.size() == m->re.size()) {
            m->im = std::move(im->re);
            m->state &= ~matrix_state::kRealOnly;
        }
    return m;
}

double correlationOverPpm(const SpectrumMatrix& a, const SpectrumMatrix& b, bool moduli) {
    auto value = [&](const SpectrumMatrix& m, size_t i) -> double {
        return moduli ? std::hypot(m.re[i], m.im[i]) : m.re[i];
    };
    const double lo = b.dims[1].lowestPpm, hi = lo + b.dims[1].spectralWidth;
    std::vector<double> x, y;
    for (size_t i = 0; i < a.dims[1].points; ++i) {
        const double ppm = ppmOfPoint(a.dims[1], static_cast<double>(i));
        if (ppm <= lo || ppm >= hi) continue;
        x.push_back(value(a, i));
        y.push_back(value(b, static_cast<size_t>(pointOfPpm(b.dims[1], ppm))));
    }
    return correlation(x, y);
}

double negativeShare(const std::vector<float>& re) {
    double positive = 0.0, negative = 0.0;
    for (float v : re) (v > 0 ? positive : negative) += v;
    return -negative / positive;
}

std::string axisText(const DimensionRecord& d) {
    // Adding zero turns a stored -0 into 0: the sign of a zero is no property of the axis.
    const auto real = [](float v) { return double{v + 0.0f}; };
    char text[200];
    const std::string atom(d.atom, strnlen(d.atom, 2));
    const std::string nucleus = (d.isotope ? std::to_string(d.isotope) : "") + atom;
    int n = std::snprintf(text, sizeof text, "%u %s sw %.7g lo %.7g at %.7g shift %.7g", d.points,
                          nucleus.c_str(), real(d.spectralWidth), real(d.lowestPpm),
                          real(d.carrier), real(d.timeShift));
    if (d.pointsAfterNus)
        n += std::snprintf(text + n, sizeof text - n, " nus %u", d.pointsAfterNus);
    if (d.phase0 != 0.0f || d.phase1 != 0.0f)
        std::snprintf(text + n, sizeof text - n, " phase %.7g %.7g", real(d.phase0),
                      real(d.phase1));
    return text;
}

std::string sourceText(const SpectrumSource& s) {
    std::string flags;
    for (const auto& f : sourceFlagNames())
        if (s.flags & f.bit) flags += std::string(flags.empty() ? "" : ", ") + f.key;
    char text[200];
    std::snprintf(text, sizeof text,
                  "%s; %s; header %u; block %u + %u; time domain %d; x %d y %d z %d; ft %d %d %d; "
                  "phaseable %d %d %d",
                  numberTypeName(s.numberType), flags.empty() ? "no flags" : flags.c_str(),
                  unsigned(s.headerSize), unsigned(s.blockSize), unsigned(s.blockHeader),
                  int(s.highestTIndex), int(s.xIndex), int(s.yIndex), int(s.zIndex),
                  int(s.ftPreferences[1]), int(s.ftPreferences[2]), int(s.ftPreferences[3]),
                  int(s.phaseable[1]), int(s.phaseable[2]), int(s.phaseable[3]));
    std::string out = text;
    for (int f = 1; f <= 3; ++f)
        if (s.dims[f].points > 1) out += "\nf" + std::to_string(f) + ": " + axisText(s.dims[f]);
    return out;
}

int directAxis(const SpectrumMatrix& m) {
    return m.dims[2].points > 1 ? 2 : 1;
}

size_t pointIndex(const SpectrumMatrix& m, size_t y, size_t x) {
    if (directAxis(m) == 1) return x;
    return m.contiguous == 1 ? x * m.dims[1].points + y : y * m.dims[2].points + x;
}

std::vector<Peak> strongestPeaks(const SpectrumMatrix& m, size_t count, bool modulus,
                                 size_t margin) {
    const int direct = directAxis(m);
    const size_t nx = m.dims[direct].points, ny = direct == 2 ? m.dims[1].points : 1;
    auto at = [&](size_t y, size_t x) -> double {
        const size_t i = pointIndex(m, y, x);
        return modulus ? std::hypot(m.re[i], m.im[i]) : std::fabs(m.re[i]);
    };
    std::vector<Peak> peaks;
    for (const auto& top : strongestLocalMaxima(at, ny, nx, ny > 1 ? margin : 0, margin, count))
        peaks.push_back({top.i1, top.i2, direct == 2 ? ppmOfPoint(m.dims[1], double(top.i1)) : 0.0,
                         ppmOfPoint(m.dims[direct], double(top.i2)), top.value});
    return peaks;
}

}  // namespace zolt::testdata

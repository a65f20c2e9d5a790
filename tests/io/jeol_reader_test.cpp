// The JEOL Delta reader on the jeol-data-test files: axes as their headers state them, 1-D
// spectra that transform with their solvent signals in place, 2-D files read section by
// section, and damaged copies that are refused with the format's message.
#include "io/jeol/jeol_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>

#include "app/application.h"
#include "app/recording_platform.h"
#include "io/data_set_opening.h"
#include "io/raw_loader.h"
#include "test_data.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using namespace source_flags;

std::string jeolFile(const std::string& name) {
    return testdata::root() + "/jeol/" + name;
}

std::vector<std::string> allFiles() {
    std::vector<std::string> files;
    for (const auto& e : fs::directory_iterator(testdata::root() + "/jeol"))
        if (e.path().extension() == ".jdf") files.push_back(e.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string atom(const DimensionRecord& d) {
    char buffer[3];
    return atomText(d, buffer);
}

// Big-endian fields of the fixed header, read here without the reader's help.
uint64_t be(const std::string& h, size_t at, size_t bytes) {
    uint64_t v = 0;
    for (size_t k = 0; k < bytes; ++k) v = v << 8 | static_cast<unsigned char>(h[at + k]);
    return v;
}

TEST(JeolReader, EveryFileOpensWithTheAxesItsHeaderStates) {
    const auto files = allFiles();
    ASSERT_EQ(files.size(), 38u);
    for (const std::string& path : files) {
        SCOPED_TRACE(path);
        const std::string h = testdata::readFile(path).substr(0, 1360);
        Message failure;
        const auto read = readDataSet(path, FormatCode::JeolDelta, {}, failure);
        ASSERT_TRUE(read);
        const SpectrumSource& s = read->source;
        const bool twoD = (h[14] & 0x3F) == 2;
        EXPECT_EQ(s.provenance, "Jeol Delta");
        EXPECT_EQ(countDimensions(s), twoD ? 2 : 1);
        EXPECT_EQ(s.numberType, (h[14] >> 6) ? NumberType::Float : NumberType::Double);
        EXPECT_EQ(s.headerSize, be(h, 1284, 4));
        for (int k = 0; k < (twoD ? 2 : 1); ++k) {
            const DimensionRecord& d = s.dims[twoD ? 2 - k : 1];
            const bool hypercomplex = k == 1 && (s.flags & kJeolDelta2DPhaseSensitive);
            EXPECT_EQ(d.points, be(h, 176 + 4 * k, 4) * (hypercomplex ? 2 : 1));
            EXPECT_FLOAT_EQ(d.carrier, std::bit_cast<double>(be(h, 1064 + 8 * k, 8)));
            const std::string title = h.substr(808 + 32 * k, 32).c_str();
            const std::map<std::string, std::string> atoms = {
                {"Proton", "H"}, {"1H", "H"},         {"Carbon13", "C"},
                {"13C", "C"},    {"Fluorine19", "F"}, {"Phosphorus31", "P"}};
            EXPECT_EQ(atom(d), atoms.at(title));
        }
        const auto m = loadMatrix(s);
        ASSERT_TRUE(m);
        EXPECT_TRUE(std::isfinite(m->re[m->re.size() / 2]));
    }
}

// Widths and offsets as the spectrometer's parameters give them (x_sweep, x_offset).
TEST(JeolReader, AxesOfTheNucleiAndFieldsOfTheSet) {
    struct Case {
        const char* file;
        const char* atom;
        int isotope;
        double widthHz, centrePpm;
        uint32_t points;
        float timeShift;
    } cases[] = {
        {"EC=8C_5m200u_MeOD_bzhou21_20190228_qH-1-1.jdf", "H", 1, 7494.0048, 5, 32768, -19.656f},
        {"Resveratrol1_11280u600u_MeOD.jdf", "H", 1, 11261.261, 5, 44984, -19.667f},
        {"Rutin_3080ug200uL_DMSOd6_13CNMR_400MHz_Jeol.jdf", "C", 13, 31565.657, 100, 32768,
         -19.656f},
        {"fluorine.jdf", "F", 19, 120192.31, -100, 32768, -19.656f},
        {"phosphorus.jdf", "P", 31, 100806.45, 0, 32768, -19.656f},
        {"8PA_SynLK_5360u150uDMSO_snc1811_qH_SpinOn-1-2.jdf", "H", 1, 7494.0048, 6, 262144, 0},
        {"PM032220_3000U200U_Bin_180218_qH-1-4.jdf", "H", 1, 5995.57, 5, 104864, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const auto read = readJeolDelta(jeolFile(c.file));
        ASSERT_TRUE(read);
        const DimensionRecord& d = read->source.dims[1];
        EXPECT_EQ(atom(d), c.atom);
        EXPECT_EQ(d.isotope, c.isotope);
        EXPECT_EQ(d.points, c.points);
        EXPECT_NEAR(spectralWidthHz(d), c.widthHz, 0.01);
        EXPECT_NEAR(d.lowestPpm + d.spectralWidth / 2, c.centrePpm, 1e-3);
        EXPECT_NEAR(d.timeShift, c.timeShift, 1e-3);
        EXPECT_EQ(read->source.highestTIndex, c.timeShift != 0 ? 1 : 0);
    }
}

TEST(JeolReader, ParametersFillTheMetadata) {
    const auto read = readJeolDelta(jeolFile("Rutin_3080ug200uL_DMSOd6_qHNMR_400MHz_Jeol.jdf"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->metadata.solvent, "DMSO-D6");
    EXPECT_EQ(read->metadata.pulseSequence, "single_pulse_dec");
    EXPECT_NEAR(read->metadata.temperature, 298.15f, 1e-3);
}

// Literature shifts of the residual protons, which the proton scales meet; for carbon, how far
// the septet's centre lies from the spectrometer's carrier. The carbon scales were left
// unreferenced: on them (and on an independent reader's, which places the lines alike) the
// methanol-d4 septet is centred at 47.68 to 47.74 ppm, not 49.0, in all sessions and temperatures,
// and the DMSO-d6 one at 40.04, not 39.5. The header holds no other reference.
struct Solvent {
    const char* name;
    double proton, carbonHz;
};
constexpr Solvent kSolvents[] = {{"METHANOL-D4", 3.31, -5256.5}, {"DMSO-D6", 2.50, -6027.4}};

double f64At(const std::string& h, size_t at) {
    return std::bit_cast<double>(be(h, at, 8));
}

// Where the header's own scale puts a line `hz` from the carrier of the first axis: the carrier
// lies at the header's zero point (a fraction of the width) in ppm of the base frequency.
double headerPpm(const std::string& h, double hz) {
    const double mhz = f64At(h, 1064);
    const double widthHz = static_cast<double>(be(h, 240, 4)) / f64At(h, 336);
    return (f64At(h, 1128) * widthHz + hz) / mhz;
}

// The tallest point within `window` ppm of the expected shift.
double tallestNear(const SpectrumMatrix& m, double ppm, double window) {
    const DimensionRecord& d = m.dims[1];
    double best = -INFINITY, at = 0;
    for (int64_t i = pointOfPpm(d, ppm + window); i <= pointOfPpm(d, ppm - window); ++i)
        if (m.re[static_cast<size_t>(i)] > best)
            best = m.re[static_cast<size_t>(i)], at = ppmOfPoint(d, static_cast<double>(i));
    return at;
}

// The magnitude-weighted centre of the signal within `window` ppm of the expected shift.
double centreNear(const SpectrumMatrix& m, double ppm, double window) {
    const DimensionRecord& d = m.dims[1];
    double sum = 0, moment = 0;
    for (int64_t i = pointOfPpm(d, ppm + window); i <= pointOfPpm(d, ppm - window); ++i) {
        const auto k = static_cast<size_t>(i);
        const double size = std::hypot(m.re[k], m.im.empty() ? 0.0f : m.im[k]);
        sum += size;
        moment += size * ppmOfPoint(d, static_cast<double>(i));
    }
    return moment / sum;
}

TEST(JeolReader, OneDimensionalSpectraShowTheirSolventInPlace) {
    testing::RecordingPlatform platform;
    Application app(platform);
    int checked = 0;
    for (const std::string& path : allFiles()) {
        const auto read = readJeolDelta(path);
        ASSERT_TRUE(read);
        const DimensionRecord& d = read->source.dims[1];
        const Solvent* solvent = nullptr;
        for (const Solvent& s : kSolvents)
            if (read->metadata.solvent == s.name) solvent = &s;
        if (countDimensions(read->source) != 1 || !solvent || (d.isotope != 1 && d.isotope != 13))
            continue;
        SCOPED_TRACE(path);
        ASSERT_EQ(app.open(path), 1);
        SpectrumDocument& doc = *app.frontDocument();
        if (read->source.highestTIndex) {
            ASSERT_TRUE(app.scriptHost().executeInput("wft() aph()"));
        }
        const bool proton = d.isotope == 1;
        const double expected =
            proton ? solvent->proton
                   : headerPpm(testdata::readFile(path).substr(0, 1360), solvent->carbonHz);
        // The septet spans 0.7 ppm, its lines too alike in height for the tallest to be its centre.
        const double found = proton ? tallestNear(doc.matrix, expected, 0.3)
                                    : centreNear(doc.matrix, expected, 0.75);
        EXPECT_NEAR(found, expected, 0.05);
        if (proton && read->source.highestTIndex) {
            // Without the filter's delay the phase winds across the spectrum: half of it negative.
            EXPECT_LT(testdata::negativeShare(doc.matrix.re), 0.45);
        }
        app.closeDocument(doc);
        ++checked;
    }
    EXPECT_EQ(checked, 24);
}

TEST(JeolReader, TwoDimensionalSectionsFillAlternateRows) {
    const auto hsqc =
        testdata::readFile(jeolFile("EC=8C_5m200u_MeOD_bzhou21_20190228__HSQC-1-1.jdf"));
    Message failure;
    auto read = readDataSet(jeolFile("EC=8C_5m200u_MeOD_bzhou21_20190228__HSQC-1-1.jdf"),
                            FormatCode::JeolDelta, {}, failure);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->source.flags & (kJeolDelta2DPhaseSensitive | kBlockMatrix | kInterleaved),
              kJeolDelta2DPhaseSensitive | kBlockMatrix | kInterleaved);
    const auto m = loadMatrix(read->source);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size(), 1024u * 512u);
    // Section s begins at 20480 + s x 1024 x 256 x 8 bytes; its first tile's row 1 sits 32
    // values in. Rows alternate the real and the imaginary part along f1.
    auto value = [&](int section, int tileRow) {
        const size_t at = 20480 + size_t(section) * 1024 * 256 * 8 + size_t(tileRow) * 32 * 8;
        uint64_t v = 0;
        for (int k = 7; k >= 0; --k) v = v << 8 | static_cast<unsigned char>(hsqc[at + k]);
        return static_cast<float>(std::bit_cast<double>(v));
    };
    // Increment 1 is rows 2 and 3: the sections of the imaginary f1 parts first. Imaginary parts
    // of the time domain are negated: the spectrometer's sense is opposite to ours.
    EXPECT_EQ(m->re[2 * 1024], value(2, 1));
    EXPECT_EQ(m->im[2 * 1024], -value(3, 1));
    EXPECT_EQ(m->re[3 * 1024], value(0, 1));
    EXPECT_EQ(m->im[3 * 1024], -value(1, 1));
}

// The rutin HSQC transformed as echo and anti-echo: single cross peaks of the rhamnose methyl
// (tallest), of H-6/C-6 and H-8/C-8 of the flavonol, where the literature puts them (0.99/17.8,
// 6.19/98.7, 6.38/93.6) within the carbon scale's offset of this spectrometer (DMSO-d6's carbon
// lies 0.5 ppm high on it).
TEST(JeolReader, PhaseSensitiveHsqcTransformsToItsCrossPeaks) {
    testing::RecordingPlatform platform;
    Application app(platform);
    ASSERT_EQ(app.open(jeolFile("Rutin_3080ug200uL_DMSOd6_HSQC_400MHz_Jeol.jdf")), 1);
    ASSERT_TRUE(app.scriptHost().executeInput("wft() wft()"));
    const auto peaks = testdata::strongestPeaks(app.frontDocument()->matrix, 8, true, 4);
    ASSERT_EQ(peaks.size(), 8u);
    EXPECT_NEAR(peaks[0].xPpm, 0.95, 0.06);
    EXPECT_NEAR(peaks[0].yPpm, 17.8, 0.6);
    auto found = [&](double x, double y) {
        return std::any_of(peaks.begin(), peaks.end(), [&](const testdata::Peak& p) {
            return std::abs(p.xPpm - x) < 0.06 && std::abs(p.yPpm - y) < 0.6;
        });
    };
    EXPECT_TRUE(found(6.19, 98.7));
    EXPECT_TRUE(found(6.38, 93.6));
    // Its mirror image along f1 (States processing of echo and anti-echo) is absent.
    EXPECT_FALSE(found(0.95, 2 * 85.0 - 17.8));
}

// A saved document keeps the source's sections and flags: reopened, the raw data read and the
// transform replayed give the same points.
TEST(JeolReader, SavedDocumentReopensValueForValue) {
    const std::string path = testdata::freshTempDir("jeol") + "/hsqc.jdf";
    fs::copy_file(jeolFile("EC=8C_5m200u_MeOD_bzhou21_20190228__HSQC-1-1.jdf"), path);
    testing::RecordingPlatform platform;
    std::vector<float> before;
    {
        Application app(platform);
        ASSERT_EQ(app.open(path), 1);
        ASSERT_TRUE(app.scriptHost().executeInput("wft() wft()"));
        before = app.frontDocument()->matrix.re;
        ASSERT_TRUE(app.save(*app.frontDocument()));
    }
    Application app(platform);
    ASSERT_EQ(app.open(path), 1);
    const SpectrumDocument& doc = *app.frontDocument();
    EXPECT_TRUE(doc.source.flags & kJeolDelta2DPhaseSensitive);
    EXPECT_EQ(doc.matrix.re, before);
    EXPECT_TRUE(platform.boxes.empty());
}

// Copies cut short or with hostile sizes are refused with the message, never read.
TEST(JeolReader, DamagedFilesAreIncoherent) {
    const std::string good =
        testdata::readFile(jeolFile("EC=8C_5m200u_MeOD_bzhou21_20190228_qH-1-1.jdf"));
    auto patched = [&](size_t at, std::string bytes) {
        std::string f = good;
        f.replace(at, bytes.size(), bytes);
        return f;
    };
    const std::string cases[] = {
        good.substr(0, 1000),                               // inside the header
        good.substr(0, 16384),                              // header and parameters only
        good.substr(0, good.size() / 2),                    // half the data
        patched(0, "JEOL.NMX"),                             // not JEOL's
        patched(176, std::string("\xFF\xFF\xFF\xFF", 4)),   // 4 G points
        patched(176, std::string(4, '\0')),                 // no points
        patched(1284, std::string("\x7F\xFF\xFF\xFF", 4)),  // data beyond the file
        patched(14, std::string(1, '\x03')),                // 3-D
    };
    const std::string dir = testdata::freshTempDir("jeol");
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        const std::string path = dir + "/damaged" + std::to_string(i) + ".jdf";
        std::ofstream(path, std::ios::binary) << cases[i];
        Message failure;
        EXPECT_FALSE(readDataSet(path, FormatCode::JeolDelta, {}, failure));
        EXPECT_EQ(failure.text, "This Jeol Delta file seems incoherent");
    }
}

}  // namespace
}  // namespace zolt

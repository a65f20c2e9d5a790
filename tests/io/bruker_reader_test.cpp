#include "io/bruker/bruker_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "io/bruker/bruker_layout.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace source_flags;
namespace fs = std::filesystem;
using Parameters = std::map<std::string, std::string>;

std::optional<DataSetRead> readSet(const std::string& name, ReadOptions options = {}) {
    return readBrukerFolder(testdata::bruker(name), options);
}

std::string atom(const DimensionRecord& d) {
    char buffer[3];
    return atomText(d, buffer);
}

void writeFile(const std::string& path, const std::string& content) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

// A parameter file as the spectrometer writes it: a header, a stamp, sorted parameters.
std::string parameterFile(const Parameters& values) {
    std::string text =
        "##TITLE= Parameter file\n##JCAMPDX= 5.0\n$$ 2021-05-04 09:08:07.123 +0200  me@av\n";
    for (const auto& [key, value] : values) text += "##$" + key + "= " + value + "\n";
    return text + "##END=\n";
}

Parameters protonAxis(const std::string& td) {
    return {{"AQ_mod", "3"},       {"DSPFVS", "20"},       {"GRPDLY", "68"}, {"NUC1", "<1H>"},
            {"O1", "2000"},        {"SFO1", "400"},        {"SW", "10"},     {"TD", td},
            {"PULPROG", "<zg30>"}, {"SOLVENT", "<CDCl3>"}, {"FnMODE", "0"}};
}

// An experiment folder: acqus and an fid, or with acqu2s a ser, of `rawBytes` zero bytes.
std::string oneDimensional(const Parameters& acqus, size_t rawBytes,
                           const Parameters* acqu2s = nullptr) {
    const std::string dir = testdata::freshTempDir("bruker");
    writeFile(dir + "/acqus", parameterFile(acqus));
    if (acqu2s) writeFile(dir + "/acqu2s", parameterFile(*acqu2s));
    writeFile(dir + (acqu2s ? "/ser" : "/fid"), std::string(rawBytes, '\0'));
    return dir;
}

std::string twoDimensional(const Parameters& acqus, const Parameters& acqu2s, size_t serBytes) {
    return oneDimensional(acqus, serBytes, &acqu2s);
}

TEST(BrukerReaderData, OneDimensionalSetsFollowTheirParameterFiles) {
    // Aspirin (DSPFVS 10, DECIM 24) and naphthoic acid were probed big-endian; AQ_mod 1 or 3.
    const std::tuple<const char*, const char*, const char*> sets[] = {
        {"aspirin-1h", "CDCl3",
         "long; no flags; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 1 0 0; "
         "phaseable 1 0 0\n"
         "f1: 8192 1H sw 15.95721 lo -0.4786591 at 300.1323 shift -61.02083"},
        {"naphtoicAcid-1h", "Acetone",
         "long; no flags; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 3 0 0; "
         "phaseable 1 0 0\n"
         "f1: 8192 1H sw 34.95542 lo -2.477936 at 500.1375 shift -53.25"},
        {"strychnine-1h", "CDCl3",
         "long; little endian; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 3 0 0; "
         "phaseable 1 0 0\n"
         "f1: 40063 1H sw 24.0305 lo -5.83988 at 400.1325 shift -67.98421"},
        {"cyclosporin-1h", "C6D6",
         "long; little endian; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 3 0 0; "
         "phaseable 1 0 0\n"
         "f1: 32768 1H sw 10.9861 lo -0.99583 at 500.1323 shift -76"},
    };
    for (const auto& [name, solvent, text] : sets) {
        const auto r = readSet(name);
        ASSERT_TRUE(r) << name;
        EXPECT_EQ(testdata::sourceText(r->source), text) << name;
        EXPECT_EQ(r->metadata.solvent + " " + r->metadata.pulseSequence,
                  std::string(solvent) + " zg30");
    }
    const auto r = readSet("aspirin-1h");
    EXPECT_EQ(r->source.provenance, "Bruker");
    EXPECT_EQ(r->source.rawPath, testdata::bruker("aspirin-1h") + "/fid");
    EXPECT_EQ(r->metadata.title, "1H BBI");
    EXPECT_EQ(r->info.dateStamp, "Tue Jan 31 10:24:56 2006");
    EXPECT_DOUBLE_EQ(r->info.relaxationDelay, 1.2);
    EXPECT_EQ(r->info.scans, 32);
}

TEST(BrukerReaderData, ProcessedSetsReadTheirRealSpectrumWithoutTransformSteps) {
    EXPECT_FALSE(readSet("aspirin-1h-processed"));  // the set carries no fid
    // Aspirin: STSI points; the lowest ppm is O1/SFO1 - SW/2, OFFSET is not needed. The COSY's
    // 2rr is tiled by XDIM 128 on both axes (square tiles); XDIM 8192 of the inversion recovery
    // is beyond the tile sizes: its rows are plain.
    const std::tuple<const char*, const char*, const char*> sets[] = {
        {"aspirin-1h-processed", "1r",
         "long; little endian, real only; header 0; block 1048576 + 0; time domain 0; x 1 y 0 z 0; "
         "ft 1 0 0; phaseable 0 0 0\n"
         "f1: 32768 1H sw 15.95721 lo -0.4786591 at 300.1323 shift -61.02083"},
        {"cosy-nus", "2rr",
         "long; little endian, real only, block matrix; header 0; block 131072 + 0; time domain 0; "
         "x 2 y 1 z 0; ft 1 3 0; phaseable 0 0 0\n"
         "f1: 2048 1H sw 6.999 lo -0.4995088 at 499.9215 shift 0\n"
         "f2: 2048 1H sw 6.997367 lo -0.4986927 at 499.9215 shift -67.98511"},
        {"inversion-recovery", "2rr",
         "long; little endian, real only; header 0; block 32768 + 0; time domain 0; x 2 y 1 z 0; "
         "ft 1 3 0; phaseable 0 0 0\n"
         "f1: 16 1H sw 10.01266 lo -2.473565 at 600.2015 shift 0\n"
         "f2: 8192 1H sw 6.010487 lo -0.4724776 at 600.2015 shift -67.98524"},
    };
    for (const auto& [name, file, text] : sets) {
        const auto r = readSet(name, {.processed = true});
        ASSERT_TRUE(r) << name;
        EXPECT_EQ(r->source.fileName, file);
        EXPECT_EQ(testdata::sourceText(r->source), text) << name;
        EXPECT_EQ(r->source.subMatrixHeight, 0);
    }
}

TEST(BrukerReaderData, TwoDimensionalSetsHaveRowsOfTheirSerFile) {
    // All recorded with BYTORDA 0 and AQ_mod 3; FnMODE 1 (QF) or 6 (echo / anti-echo).
    const std::pair<const char*, const char*> sets[] = {
        {"cyclosporin-cosy",
         "long; little endian; header 0; block 8192 + 0; time domain 2; x 2 y 1 z 0; ft 1 3 0; "
         "phaseable 1 1 0\n"
         "f1: 128 1H sw 10.9942 lo -0.9991203 at 500.1323 shift 0\n"
         "f2: 1024 1H sw 10.99416 lo -0.9991003 at 500.1323 shift -67.98735"},
        {"cyclosporin-hsqc",
         "long; little endian; header 0; block 4096 + 0; time domain 2; x 2 y 1 z 0; ft 6 3 0; "
         "phaseable 1 1 0\n"
         "f1: 256 13C sw 165.6508 lo -12.83394 at 125.7666 shift 0 phase 3.094239 0\n"
         "f2: 512 1H sw 12.01605 lo -1.305047 at 500.1324 shift -67.98427 phase -2.623472 "
         "-0.06914024"},
        {"cyclosporin-hmbc",
         "long; little endian; header 0; block 16384 + 0; time domain 2; x 2 y 1 z 0; ft 1 3 0; "
         "phaseable 1 1 0\n"
         "f1: 128 13C sw 222.0951 lo -11.2205 at 125.7703 shift 0\n"
         "f2: 2048 1H sw 10.99415 lo -0.509102 at 500.1325 shift -67.98735"},
        {"cosy-nus",
         "long; little endian; header 0; block 8192 + 0; time domain 2; x 2 y 1 z 0; ft 1 3 0; "
         "phaseable 1 1 0\n"
         "f1: 256 1H sw 6.999 lo -0.4995088 at 499.9215 shift 0 nus 1024\n"
         "f2: 1024 1H sw 6.997367 lo -0.4986927 at 499.9215 shift -67.98511"},
        {"hsqc-nus",
         "long; little endian; header 0; block 8192 + 0; time domain 2; x 2 y 1 z 0; ft 6 3 0; "
         "phaseable 1 1 0\n"
         "f1: 256 13C sw 199.8598 lo -9.937983 at 125.7163 shift 0 nus 1024 phase 2.997957 0\n"
         "f2: 1024 1H sw 7.003901 lo -0.5019593 at 499.9215 shift -67.98512 phase -1.505093 "
         "-0.1210856"},
        {"inversion-recovery",
         "long; little endian; header 0; block 32768 + 0; time domain 2; x 2 y 1 z 0; ft 1 3 0; "
         "phaseable 1 1 0\n"
         "f1: 10 1H sw 10.01266 lo -2.473565 at 600.2015 shift 0\n"
         "f2: 4096 1H sw 6.010487 lo -0.4724776 at 600.2015 shift -67.98524 phase -0.1912792 "
         "0.2217401"},
        {"t1rho-1h",
         "long; little endian; header 0; block 131072 + 0; time domain 2; x 2 y 1 z 0; ft 1 3 0; "
         "phaseable 1 1 0\n"
         "f1: 22 1H sw 10.01383 lo -1.966331 at 600.1318 shift 0\n"
         "f2: 16384 1H sw 104.1438 lo -49.03131 at 600.1318 shift -67.98322"},
    };
    for (const auto& [name, text] : sets) {
        const auto r = readSet(name);
        ASSERT_TRUE(r) << name;
        EXPECT_EQ(r->source.fileName, "ser");
        EXPECT_EQ(testdata::sourceText(r->source), text) << name;
    }
}

TEST(BrukerReaderData, MultidimensionalRawDataTakeTheSpectrometerPhases) {
    const auto r = readSet("cyclosporin-hsqc");
    ASSERT_TRUE(r);
    const auto stored = [](double degrees) {
        return static_cast<float>(degrees * kDegreesToStoredRadians);
    };
    // f1 is echo / anti-echo: Bruker's PHC0 of f2 refers to its own combination of the pair,
    // a quarter turn from ours.
    EXPECT_NEAR(r->source.dims[2].phase0, stored(240.3139 - 90.0), 1e-6);
    EXPECT_FLOAT_EQ(r->source.dims[2].phase1, stored(3.961444));
    EXPECT_FLOAT_EQ(r->source.dims[1].phase0, stored(-177.2868));
    EXPECT_EQ(atom(r->source.dims[1]), "C");
    EXPECT_EQ(r->metadata.pulseSequence, "hsqcedetgpsp.3");
    // One-dimensional raw data keep their phases at zero.
    EXPECT_EQ(readSet("aspirin-1h")->source.dims[1].phase0, 0.0f);
}

TEST(BrukerReaderData, EachAxisCarriesTheSpectrometersWindowAndSize) {
    const auto proton = readSet("naphtoicAcid-1h");
    ASSERT_TRUE(proton);
    const VendorProcessing& v = proton->vendorProcessing[1];
    EXPECT_TRUE(v.present);
    EXPECT_EQ(v.window, 1);
    EXPECT_DOUBLE_EQ(v.lineBroadening, 0.5);
    EXPECT_EQ(v.ftSize, 131072);
    const auto hsqc = readSet("cyclosporin-hsqc");
    ASSERT_TRUE(hsqc);
    for (int f : {1, 2}) {
        EXPECT_EQ(hsqc->vendorProcessing[f].window, 4) << f;
        EXPECT_DOUBLE_EQ(hsqc->vendorProcessing[f].sineBellDivisor, 2.0) << f;
        EXPECT_EQ(hsqc->vendorProcessing[f].ftSize, 1024) << f;
    }
    EXPECT_FALSE(hsqc->vendorProcessing[3].present);
    // Processed data are not transformed again.
    ReadOptions processed;
    processed.processed = true;
    EXPECT_FALSE(readSet("aspirin-1h-processed", processed)->vendorProcessing[1].present);
}

TEST(BrukerReaderData, ArrayedSeriesAreFrequencyAxesUnlessReadAsThreeDimensional) {
    // t1ir increments a delay list (ivd): the 3-D fallback makes its rows a pseudo-dimension.
    const auto plain = readSet("inversion-recovery");
    const auto arrayed = readSet("inversion-recovery", {.threeD = true});
    ASSERT_TRUE(plain && arrayed);
    EXPECT_EQ(atom(plain->source.dims[1]), "H");
    EXPECT_EQ(countDimensions(plain->source), 2);
    const DimensionRecord& d = arrayed->source.dims[1];
    EXPECT_EQ(atom(d), "..");
    EXPECT_EQ(d.points, 10u);
    EXPECT_EQ(d.lowestPpm, -10.0f);
    EXPECT_EQ(arrayed->source.phaseable[1], 0);
    EXPECT_EQ(countDimensions(arrayed->source), 1);
    // t1rho1H steps a power list (ivp), which the rule does not know: it stays a frequency axis.
    EXPECT_EQ(atom(readSet("t1rho-1h", {.threeD = true}).value().source.dims[1]), "H");
}

TEST(BrukerReaderLayout, SerRowsSkipTheirPadding) {
    auto acqus = protonAxis("250");  // 125 complex points: 1000 bytes a row
    const std::string dir = twoDimensional(acqus, protonAxis("4"), 4 * 1024);
    const auto r = readBrukerFolder(dir + "/acqus");
    ASSERT_TRUE(r);
    EXPECT_EQ(testdata::sourceText(r->source),
              "long; little endian; header 0; block 1024 + 24; time domain 2; x 2 y 1 z 0; ft 1 3 "
              "0; phaseable 1 1 0\n"
              "f1: 4 1H sw 10 lo 0 at 400 shift -68\n"
              "f2: 125 1H sw 10 lo 0 at 400 shift -68");
    // 64-bit floats: twice the bytes a row, little-endian.
    acqus["DTYPA"] = "2";
    const auto doubles = readBrukerFolder(twoDimensional(acqus, protonAxis("4"), 8 * 1024));
    ASSERT_TRUE(doubles);
    EXPECT_EQ(testdata::sourceText(doubles->source),
              "double; little endian; header 0; block 2048 + 48; time domain 2; x 2 y 1 z 0; ft 1 "
              "3 0; phaseable 1 1 0\n"
              "f1: 4 1H sw 10 lo 0 at 400 shift -68\n"
              "f2: 125 1H sw 10 lo 0 at 400 shift -68");
}

TEST(BrukerReaderLayout, CarrierAndNucleusFallbacks) {
    auto acqus = protonAxis("64");
    acqus.erase("SFO1");
    acqus["NUC1"] = "<off>";
    acqus["NUCLEUS"] = "<13C>";
    auto d = readBrukerFolder(oneDimensional(acqus, 256)).value().source.dims[1];
    EXPECT_EQ(d.carrier, 1.0f);
    EXPECT_FLOAT_EQ(d.lowestPpm, 2000.0f - 5.0f);  // O1 over a 1 MHz carrier
    EXPECT_EQ(d.isotope, 13);
    EXPECT_EQ(atom(d), "C");
    acqus["SFO1"] = "0";
    acqus["NUC1"] = "<29Si>";
    d = readBrukerFolder(oneDimensional(acqus, 256)).value().source.dims[1];
    EXPECT_EQ(d.carrier, 1.0f);
    EXPECT_EQ(d.isotope, 29);
    EXPECT_EQ(atom(d), "Si");
}

TEST(BrukerReaderLayout, IndirectAxesFollowThePulseProgramName) {
    auto acqus = protonAxis("64");
    auto acqu2s = protonAxis("8");
    // FnMODE 0: "tp" in the name means TPPI, "gs" QF, "hmqc" echo-antiecho.
    for (const auto& [program, mode] :
         {std::pair{"<noesyphtp.2>", 3}, {"<cosygs>", 1}, {"<hmqcgs>", 6}}) {
        acqus["PULPROG"] = program;
        EXPECT_EQ(readBrukerFolder(twoDimensional(acqus, acqu2s, 8 * 1024))
                      .value()
                      .source.ftPreferences[1],
                  mode)
            << program;
    }
    // INADEQUATE: a double-quantum axis at twice the carrier, centred on zero.
    acqus["PULPROG"] = "<inadgpqf>";
    acqu2s["SW"] = "40";
    const auto d = readBrukerFolder(twoDimensional(acqus, acqu2s, 8 * 1024)).value().source.dims[1];
    EXPECT_EQ(atom(d), "X");
    EXPECT_EQ(d.isotope, 0);
    EXPECT_EQ(d.lowestPpm, -20.0f);
    EXPECT_EQ(d.carrier, 800.0f);
}

TEST(BrukerReaderLayout, OffsetsFillAxesWithoutOne) {
    auto acqus = protonAxis("64");  // 5 ppm on a 10 ppm window: the lowest ppm is exactly 0
    auto acqu2s = protonAxis("8");
    acqu2s["O1"] = "4000";
    acqu2s["SW"] = "20";
    const std::string dir = twoDimensional(acqus, acqu2s, 8 * 1024);
    writeFile(dir + "/pdata/1/procs",
              parameterFile({{"OFFSET", "12.5"}, {"PHC0", "90"}, {"PHC1", "-45"}}));
    auto r = readBrukerFolder(dir);
    ASSERT_TRUE(r);
    EXPECT_FLOAT_EQ(r->source.dims[2].lowestPpm, 2.5f);  // OFFSET - SW
    EXPECT_FLOAT_EQ(r->source.dims[2].phase0, static_cast<float>(90 * kDegreesToStoredRadians));
    EXPECT_FLOAT_EQ(r->source.dims[2].phase1, static_cast<float>(-45 * kDegreesToStoredRadians));
    // The indirect axis of the same nucleus lends its lowest ppm before procs is read.
    EXPECT_EQ(r->source.dims[1].lowestPpm, 0.0f);
    acqus["O1"] = "1000";
    r = readBrukerFolder(twoDimensional(acqus, acqu2s, 8 * 1024));
    ASSERT_TRUE(r);
    EXPECT_FLOAT_EQ(r->source.dims[1].lowestPpm, -2.5f);
}

TEST(BrukerReaderLayout, ProcessedRegionAndTilesComeFromProcs) {
    const std::string dir = twoDimensional(protonAxis("64"), protonAxis("8"), 8 * 1024);
    writeFile(dir + "/pdata/1/2rr", std::string(4096, '\0'));
    writeFile(dir + "/pdata/1/procs",
              parameterFile({{"SI", "1024"}, {"STSI", "256"}, {"STSR", "100"}, {"XDIM", "64"}}));
    writeFile(dir + "/pdata/1/proc2s",
              parameterFile({{"SI", "32"}, {"STSI", "32"}, {"XDIM", "16"}}));
    const auto r = readBrukerFolder(dir, {.processed = true});
    ASSERT_TRUE(r);
    const DimensionRecord& d = r->source.dims[2];
    EXPECT_EQ(d.points, 256u);
    EXPECT_FLOAT_EQ(d.spectralWidth, 2.5f);
    EXPECT_FLOAT_EQ(d.lowestPpm, 0.0f + (1024 - 100 - 256) * 10.0f / 1024);
    EXPECT_EQ(r->source.dims[1].points, 32u);
    EXPECT_EQ(r->source.flags & kBlockMatrix, kBlockMatrix);
    EXPECT_EQ(r->source.blockSize, 64u * 64u * 8u);
    EXPECT_EQ(r->source.subMatrixHeight, 16);
}

TEST(BrukerReaderLayout, PulseProgramDecidesArrayedRowsOfAThreeDimensionalRequest) {
    const std::string dir = twoDimensional(protonAxis("64"), protonAxis("8"), 8 * 1024);
    writeFile(dir + "/pulseprogram",
              "1 ze\n2 d1\n  go=2 ph31\n  d11 wr #0 if #0 ivc\n  lo to 2 times td1\nexit\n");
    EXPECT_EQ(atom(readBrukerFolder(dir, {.threeD = true})->source.dims[1]), "..");
    writeFile(dir + "/pulseprogram",
              "1 ze\n  go=2 ph31\n  d11 wr #0 if #0 id0 ivd\n  lo to 1 times td1\nexit\n");
    EXPECT_EQ(atom(readBrukerFolder(dir, {.threeD = true})->source.dims[1]), "H");
    // With acqu3s the ser is a 3-D experiment.
    writeFile(dir + "/acqu3s", parameterFile(protonAxis("2")));
    const auto r = readBrukerFolder(dir, {.threeD = true});
    ASSERT_TRUE(r);
    EXPECT_EQ(testdata::sourceText(r->source),
              "long; little endian; header 0; block 1024 + 768; time domain 3; x 3 y 2 z 1; ft 1 1 "
              "3; phaseable 1 1 1\n"
              "f1: 2 1H sw 10 lo 0 at 400 shift -68\n"
              "f2: 8 1H sw 10 lo 0 at 400 shift -68\n"
              "f3: 32 1H sw 10 lo 0 at 400 shift -68");
}

TEST(BrukerReaderDamaged, OneDimensionalPointsFallBackOnTheFidSize) {
    auto acqus = protonAxis("64");
    acqus.erase("TD");
    EXPECT_EQ(readBrukerFolder(oneDimensional(acqus, 4096)).value().source.dims[1].points, 512u);
    // Empty and binary parameter files read as parameters left at zero.
    const std::string dir = oneDimensional({}, 800);
    writeFile(dir + "/acqus", "");
    const auto d = readBrukerFolder(dir).value().source.dims[1];
    EXPECT_EQ(d.points, 100u);
    EXPECT_EQ(d.carrier, 1.0f);
    EXPECT_EQ(d.spectralWidth, 10.0f);  // the opener's minimum
    std::string binary(3000, '\0');
    for (size_t i = 0; i < binary.size(); ++i) binary[i] = static_cast<char>(i * 131 + 7);
    writeFile(dir + "/acqus", binary);
    EXPECT_TRUE(readBrukerFolder(dir));
}

TEST(BrukerReaderDamaged, MissingFilesGiveNothing) {
    for (const char* file : {"/ser", "/acqus", "/acqu2s"}) {
        const std::string dir = twoDimensional(protonAxis("64"), protonAxis("8"), 8192);
        fs::remove(dir + file);
        EXPECT_FALSE(readBrukerFolder(dir)) << file;
    }
    // Two dimensions without TD leave the axes empty.
    EXPECT_FALSE(readBrukerFolder(twoDimensional({}, {}, 8192)));
    // A parameter file too large to be one is refused.
    const std::string big = oneDimensional(protonAxis("64"), 256);
    writeFile(big + "/acqus", parameterFile(protonAxis("64")) + std::string(17 << 20, ' '));
    EXPECT_FALSE(readBrukerFolder(big));
    fs::remove_all(big);
}

TEST(BrukerReaderLayouts, ParaVisionRewritesAcqpIntoASortedAcqus) {
    const std::string dir = testdata::freshTempDir("paravision");
    writeFile(dir + "/acqp",
              "##TITLE=Parameter List, ParaVision 5.1\n##JCAMPDX=4.24\n"
              "##$SW=12.5\n##$NUC1=<1H>\n##$ACQ_size=( 2 )\n512 8\n##$SFO1=400.1\n"
              "##$ACQ_method=( 20 )\n<PRESS>\n##$O1=200.05\n##END=\n$$ trailing\n");
    writeFile(dir + "/fid", std::string(8 * 256, '\0'));
    const auto r = readParaVision(dir);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.provenance, "ParaVision");
    // The lowest ppm is O1 / SFO1 - SW / 2.
    EXPECT_EQ(testdata::sourceText(r->source),
              "long; little endian; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 2 "
              "1 0; phaseable 1 0 0\n"
              "f1: 256 1H sw 12.5 lo -5.75 at 400.1 shift 0");
    EXPECT_EQ(testdata::readFile(dir + "/acqus"),
              "##$ACQ_method=<PRESS>\n##$NUC1=<1H>\n##$O1=200.05\n##$SFO1=400.1\n##$SW=12.5\n"
              "##$TD=512 8\n##END\n##JCAMPDX=4.24\n##TITLE=Parameter List, ParaVision 5.1\n");
}

TEST(BrukerReaderLayouts, WinNmrFilesShareOneBaseName) {
    const std::string dir = testdata::freshTempDir("winnmr");
    writeFile(dir + "/aspirin1.aqs", parameterFile(protonAxis("128")));
    writeFile(dir + "/aspirin1.fid", std::string(8 * 64, '\0'));
    const auto r = readWinNmr(dir + "/aspirin1.aqs");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.provenance, "Win-NMR");
    EXPECT_EQ(r->source.fileName, "aspirin1.fid");
    EXPECT_EQ(testdata::sourceText(r->source),
              "float; little endian; header 0; block 1048576 + 0; time domain 1; x 1 y 0 z 0; ft 3 "
              "0 0; phaseable 1 0 0\n"
              "f1: 64 1H sw 10 lo 0 at 400 shift -68");
    fs::remove(dir + "/aspirin1.aqs");
    EXPECT_FALSE(readWinNmr(dir + "/aspirin1.fid"));
}

}  // namespace
}  // namespace zolt

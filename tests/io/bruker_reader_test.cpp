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
    struct Expected {
        const char* name;
        uint32_t points;
        double width, lowest, carrier, shift;
        uint8_t aqMod;
        bool littleEndian;
        const char* solvent;
    };
    const Expected sets[] = {
        // DSPFVS 10, DECIM 24; probed big-endian.
        {"aspirin-1h", 8192, 15.9572055821827, -0.478659, 300.132250975, -61.0208, 1, false,
         "CDCl3"},
        {"naphtoicAcid-1h", 8192, 34.9554221, -2.477936, 500.13750195, -53.25, 3, false, "Acetone"},
        {"strychnine-1h", 40063, 24.0305032, -5.839880, 400.132470966543, -67.9842071533203, 3,
         true, "CDCl3"},
        {"cyclosporin-1h", 32768, 10.9861052, -0.995830, 500.132249206, -76, 3, true, "C6D6"},
    };
    for (const Expected& e : sets) {
        SCOPED_TRACE(e.name);
        const auto r = readSet(e.name);
        ASSERT_TRUE(r);
        const DimensionRecord& d = r->source.dims[1];
        EXPECT_EQ(d.points, e.points);
        EXPECT_NEAR(d.spectralWidth, e.width, 1e-5);
        EXPECT_NEAR(d.lowestPpm, e.lowest, 1e-5);
        EXPECT_NEAR(d.carrier, e.carrier, 1e-4);
        EXPECT_NEAR(d.timeShift, e.shift, 1e-4);
        EXPECT_EQ(d.isotope, 1);
        EXPECT_EQ(atom(d), "H");
        EXPECT_EQ(r->source.ftPreferences[1], e.aqMod);
        EXPECT_EQ((r->source.flags & kLittleEndian) != 0, e.littleEndian);
        EXPECT_EQ(r->source.phaseable[1], 1);
        EXPECT_EQ(r->source.numberType, NumberType::Long);
        EXPECT_EQ(r->source.highestTIndex, 1);
        EXPECT_EQ(r->metadata.solvent, e.solvent);
        EXPECT_EQ(r->metadata.pulseSequence, "zg30");
    }
    const auto r = readSet("aspirin-1h");
    EXPECT_EQ(r->source.provenance, "Bruker");
    EXPECT_EQ(r->source.rawPath, testdata::bruker("aspirin-1h") + "/fid");
    EXPECT_EQ(r->metadata.title, "1H BBI");
    EXPECT_EQ(r->info.dateStamp, "Tue Jan 31 10:24:56 2006");
    EXPECT_DOUBLE_EQ(r->info.relaxationDelay, 1.2);
    EXPECT_EQ(r->info.scans, 32);
}

TEST(BrukerReaderData, ProcessedAspirinReadsItsRealSpectrumWithoutAnFid) {
    EXPECT_FALSE(readSet("aspirin-1h-processed"));  // the set carries no fid
    const auto r = readSet("aspirin-1h-processed", {.processed = true});
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.fileName, "1r");
    EXPECT_EQ(s.dims[1].points, 32768u);  // STSI
    EXPECT_NEAR(s.dims[1].spectralWidth, 15.9572, 1e-4);
    EXPECT_NEAR(s.dims[1].lowestPpm, -0.478659, 1e-5);  // O1/SFO1 - SW/2: OFFSET is not needed
    EXPECT_EQ(s.flags, kRealOnly | kLittleEndian);
    EXPECT_EQ(s.highestTIndex, 0);
    EXPECT_EQ(s.phaseable[1], 0);
}

TEST(BrukerReaderData, TwoDimensionalSetsHaveRowsOfTheirSerFile) {
    struct Expected {
        const char* name;
        uint32_t points, rows, blockSize;
        uint8_t fnMode, isotope1;
        double width1, carrier1;
        uint32_t nus;
    };
    const Expected sets[] = {
        {"cyclosporin-cosy", 1024, 128, 8192, 1, 1, 10.9942, 500.13224958474, 0},
        {"cyclosporin-hsqc", 512, 256, 4096, 6, 13, 165.650774745804, 125.766591585839, 0},
        {"cyclosporin-hmbc", 2048, 128, 16384, 1, 13, 222.095059442626, 125.770344280705, 0},
        {"cosy-nus", 1024, 256, 8192, 1, 1, 6.99899947608832, 499.92149976, 1024},
        {"hsqc-nus", 1024, 256, 8192, 6, 13, 199.85975290262, 125.716297432559, 1024},
        {"inversion-recovery", 4096, 10, 32768, 1, 1, 10.012662718537, 600.20152017, 0},
        {"t1rho-1h", 16384, 22, 131072, 1, 1, 10.0138255242818, 600.13182475, 0},
    };
    for (const Expected& e : sets) {
        SCOPED_TRACE(e.name);
        const auto r = readSet(e.name);
        ASSERT_TRUE(r);
        const SpectrumSource& s = r->source;
        EXPECT_EQ(s.fileName, "ser");
        EXPECT_EQ(s.dims[2].points, e.points);
        EXPECT_EQ(s.dims[1].points, e.rows);
        EXPECT_EQ(s.blockSize, e.blockSize);
        EXPECT_EQ(s.blockHeader, 0u);
        EXPECT_EQ(s.ftPreferences[2], 3);  // AQ_mod 3
        EXPECT_EQ(s.ftPreferences[1], e.fnMode);
        EXPECT_EQ(s.dims[1].isotope, e.isotope1);
        EXPECT_NEAR(s.dims[1].spectralWidth, e.width1, 1e-4);
        EXPECT_NEAR(s.dims[1].carrier, e.carrier1, 1e-4);
        EXPECT_EQ(s.dims[1].timeShift, 0.0f);
        EXPECT_EQ(s.dims[1].pointsAfterNus, e.nus);
        EXPECT_EQ(s.phaseable[1], 1);
        EXPECT_EQ(s.highestTIndex, 2);
        EXPECT_EQ(s.xIndex, 2);
        EXPECT_EQ(s.yIndex, 1);
        EXPECT_EQ(s.flags, kLittleEndian);  // all recorded with BYTORDA 0
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

TEST(BrukerReaderData, ProcessedTwoDimensionalFilesDescribeTheirTiles) {
    const auto cosy = readSet("cosy-nus", {.processed = true});
    ASSERT_TRUE(cosy);
    EXPECT_EQ(cosy->source.fileName, "2rr");
    EXPECT_EQ(cosy->source.dims[1].points, 2048u);
    EXPECT_EQ(cosy->source.dims[2].points, 2048u);
    EXPECT_EQ(cosy->source.dims[1].pointsAfterNus, 0u);
    EXPECT_EQ(cosy->source.flags, kRealOnly | kLittleEndian | kBlockMatrix);
    EXPECT_EQ(cosy->source.blockSize, 128u * 128u * 8u);  // XDIM 128 on both axes
    EXPECT_EQ(cosy->source.subMatrixHeight, 0);           // square tiles
    EXPECT_EQ(cosy->source.highestTIndex, 0);
    EXPECT_EQ(cosy->source.phaseable[1] + cosy->source.phaseable[2], 0);
    // XDIM 8192 is beyond the tile sizes: the rows are plain.
    const auto ir = readSet("inversion-recovery", {.processed = true});
    ASSERT_TRUE(ir);
    EXPECT_EQ(ir->source.dims[1].points, 16u);
    EXPECT_EQ(ir->source.dims[2].points, 8192u);
    EXPECT_EQ(ir->source.flags & kBlockMatrix, 0u);
    EXPECT_EQ(ir->source.blockSize, 8192u * 4u);
}

TEST(BrukerReaderLayout, SerRowsSkipTheirPadding) {
    auto acqus = protonAxis("250");  // 125 complex points: 1000 bytes a row
    const std::string dir = twoDimensional(acqus, protonAxis("4"), 4 * 1024);
    const auto r = readBrukerFolder(dir + "/acqus");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.dims[2].points, 125u);
    EXPECT_EQ(r->source.blockSize, 1024u);
    EXPECT_EQ(r->source.blockHeader, 24u);
    EXPECT_EQ(r->source.dims[1].points, 4u);
    // 64-bit floats: twice the bytes a row, little-endian.
    acqus["DTYPA"] = "2";
    const auto doubles = readBrukerFolder(twoDimensional(acqus, protonAxis("4"), 8 * 1024));
    ASSERT_TRUE(doubles);
    EXPECT_EQ(doubles->source.numberType, NumberType::Double);
    EXPECT_EQ(doubles->source.blockSize, 2048u);
    EXPECT_EQ(doubles->source.blockHeader, 48u);
    EXPECT_EQ(doubles->source.flags & kLittleEndian, kLittleEndian);
}

TEST(BrukerReaderLayout, InterruptedAcquisitionKeepsItsCompleteRows) {
    const std::string dir = twoDimensional(protonAxis("256"), protonAxis("128"), 37 * 1024 + 500);
    EXPECT_EQ(readBrukerFolder(dir).value().source.dims[1].points, 37u);
    // A hostile TD of 2^31 rows is lowered to what the file holds, without allocating.
    const auto huge =
        readBrukerFolder(twoDimensional(protonAxis("256"), protonAxis("2147483648"), 3 * 1024));
    ASSERT_TRUE(huge);
    EXPECT_EQ(huge->source.dims[1].points, 3u);
    // Rows of 2^31 points do not fit the block size: refused.
    EXPECT_FALSE(readBrukerFolder(twoDimensional(protonAxis("2147483648"), protonAxis("4"), 1024)));
    // No complete row at all leaves the indirect axis empty.
    EXPECT_FALSE(readBrukerFolder(twoDimensional(protonAxis("256"), protonAxis("4"), 1000)));
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
    EXPECT_EQ(r->source.highestTIndex, 3);
    EXPECT_EQ(r->source.dims[3].points, 32u);
    EXPECT_EQ(r->source.dims[1].points, 2u);
    EXPECT_EQ(r->source.xIndex, 3);
    EXPECT_EQ(r->source.yIndex, 2);
    EXPECT_EQ(r->source.zIndex, 1);
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
    EXPECT_EQ(r->source.dims[1].points, 256u);
    EXPECT_FLOAT_EQ(r->source.dims[1].carrier, 400.1f);
    EXPECT_FLOAT_EQ(r->source.dims[1].lowestPpm, 200.05f / 400.1f - 6.25f);
    EXPECT_EQ(r->source.ftPreferences[1], 2);
    EXPECT_EQ(r->source.ftPreferences[2], 1);
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
    EXPECT_EQ(r->source.numberType, NumberType::Float);
    EXPECT_EQ(r->source.flags, kLittleEndian);
    EXPECT_EQ(r->source.dims[1].points, 64u);
    fs::remove(dir + "/aspirin1.aqs");
    EXPECT_FALSE(readWinNmr(dir + "/aspirin1.fid"));
}

}  // namespace
}  // namespace zolt

// The Varian reader on the real 1H and 13C experiments, and on experiments written here byte by
// byte where the real ones do not go: 2-D and 3-D arrays, number types, block scales,
// unacquired blocks, interrupted acquisitions and damaged files.
#include "io/varian/varian_reader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include "io/raw_loader.h"
#include "io/varian/varian_blocks.h"
#include "io/varian/varian_parameters.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace source_flags;
namespace fs = std::filesystem;
using Parameters = std::map<std::string, std::string>;

std::string atom(const DimensionRecord& d) {
    char buffer[3];
    return atomText(d, buffer);
}

// A procpar as the spectrometer writes it: the name line, then the count and the value.
std::string procpar(const Parameters& values) {
    std::string text;
    for (const auto& [key, value] : values)
        text += key + " 1 1 1000000000 -1000000000 0 2 1 8 1 64\n1 " + value + "\n0\n";
    return text;
}

Parameters protonParameters() {
    return {
        {"tn", "\"H1\""},  {"dn", "\"C13\""},       {"sfrq", "400"},    {"dfrq", "100.6"},
        {"sw", "4000"},    {"sw1", "16000"},        {"rfl", "800"},     {"rfp", "0"},
        {"rfl1", "3200"},  {"rfp1", "1600"},        {"axis", "\"pd\""}, {"ni", "1"},
        {"array", "\"\""}, {"solvent", "\"dmso\""}, {"temp", "30"},     {"seqfil", "\"gHSQCAD\""}};
}

void put32(std::string& s, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) s += static_cast<char>(v >> shift & 0xFF);
}
void put16(std::string& s, uint16_t v) {
    s += static_cast<char>(v >> 8), s += static_cast<char>(v & 0xFF);
}

struct Block {
    int16_t scale = 0;
    int32_t transients = 1;
    std::vector<int32_t> values;  // written in the file's element size
};

// A fid with `traces` traces of `points` values per block and the given status word.
std::string fidFile(uint32_t announcedBlocks, uint32_t traces, uint32_t points, uint32_t bytes,
                    uint16_t status, const std::vector<Block>& blocks) {
    std::string f;
    const uint32_t blockBytes = 28 + traces * points * bytes;
    for (uint32_t v : {announcedBlocks, traces, points, bytes, points * bytes, blockBytes})
        put32(f, v);
    put16(f, 0), put16(f, status), put32(f, 1);
    for (size_t b = 0; b < blocks.size(); ++b) {
        put16(f, static_cast<uint16_t>(blocks[b].scale)), put16(f, status);
        put16(f, static_cast<uint16_t>(b + 1)), put16(f, 0);
        put32(f, static_cast<uint32_t>(blocks[b].transients));
        f += std::string(16, '\0');
        for (int32_t v : blocks[b].values) {
            if (bytes == 2)
                put16(f, static_cast<uint16_t>(v));
            else
                put32(f, static_cast<uint32_t>(v));
        }
    }
    return f;
}

std::string experiment(const Parameters& parameters, const std::string& fid) {
    const std::string dir = testdata::freshTempDir("varian") + "/exp.fid";
    fs::create_directories(dir);
    std::ofstream(dir + "/procpar", std::ios::binary) << procpar(parameters);
    std::ofstream(dir + "/fid", std::ios::binary) << fid;
    return dir;
}

std::vector<int32_t> ramp(int from, int count) {
    std::vector<int32_t> v;
    for (int i = 0; i < count; ++i) v.push_back(from + i);
    return v;
}

constexpr uint16_t kComplexShorts = 0x11;  // data, complex, 16-bit integers
constexpr uint16_t kComplexLongs = 0x15;

TEST(VarianParameters, RealProcparGivesTheValuesOfItsOwnLines) {
    const VarianParameters h =
        parseVarianParameters(testdata::readFile(testdata::shared("varian/1H.fid/procpar")));
    EXPECT_EQ(h.tn, "H1");
    EXPECT_EQ(h.dn, "C13");
    EXPECT_EQ(h.axis, "p");
    EXPECT_EQ(h.array, "");
    EXPECT_EQ(h.solvent, "cdcl3");
    EXPECT_EQ(h.seqfil, "s2pul");
    EXPECT_DOUBLE_EQ(h.sfrq, 599.7931758);
    EXPECT_DOUBLE_EQ(h.dfrq, 150.8318042);
    EXPECT_DOUBLE_EQ(h.sw, 6009.61538462);  // not sw1's line, which begins with "sw" too
    EXPECT_DOUBLE_EQ(h.rfl, 592.011622346);
    EXPECT_DOUBLE_EQ(h.rp, 61.2830518187);
    EXPECT_EQ(h.lsfid, 0);
    EXPECT_TRUE(h.tempFound);
    EXPECT_DOUBLE_EQ(h.temp, 25.0);

    const VarianParameters c =
        parseVarianParameters(testdata::readFile(testdata::shared("varian/13C.fid/procpar")));
    EXPECT_EQ(c.tn, "C13");
    EXPECT_EQ(c.dn, "H1");
}

TEST(VarianParameters, KeysStringsAndNumbersFollowTheLineRules) {
    const std::string text =
        "swept 1 1\n1 99\nsw\t1 1\n1 +2500.5 7\nni 7 1\n1 12.9\n"
        "seqfil 2 2\n1 \"a-sequence-name-longer-than-thirty-two-chars\"\n"
        "tn 2 2\n1 H1\nlsfid 7\n1 -3\ndn 2\n";
    const VarianParameters p = parseVarianParameters(text);
    EXPECT_DOUBLE_EQ(p.sw, 2500.5);
    EXPECT_EQ(p.ni, 12);
    EXPECT_EQ(p.lsfid, -3);
    EXPECT_EQ(p.seqfil, "a-sequence-name-longer-than-thir");  // 32 characters
    EXPECT_EQ(p.tn, "");                                      // a string without its quote
    EXPECT_EQ(p.dn, "");                                      // no value line
    EXPECT_FALSE(p.tempFound);
}

TEST(VarianParameters, NucleiAndPhaseCycleTables) {
    char a[3];
    int mass = 0;
    ASSERT_TRUE(parseVarianNucleus("H1", a, mass));
    EXPECT_EQ(std::string(a), "H");
    EXPECT_EQ(mass, 1);
    ASSERT_TRUE(parseVarianNucleus("Si29", a, mass));
    EXPECT_EQ(std::string(a), "Si");
    EXPECT_EQ(mass, 29);
    for (const char* bad : {"", "h1", "C", "N-15", "H999"})
        EXPECT_FALSE(parseVarianNucleus(bad, a, mass)) << bad;

    const char* tables[] = {"1 0 -1 0 0 -1 0 -1", "1 0 1 0 0 1 0 1",  "1 0 1 0 0 -1 0 1",
                            "1 0 0 1 0 -1 -1 0",  "1 0 1 0 0 1 0 -1", "1 0 0 1 0 -1 1 0",
                            "1 0 -1 0 0 1 0 1"};
    VarianParameters p;
    p.array = "phase";
    for (int i = 0; i < 7; ++i) {
        p.f1coef = std::string(tables[i]) + " 0 0";  // a table matches the beginning
        EXPECT_EQ(coefficientTable(p.f1coef), i + 1);
        EXPECT_EQ(firstIndirectQuadrature(p), i < 4 ? 0x22 : 6) << i;
    }
    p.f1coef = "1 0 0 0";
    EXPECT_EQ(firstIndirectQuadrature(p), 0x21);
    p.array = "d1";
    EXPECT_EQ(firstIndirectQuadrature(p), 1);
}

TEST(VarianReader, RealProtonExperimentGivesItsAxisAndMetadata) {
    const auto r = readVarianFolder(testdata::shared("varian/1H.fid"));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.provenance, "Varian");
    EXPECT_EQ(s.fileName, "fid");
    EXPECT_EQ(s.numberType, NumberType::Float);
    EXPECT_EQ(s.flags, kVarianBinary);
    EXPECT_EQ(s.headerSize, 32u);
    EXPECT_EQ(s.blockHeader, 28u);
    EXPECT_EQ(s.blockSize, 131072u);
    EXPECT_EQ(s.highestTIndex, 1);
    EXPECT_EQ(s.xIndex, 1);
    const DimensionRecord& d = s.dims[1];
    EXPECT_EQ(d.points, 16384u);
    EXPECT_FLOAT_EQ(d.carrier, 599.7931758f);
    EXPECT_FLOAT_EQ(d.spectralWidth, static_cast<float>(6009.61538462 / 599.7931758));
    EXPECT_FLOAT_EQ(d.lowestPpm, static_cast<float>(-592.011622346 / 599.7931758));
    EXPECT_FLOAT_EQ(d.phase0, static_cast<float>(61.2830518187 * 0.017453292));
    EXPECT_EQ(d.phase1, 0.0f);
    EXPECT_EQ(d.timeShift, 0.0f);
    EXPECT_EQ(d.isotope, 1);
    EXPECT_EQ(atom(d), "H");
    EXPECT_EQ(s.ftPreferences[1], 0x20);
    EXPECT_EQ(s.phaseable[1], 1);
    EXPECT_EQ(r->metadata.solvent, "cdcl3");
    EXPECT_EQ(r->metadata.pulseSequence, "s2pul");
    EXPECT_FLOAT_EQ(r->metadata.temperature, 298.15f);
    EXPECT_EQ(r->metadata.title, testdata::readFile(testdata::shared("varian/1H.fid/text")));

    // Any file of the folder stands for it.
    const auto viaFile = readVarianFolder(testdata::shared("varian/1H.fid/procpar"));
    ASSERT_TRUE(viaFile);
    EXPECT_EQ(viaFile->source.rawPath, s.rawPath);

    const auto carbon = readVarianFolder(testdata::shared("varian/13C.fid"));
    ASSERT_TRUE(carbon);
    EXPECT_EQ(carbon->source.dims[1].points, 32768u);
    EXPECT_EQ(carbon->source.dims[1].isotope, 13);
    EXPECT_EQ(atom(carbon->source.dims[1]), "C");
}

TEST(VarianReader, RealFidsLoadAsTheirBigEndianFloats) {
    const auto r = readVarianFolder(testdata::shared("varian/1H.fid"));
    ASSERT_TRUE(r);
    const auto m = loadMatrix(r->source);
    ASSERT_TRUE(m);
    ASSERT_EQ(m->re.size(), 16384u);
    ASSERT_EQ(m->im.size(), 16384u);
    const std::string raw = testdata::readFile(testdata::shared("varian/1H.fid/fid"));
    const auto value = [&](size_t i) {
        return decodeRawValue(reinterpret_cast<const unsigned char*>(raw.data()) + 60 + 4 * i,
                              NumberType::Float, false);
    };
    for (size_t i : {size_t{0}, size_t{1}, size_t{777}, size_t{16383}}) {
        EXPECT_EQ(m->re[i], value(2 * i));
        EXPECT_EQ(m->im[i], -value(2 * i + 1));  // the quadrature sense is ours
    }
    EXPECT_NE(m->re[0], 0.0f);
}

TEST(VarianReader, TwoDimensionalArraysScalesAndInterruptedAcquisitions) {
    Parameters p = protonParameters();
    p["ni"] = "4";
    p["array"] = "\"phase\"";
    p["f1coef"] = "\"1 0 0 1 0 -1 -1 0\"";
    p["lsfid"] = "3";
    p["lp"] = "10";
    p["rp"] = "20";
    // Two traces of 4 values (2 complex points) per block; 4 blocks announced, the third never
    // acquired, the fourth missing (the acquisition stopped).
    const std::vector<Block> blocks = {
        {-2, 8, ramp(1, 8)}, {3, 8, ramp(-8, 8)}, {0, 0, ramp(9, 8)}};
    const auto r = readVarianFolder(experiment(p, fidFile(4, 2, 4, 2, kComplexShorts, blocks)));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.numberType, NumberType::Short);
    EXPECT_EQ(s.dims[2].points, 2u);
    EXPECT_EQ(s.dims[1].points, 6u);  // three blocks present, two traces each
    EXPECT_EQ(s.highestTIndex, 2);
    EXPECT_FLOAT_EQ(s.dims[2].timeShift, -3.0f);
    EXPECT_FLOAT_EQ(s.dims[2].phase0, static_cast<float>(30 * 0.017453292));
    EXPECT_FLOAT_EQ(s.dims[2].phase1, static_cast<float>(10 * -0.017453292));
    EXPECT_EQ(s.ftPreferences[2], 0x20);
    EXPECT_EQ(s.ftPreferences[1], 0x22);
    // The indirect axis is the decoupler's: 13C at 100.6 MHz.
    EXPECT_EQ(atom(s.dims[1]), "C");
    EXPECT_FLOAT_EQ(s.dims[1].carrier, 100.6f);
    EXPECT_FLOAT_EQ(s.dims[1].spectralWidth, static_cast<float>(16000 / 100.6));
    EXPECT_FLOAT_EQ(s.dims[1].lowestPpm, static_cast<float>(-1600 / 100.6));
    EXPECT_FLOAT_EQ(s.dims[2].lowestPpm, -2.0f);
    EXPECT_EQ(r->metadata.solvent, "dmso");
    EXPECT_EQ(r->metadata.pulseSequence, "gHSQCAD");
    EXPECT_FLOAT_EQ(r->metadata.temperature, 303.15f);
    EXPECT_EQ(r->metadata.title, "");

    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    // Scale -2 multiplies by 4, scale 3 by 8; the unacquired block stays zero.
    EXPECT_EQ(m->re, (std::vector<float>{4, 12, 20, 28, -64, -48, -32, -16, 0, 0, 0, 0}));
    EXPECT_EQ(m->im, (std::vector<float>{-8, -16, -24, -32, 56, 40, 24, 8, 0, 0, 0, 0}));
}

TEST(VarianReader, NumberTypesRealDataAndPseudoDimensions) {
    Parameters p = protonParameters();
    p["ni"] = "3";
    p["axis"] = "\"p\"";  // no letter for the indirect axis: an arrayed series
    // 32-bit integers, real only (neither complex bit), one trace of 4 values per block.
    const auto r = readVarianFolder(experiment(
        p,
        fidFile(3, 1, 4, 4, 0x5,
                {{0, 1, {1, -2, 3, -4}}, {0, 1, {5, 6, 7, 8}}, {0, 1, {-9, 10, 11, 2147483647}}})));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.numberType, NumberType::Long);
    EXPECT_EQ(s.flags, kVarianBinary | kRealOnly);
    EXPECT_EQ(s.dims[2].points, 4u);  // real values are not halved
    EXPECT_TRUE(isPseudoDimension(s.dims[1]));
    EXPECT_EQ(s.dims[1].points, 3u);
    EXPECT_FLOAT_EQ(s.dims[1].lowestPpm, -3.0f);
    EXPECT_EQ(s.phaseable[1], 0);
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_TRUE(m->im.empty());
    EXPECT_EQ(m->re, (std::vector<float>{1, -2, 3, -4, 5, 6, 7, 8, -9, 10, 11, 2147483647.0f}));

    // Four bytes per element without a type bit are floats; the spectrum bit leaves no
    // time-domain axis.
    const float one = 1.5f;
    const auto bits = std::bit_cast<int32_t>(one);
    p["ni"] = "1";
    const auto f =
        readVarianFolder(experiment(p, fidFile(1, 1, 2, 4, 0x13, {{0, 1, {bits, bits}}})));
    ASSERT_TRUE(f);
    EXPECT_EQ(f->source.numberType, NumberType::Float);
    EXPECT_EQ(f->source.highestTIndex, 0);
    const auto fm = loadMatrix(f->source);
    ASSERT_TRUE(fm);
    EXPECT_EQ(fm->re, std::vector<float>{1.5f});
    EXPECT_EQ(fm->im, std::vector<float>{-1.5f});
}

TEST(VarianReader, ThreeDimensionsShareTheTracesBetweenTheIndirectAxes) {
    Parameters p = protonParameters();
    p["ni"] = "2";
    p["ni2"] = "3";
    p["array"] = "\"phase2,phase\"";
    p["axis"] = "\"pd1\"";
    p["dn2"] = "\"N15\"";
    p["dfrq2"] = "40.5";
    p["sw2"] = "2000";
    std::vector<Block> blocks(24, Block{0, 1, ramp(0, 4)});
    const auto r = readVarianFolder(experiment(p, fidFile(24, 1, 4, 4, kComplexLongs, blocks)));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.dims[3].points, 2u);
    EXPECT_EQ(s.dims[2].points, 4u);  // ni doubled by the phase cycle
    EXPECT_EQ(s.dims[1].points, 6u);  // the 24 traces shared
    EXPECT_EQ(s.ftPreferences[3], 0x20);
    EXPECT_EQ(s.ftPreferences[2], 0x10);
    EXPECT_EQ(s.ftPreferences[1], 0x21);
    EXPECT_EQ(s.flags, kVarianBinary | kRanceKay);
    EXPECT_EQ(atom(s.dims[2]), "C");
    EXPECT_EQ(atom(s.dims[1]), "C");  // "1" is the first decoupler as well
    EXPECT_EQ(s.highestTIndex, 3);
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->re.size(), 48u);

    // ni below 2 takes ni2's place: a 2-D.
    p["ni"] = "0";
    const auto two = readVarianFolder(experiment(p, fidFile(24, 1, 4, 4, kComplexLongs, blocks)));
    ASSERT_TRUE(two);
    EXPECT_EQ(two->source.dims[2].points, 2u);
    EXPECT_EQ(two->source.dims[1].points, 24u);
    EXPECT_EQ(countDimensions(two->source), 2);

    // An INADEQUATE's indirect axis is the double-quantum frequency.
    p["ni"] = "4";
    p["ni2"] = "0";
    p["seqfil"] = "\"inadqt\"";
    p["axis"] = "\"pq\"";
    const auto inadequate =
        readVarianFolder(experiment(p, fidFile(24, 1, 4, 4, kComplexLongs, blocks)));
    ASSERT_TRUE(inadequate);
    EXPECT_EQ(atom(inadequate->source.dims[1]), "X");
    EXPECT_EQ(inadequate->source.dims[1].isotope, 0);
    EXPECT_FLOAT_EQ(inadequate->source.dims[1].lowestPpm,
                    -inadequate->source.dims[1].spectralWidth / 2);
}

TEST(VarianReader, DamagedExperimentsAreRefusedAndNeverOverread) {
    const Parameters p = protonParameters();
    const std::string good = fidFile(1, 1, 4, 2, kComplexShorts, {{0, 1, {1, 2, 3, 4}}});
    ASSERT_TRUE(readVarianFolder(experiment(p, good)));

    // No fid, no procpar, or a fid shorter than its header.
    EXPECT_FALSE(readVarianFolder(testdata::shared("varian/missing.fid")));
    const std::string noProcpar = experiment(p, good);
    fs::remove(noProcpar + "/procpar");
    EXPECT_FALSE(readVarianFolder(noProcpar));
    EXPECT_FALSE(readVarianFolder(experiment(p, good.substr(0, 31))));
    // A header only, or a block cut short: no complete block.
    EXPECT_FALSE(readVarianFolder(experiment(p, good.substr(0, 32))));
    EXPECT_FALSE(readVarianFolder(experiment(p, good.substr(0, good.size() - 1))));

    // Sizes that contradict each other: traces larger than their block, blocks no larger
    // than their header, nothing per trace.
    std::string wide = good;
    wide[11] = 100;  // 100 values per trace
    EXPECT_FALSE(readVarianFolder(experiment(p, wide)));
    std::string tiny = good;
    tiny[20] = tiny[21] = tiny[22] = 0, tiny[23] = 28;
    EXPECT_FALSE(readVarianFolder(experiment(p, tiny)));
    std::string empty = good;
    empty[11] = 0;
    EXPECT_FALSE(readVarianFolder(experiment(p, empty)));

    // Hostile counts are bounded by the file: 2^32 - 1 blocks announced, one present.
    Parameters twoD = p;
    twoD["ni"] = "1000000";
    std::string many = good;
    many[0] = many[1] = many[2] = many[3] = '\xFF';
    const auto r = readVarianFolder(experiment(twoD, many));
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.dims[1].points, 1u);

    // A source that asks for more blocks than the file holds is refused by the loader.
    const auto one = readVarianFolder(experiment(p, good));
    ASSERT_TRUE(one);
    SpectrumSource s = one->source;
    s.dims[1].points = 1u << 28;
    EXPECT_FALSE(loadMatrix(s));
    s.dims[1].points = 2;
    s.blockHeader = 4;  // smaller than a block header
    EXPECT_FALSE(loadMatrix(s));
}

TEST(VarianReader, EveryTruncationOfARealFidIsRefusedOrReadWhole) {
    const std::string raw = testdata::readFile(testdata::shared("varian/13C.fid/fid"));
    const std::string dir = testdata::freshTempDir("varian-cut") + "/13C.fid";
    fs::create_directories(dir);
    fs::copy_file(testdata::shared("varian/13C.fid/procpar"), dir + "/procpar");
    for (size_t size : {size_t{0}, size_t{31}, size_t{32}, size_t{59}, size_t{60}, size_t{4096},
                        raw.size() - 1}) {
        std::ofstream(dir + "/fid", std::ios::binary | std::ios::trunc) << raw.substr(0, size);
        EXPECT_FALSE(readVarianFolder(dir)) << size;
    }
    std::ofstream(dir + "/fid", std::ios::binary | std::ios::trunc) << raw << "trailing";
    const auto r = readVarianFolder(dir);
    ASSERT_TRUE(r);
    EXPECT_TRUE(loadMatrix(r->source));
}

}  // namespace
}  // namespace zolt

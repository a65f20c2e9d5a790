// The Varian reader on the real 1H experiment, and on experiments written here byte by byte
// where the real ones do not go: 2-D and 3-D arrays, number types, block scales, unacquired
// blocks, interrupted acquisitions and damaged files.
#include "io/varian/varian_reader.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include "io/raw_loader.h"
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

Parameters hsqcParameters() {
    return {
        {"tn", "\"H1\""}, {"dn", "\"C13\""}, {"sfrq", "400"},         {"dfrq", "100.6"},
        {"sw", "4000"},   {"sw1", "16000"},  {"rfl", "800"},          {"rfp", "0"},
        {"rfl1", "3200"}, {"rfp1", "1600"},  {"axis", "\"pd\""},      {"ni", "1"},
        {"temp", "30"},   {"array", "\"\""}, {"solvent", "\"dmso\""}, {"seqfil", "\"gHSQCAD\""}};
}

void put(std::string& s, uint32_t v, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) s += static_cast<char>(v >> shift);
}

struct Block {
    int16_t scale = 0;
    int32_t transients = 1;
    std::vector<int32_t> values;  // written in the file's element size
};

// A fid of `traces` traces of `points` values per block, `bytes` per value.
std::string fidFile(uint32_t announced, uint32_t traces, uint32_t points, uint32_t bytes,
                    uint16_t status, const std::vector<Block>& blocks) {
    std::string f;
    for (uint32_t v :
         {announced, traces, points, bytes, points * bytes, 28 + traces * points * bytes})
        put(f, v, 4);
    put(f, 0, 2), put(f, status, 2), put(f, 1, 4);
    for (const Block& b : blocks) {
        put(f, static_cast<uint16_t>(b.scale), 2), put(f, status, 2), put(f, 0, 4);
        put(f, static_cast<uint32_t>(b.transients), 4), f += std::string(16, '\0');
        for (int32_t v : b.values) put(f, static_cast<uint32_t>(v), static_cast<int>(bytes));
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

constexpr uint16_t kComplexShorts = 0x11;  // data, complex, 16-bit integers
constexpr uint16_t kComplexLongs = 0x15;

TEST(VarianParameters, LineRulesNucleiAndPhaseCycleTables) {
    const VarianParameters h =
        parseVarianParameters(testdata::readFile(testdata::shared("varian/1H.fid/procpar")));
    EXPECT_EQ(h.tn + h.dn + h.axis + h.array + h.solvent + h.seqfil, "H1C13pcdcl3s2pul");
    EXPECT_DOUBLE_EQ(h.sw, 6009.61538462);  // not sw1's line, which begins with "sw" too
    EXPECT_DOUBLE_EQ(h.rfl, 592.011622346);
    EXPECT_DOUBLE_EQ(h.rp, 61.2830518187);

    const VarianParameters p = parseVarianParameters(
        "swept 1\n1 99\nsw\t1\n1 +2500.5 7\nni 7\n1 12.9\nlsfid 7\n1 -3\ntn 2\n1 H1\ndn 2\n"
        "seqfil 2\n1 \"a-sequence-name-longer-than-thirty-two-chars\"\n");
    EXPECT_DOUBLE_EQ(p.sw, 2500.5);
    EXPECT_EQ(p.ni, 12);
    EXPECT_EQ(p.lsfid, -3);
    EXPECT_EQ(p.seqfil, "a-sequence-name-longer-than-thir");  // 32 characters
    EXPECT_EQ(p.tn + p.dn, "");  // a string without its quote; no value line
    EXPECT_FALSE(p.tempFound);

    char a[3];
    int mass = 0;
    ASSERT_TRUE(parseVarianNucleus("Si29", a, mass));
    EXPECT_EQ(std::string(a) + std::to_string(mass), "Si29");
    for (const char* bad : {"", "h1", "C", "N-15", "H999"})
        EXPECT_FALSE(parseVarianNucleus(bad, a, mass)) << bad;

    const char* tables[] = {"1 0 -1 0 0 -1 0 -1", "1 0 1 0 0 1 0 1",  "1 0 1 0 0 -1 0 1",
                            "1 0 0 1 0 -1 -1 0",  "1 0 1 0 0 1 0 -1", "1 0 0 1 0 -1 1 0",
                            "1 0 -1 0 0 1 0 1"};
    VarianParameters q;
    q.array = "phase";
    for (int i = 0; i < 7; ++i) {
        q.f1coef = std::string(tables[i]) + " 0 0";  // a table matches the beginning
        EXPECT_EQ(firstIndirectQuadrature(q), i < 4 ? 0x22 : 6) << i;
    }
    q.f1coef = "1 0 0 0";
    EXPECT_EQ(firstIndirectQuadrature(q), 0x21);
    q.array = "d1";
    EXPECT_EQ(firstIndirectQuadrature(q), 1);
}

TEST(VarianReader, RealProtonExperimentGivesItsAxisMetadataAndPoints) {
    const auto r = readVarianFolder(testdata::shared("varian/1H.fid/procpar"));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    EXPECT_EQ(s.rawPath, testdata::shared("varian/1H.fid/fid"));
    // sw 6009.61538462 Hz from -592.011622346 Hz at 599.7931758 MHz; rp 61.2830518187 degrees.
    EXPECT_EQ(testdata::sourceText(s),
              "float; Varian binary; header 32; block 131072 + 28; time domain 1; x 1 y 0 z 0; ft "
              "32 0 0; phaseable 1 0 0\n"
              "f1: 16384 1H sw 10.01948 lo -0.9870263 at 599.7932 shift 0 phase 1.069591 0");
    EXPECT_EQ(r->metadata.solvent + r->metadata.pulseSequence, "cdcl3s2pul");
    EXPECT_FLOAT_EQ(r->metadata.temperature, 298.15f);
    EXPECT_EQ(r->metadata.title, testdata::readFile(testdata::shared("varian/1H.fid/text")));

    // Big-endian floats, conjugated into our quadrature sense.
    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    const std::string raw = testdata::readFile(s.rawPath);
    const auto value = [&](size_t i) {
        return decodeRawValue(reinterpret_cast<const unsigned char*>(raw.data()) + 60 + 4 * i,
                              NumberType::Float, false);
    };
    for (size_t i : {size_t{0}, size_t{777}, size_t{16383}}) {
        EXPECT_EQ(m->re[i], value(2 * i));
        EXPECT_EQ(m->im[i], -value(2 * i + 1));
    }
}

TEST(VarianReader, TwoDimensionalArraysScalesAndInterruptedAcquisitions) {
    Parameters p = hsqcParameters();
    p["ni"] = "4", p["array"] = "\"phase\"", p["f1coef"] = "\"1 0 0 1 0 -1 -1 0\"";
    p["lsfid"] = "3", p["lp"] = "10", p["rp"] = "20";
    // Two traces of 2 complex points per block; 4 blocks announced, the third never acquired,
    // the fourth missing (the acquisition stopped).
    const std::vector<Block> blocks = {{-2, 8, {1, 2, 3, 4, 5, 6, 7, 8}},
                                       {3, 8, {-8, -7, -6, -5, -4, -3, -2, -1}},
                                       {0, 0, {9, 9}}};
    std::string fid = fidFile(4, 2, 4, 2, kComplexShorts, blocks);
    fid.resize(fid.size() + 12);  // the third block's values, never written
    const auto r = readVarianFolder(experiment(p, fid));
    ASSERT_TRUE(r);
    const SpectrumSource& s = r->source;
    // Three blocks present, two traces each. lsfid 3, lp 10 and rp 20 (plus the 10 of lp's
    // half) on f2; the indirect axis is the decoupler's: 13C at 100.6 MHz, 16000 Hz from -1600.
    EXPECT_EQ(testdata::sourceText(s),
              "short; Varian binary; header 32; block 16 + 28; time domain 2; x 2 y 1 z 0; ft 34 "
              "32 0; phaseable 1 1 0\n"
              "f1: 6 13C sw 159.0457 lo -15.90457 at 100.6 shift 0\n"
              "f2: 2 1H sw 10 lo -2 at 400 shift -3 phase 0.5235987 -0.1745329");
    EXPECT_FLOAT_EQ(r->metadata.temperature, 303.15f);

    const auto m = loadMatrix(s);
    ASSERT_TRUE(m);
    // Scale -2 multiplies by 4, scale 3 by 8; the unacquired block stays zero.
    EXPECT_EQ(m->re, (std::vector<float>{4, 12, 20, 28, -64, -48, -32, -16, 0, 0, 0, 0}));
    EXPECT_EQ(m->im, (std::vector<float>{-8, -16, -24, -32, 56, 40, 24, 8, 0, 0, 0, 0}));
}

TEST(VarianReader, NumberTypesRealDataPseudoAndThreeDimensions) {
    Parameters p = hsqcParameters();
    p["ni"] = "3", p["axis"] = "\"p\"";  // no letter for the indirect axis: an arrayed series
    // 32-bit integers, real only (neither complex bit).
    const auto r = readVarianFolder(experiment(
        p, fidFile(3, 1, 2, 4, 0x5, {{0, 1, {1, -2}}, {0, 1, {5, 6}}, {0, 1, {-9, 2147483647}}})));
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.flags, kVarianBinary | kRealOnly);
    EXPECT_EQ(r->source.dims[2].points, 2u);  // real values are not halved
    EXPECT_TRUE(isPseudoDimension(r->source.dims[1]));
    EXPECT_EQ(r->source.dims[1].points, 3u);
    const auto m = loadMatrix(r->source);
    ASSERT_TRUE(m);
    EXPECT_TRUE(m->im.empty());
    EXPECT_EQ(m->re, (std::vector<float>{1, -2, 5, 6, -9, 2147483647.0f}));

    // Four bytes per element without a type bit are floats; the spectrum bit leaves no
    // time-domain axis.
    p["ni"] = "1";
    const auto bits = std::bit_cast<int32_t>(1.5f);
    const auto f =
        readVarianFolder(experiment(p, fidFile(1, 1, 2, 4, 0x13, {{0, 1, {bits, bits}}})));
    ASSERT_TRUE(f);
    EXPECT_EQ(f->source.highestTIndex, 0);
    EXPECT_EQ(loadMatrix(f->source)->re, std::vector<float>{1.5f});

    // ni doubled by the phase cycle on the first indirect axis; the rest of the traces on the
    // second.
    p["ni"] = "2", p["ni2"] = "3", p["array"] = "\"phase2,phase\"", p["axis"] = "\"pd1\"";
    const std::vector<Block> blocks(24, Block{0, 1, {0, 1, 2, 3}});
    const auto three = readVarianFolder(experiment(p, fidFile(24, 1, 4, 4, kComplexLongs, blocks)));
    ASSERT_TRUE(three);
    const SpectrumSource& s = three->source;
    EXPECT_EQ(s.dims[3].points * 100 + s.dims[2].points * 10 + s.dims[1].points, 246u);
    EXPECT_EQ(s.ftPreferences[2], 0x10);
    EXPECT_EQ(s.ftPreferences[1], 0x21);
    EXPECT_EQ(s.flags, kVarianBinary | kRanceKay);
    EXPECT_EQ(loadMatrix(s)->re.size(), 48u);

    // ni below 2 takes ni2's place: a 2-D. An INADEQUATE's indirect axis is the
    // double-quantum frequency.
    p["ni"] = "0", p["seqfil"] = "\"inadqt\"";
    const auto two = readVarianFolder(experiment(p, fidFile(24, 1, 4, 4, kComplexLongs, blocks)));
    ASSERT_TRUE(two);
    EXPECT_EQ(countDimensions(two->source), 2);
    EXPECT_EQ(two->source.dims[1].points, 24u);
    EXPECT_EQ(atom(two->source.dims[1]), "X");
    EXPECT_FLOAT_EQ(two->source.dims[1].lowestPpm, -two->source.dims[1].spectralWidth / 2);
}

TEST(VarianReader, DamagedExperimentsAreRefusedAndNeverOverread) {
    const Parameters p = hsqcParameters();
    const std::string good = fidFile(1, 1, 4, 2, kComplexShorts, {{0, 1, {1, 2, 3, 4}}});
    ASSERT_TRUE(readVarianFolder(experiment(p, good)));
    const std::string noProcpar = experiment(p, good);
    fs::remove(noProcpar + "/procpar");
    EXPECT_FALSE(readVarianFolder(noProcpar));
    // Hostile counts are bounded by the file: 2^32 - 1 blocks announced, one present.
    Parameters twoD = p;
    twoD["ni"] = "1000000";
    std::string many = good;
    many.replace(0, 4, "\xFF\xFF\xFF\xFF");
    const auto r = readVarianFolder(experiment(twoD, many));
    ASSERT_TRUE(r);
    EXPECT_EQ(r->source.dims[1].points, 1u);
    // A source that asks for more blocks than the file holds is refused by the loader.
    SpectrumSource s = r->source;
    s.dims[1].points = 1u << 28;
    EXPECT_FALSE(loadMatrix(s));
    s.dims[1].points = 2;
    s.blockHeader = 4;  // smaller than a block header
    EXPECT_FALSE(loadMatrix(s));
}

}  // namespace
}  // namespace zolt

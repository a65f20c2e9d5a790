#include "io/bruker/bruker_parameters.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "io/bruker/bruker_reader.h"
#include "io/bruker/bruker_time_shift.h"
#include "test_data.h"

namespace zolt {
namespace {

using K = ParameterKind;

TEST(BrukerParameters, MergeWalkFindsSortedKeysInOnePass) {
    const std::string text =
        "##TITLE= x\n##$AQ_mod= 3\n##$D= (0..3)\n0 1.5 0 0\n##$DE= 6.5\n##$DECIM= 16\n"
        "$$ comment\n##$NUC1= <13C>\n##$SW= 20.5\n##$SWIBOX= 0\n##$SW_h= 8000\n##$TD= 4096\n"
        "##$TD0= 1\n##END=\n";
    static constexpr std::array<ParameterKey, 6> keys = {{{"##$AQ_mod=", K::Integer},
                                                          {"##$DECIM=", K::Integer},
                                                          {"##$DSPFVS=", K::Integer},
                                                          {"##$NUC1=", K::Text, 15},
                                                          {"##$SW=", K::Real},
                                                          {"##$TD=", K::Integer}}};
    const auto v = mergeWalkParameters(text, keys);
    EXPECT_EQ(v[0].integer, 3);
    EXPECT_EQ(v[1].integer, 16);
    EXPECT_FALSE(v[2].found);  // absent keys leave the pointer where it was
    EXPECT_EQ(v[3].text, "<13C>");
    EXPECT_DOUBLE_EQ(v[4].real, 20.5);
    EXPECT_EQ(v[5].integer, 4096);
}

TEST(BrukerParameters, UnsortedTdIsFoundByThePlainSearch) {
    // TD first: the walk never meets it where it belongs, the fallback finds it.
    const auto a = parseAcquisitionParameters("##$TD= 512\n##$SW= 10\n##END=\n");
    EXPECT_TRUE(a.tdFound);
    EXPECT_EQ(a.td, 512);
    EXPECT_EQ(a.sw, 0.0);  // the walk stood on TD, which sorts after SW
    // Other keys out of order are simply missed.
    const auto b = parseAcquisitionParameters("##$SW= 10\n##$O1= 50\n##$TD= 8\n");
    EXPECT_EQ(b.o1, 0.0);
    EXPECT_EQ(b.td, 8);
}

TEST(BrukerParameters, ValuesAreParsedFromAWindowOf32Characters) {
    const ParameterKey integer{"##$TD=", K::Integer};
    EXPECT_EQ(parseParameterValue("##$TD= 3637.333", 6, integer).integer, 3637);
    EXPECT_EQ(parseParameterValue("##$TD= -12", 6, integer).integer, -12);
    EXPECT_FALSE(parseParameterValue("##$TD= x", 6, integer).found);
    // The value may start on the next line, as scanf would look, but not beyond 32 characters.
    const std::string far = "##$TD=" + std::string(32, ' ') + "7";
    EXPECT_FALSE(parseParameterValue(far, 6, integer).found);
    EXPECT_EQ(parseParameterValue("##$TD=" + std::string(30, ' ') + "756", 6, integer).integer, 75);
    const ParameterKey text{"##$PULPROG=", K::Text, 31};
    EXPECT_EQ(parseParameterValue("##$PULPROG= <hsqcedetgpsp.3> x", 11, text).text,
              "<hsqcedetgpsp.3>");
    const ParameterKey shortText{"##$NUC1=", K::Text, 15};
    EXPECT_EQ(parseParameterValue("##$NUC1= <abcdefghijklmnopqrst>", 8, shortText).text,
              "<abcdefghijklmn");
    const ParameterKey real{"##$SW=", K::Real};
    EXPECT_FLOAT_EQ(parseParameterValue("##$SW= +1.5e2", 6, real).real, 150.0f);
    EXPECT_FALSE(parseParameterValue("##$SW= nan", 6, real).found);
    EXPECT_FALSE(parseParameterValue("##$SW= 1e99", 6, real).found);  // beyond a float
    EXPECT_FALSE(parseParameterValue("##$SW=", 99, real).found);
}

TEST(BrukerParameters, AcquisitionInfoStampIsCutAtABlank) {
    auto info = parseAcquisitionInfo(
        "##TITLE= x\n$$ 2020-11-18 15:54:34.887 +0100  NMR_mess@av600\n##$D= (0..63)\n"
        "3e-06 15 0\n##$NS= 8\n");
    EXPECT_EQ(info.dateStamp, "2020-11-18 15:54:34.887");
    EXPECT_DOUBLE_EQ(info.relaxationDelay, 15.0);
    EXPECT_EQ(info.scans, 8);
    // A short stamp is kept whole.
    info = parseAcquisitionInfo("$$ Mon Jan 1 2001\n");
    EXPECT_EQ(info.dateStamp, "Mon Jan 1 2001");
}

TEST(BrukerParameters, FilesAboveTheLimitAreRefused) {
    const std::string dir = testdata::freshTempDir("parameters");
    EXPECT_FALSE(readParameterFile(dir + "/acqus"));
    EXPECT_FALSE(readParameterFile(dir));  // a folder is not a file
    std::ofstream(dir + "/acqus") << "##$TD= 4\n" << std::flush;
    EXPECT_EQ(readParameterFile(dir + "/acqus", 9).value_or(""), "##$TD= 4\n");
    EXPECT_FALSE(readParameterFile(dir + "/acqus", 8));
}

// The digital filter's delay, from the firmware version, the decimation and the group delay.
TEST(BrukerTimeShift, TableUntabulatedDecimationsAndNewerFirmware) {
    struct Case {
        int version, decimation;
        double groupDelay, delay;
    };
    const Case cases[] = {
        // Rows and columns of the table; 15 / 2 and 13 / 256 are the table's own zeros.
        {10, 2, 0, 44.75},
        {10, 24, 0, 61.0208333},
        {12, 8, 0, 53.25},
        {11, 16, 0, 2312 * 0.5 / 16},
        {15, 2, 0, 0.0},
        {13, 256, 0, 0.0},
        // Untabulated decimations share the next column but divide by their own value.
        {10, 5, 0, 709 * 0.5 / 5},
        {10, 1536, 0, 189409 * 0.5 / 1536},
        {10, 1537, 0, 288737 * 0.5 / 1537},
        {10, 2048, 0, 288737 * 0.5 / 2048},
        // Outside the table there is no delay.
        {10, 1, 70, 0.0},
        {10, 2049, 70, 0.0},
        {9, 24, 70, 0.0},
        {16, 24, 70, 0.0},
        {19, 24, 70, 0.0},
        {0, 1, -1, 0.0},
        // Newer firmware states its group delay.
        {20, 3637, 67.9873504638672, 67.9873504638672},
        {21, 3640, 76, 76.0}};
    for (const Case& c : cases)
        EXPECT_NEAR(digitalFilterDelay(c.version, c.decimation, c.groupDelay), c.delay, 1e-7)
            << c.version << " / " << c.decimation;
}

}  // namespace
}  // namespace zolt

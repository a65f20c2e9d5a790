// The command-line sources are linked into zolt-cli only, so this unit is compiled in here.
#include "cli/json_text.cpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zolt {
namespace {

TEST(JsonText, StringsEscapeQuotesBackslashesAndControls) {
    EXPECT_EQ(jsonString("a\"b\\c"), "\"a\\\"b\\\\c\"");
    EXPECT_EQ(jsonString("line\r\nnext\ttab"), "\"line\\r\\nnext\\ttab\"");
    EXPECT_EQ(jsonString(std::string("\x01\x1f\x7f", 3)), "\"\\u0001\\u001f\\u007f\"");
    EXPECT_EQ(jsonString(std::string("a\0b", 3)), "\"a\\u0000b\"");
    EXPECT_EQ(jsonString(""), "\"\"");
}

TEST(JsonText, OutputIsUtf8EvenForLatin1Titles) {
    EXPECT_EQ(jsonString("13C \xc3\xa9t\xc3\xa9"), "\"13C \xc3\xa9t\xc3\xa9\"");  // kept
    EXPECT_EQ(jsonString("\xe9t\xe9"), "\"\xc3\xa9t\xc3\xa9\"");                  // Latin-1 e-acute
    EXPECT_EQ(jsonString("\xc3"), "\"\xc3\x83\"");                                // a cut sequence
    EXPECT_EQ(jsonString("\xe2\x82\xac"), "\"\xe2\x82\xac\"");                    // euro sign
}

TEST(JsonText, NumbersAreShortestAndFinite) {
    EXPECT_EQ(jsonNumber(-61.020832f), "-61.020832");
    EXPECT_EQ(jsonNumber(0.1f), "0.1");
    EXPECT_EQ(jsonNumber(0.1), "0.1");
    EXPECT_EQ(jsonNumber(8192.0f), "8192");
    EXPECT_EQ(jsonNumber(std::numeric_limits<float>::quiet_NaN()), "null");
    EXPECT_EQ(jsonNumber(-std::numeric_limits<double>::infinity()), "null");
}

}  // namespace
}  // namespace zolt

// Runs the built zolt-cli on real data, as a user or a script would.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_run.h"

namespace zolt {
namespace {

using testdata::CliRun;
using testdata::runCli;

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> v;
    size_t start = 0;
    for (size_t nl; (nl = text.find('\n', start)) != std::string::npos; start = nl + 1)
        v.push_back(text.substr(start, nl - start));
    if (start < text.size()) v.push_back(text.substr(start));
    return v;
}

// The text of a scalar value after "key": (first occurrence from `from`).
std::string valueOf(const std::string& json, const std::string& key, size_t from = 0) {
    const std::string tag = "\"" + key + "\":";
    const size_t at = json.find(tag, from);
    if (at == std::string::npos) return "<missing " + key + ">";
    size_t end = at + tag.size();
    if (json[end] == '"') {
        for (++end; json[end] != '"'; ++end)
            if (json[end] == '\\') ++end;
        return json.substr(at + tag.size(), end + 1 - at - tag.size());
    }
    while (end < json.size() && json[end] != ',' && json[end] != '}' && json[end] != ']') ++end;
    return json.substr(at + tag.size(), end - at - tag.size());
}

// Every number of the "points" array, in order.
std::vector<double> pointNumbers(const std::string& json) {
    std::vector<double> v;
    const size_t at = json.find("\"points\":[[");
    if (at == std::string::npos) return v;
    std::istringstream list(json.substr(at + 10, json.find("]]", at) - at - 10));
    for (std::string n; std::getline(list, n, ',');) v.push_back(std::stod(n.substr(n[0] == '[')));
    return v;
}

int32_t bigEndianWord(const std::string& bytes, size_t offset) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v = (v << 8) | static_cast<unsigned char>(bytes.at(offset + i));
    return static_cast<int32_t>(v);
}

TEST(InfoCommand, AspirinJsonCarriesEveryKeyInOrder) {
    const std::string folder = testdata::bruker("aspirin-1h");
    const CliRun r = runCli({"info", folder, "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), 1u);
    const std::string& j = out[0];
    std::istringstream keys(
        "path format dimensions time_domain_dimensions number_type flags axes f_index points "
        "points_after_nus spectral_width_ppm spectral_width_hz carrier_mhz lowest_ppm isotope atom "
        "time_shift ft_preferences phase0 phase1 title solvent pulse_program");
    size_t at = 0;
    for (std::string key; keys >> key;) {
        const size_t next = j.find("\"" + key + "\":", at);
        ASSERT_NE(next, std::string::npos) << key << " missing or out of order";
        at = next;
    }
    EXPECT_EQ(j.front(), '{');
    EXPECT_EQ(j.back(), '}');
    EXPECT_NE(j.find("\"flags\":[]"), std::string::npos);  // big-endian, found by the probe
    for (const auto& [key, value] :
         std::vector<std::pair<std::string, std::string>>{{"path", "\"" + folder + "\""},
                                                          {"format", "\"Bruker\""},
                                                          {"number_type", "\"long\""},
                                                          {"dimensions", "1"},
                                                          {"time_domain_dimensions", "1"},
                                                          {"f_index", "1"},
                                                          {"points", "8192"},
                                                          {"atom", "\"H\""},
                                                          {"isotope", "1"},
                                                          {"solvent", "\"CDCl3\""},
                                                          {"pulse_program", "\"zg30\""}})
        EXPECT_EQ(valueOf(j, key), value) << key;
    EXPECT_NEAR(std::stod(valueOf(j, "time_shift")), -61.0208, 1e-4);
    EXPECT_NEAR(std::stod(valueOf(j, "carrier_mhz")), 300.132, 1e-3);
    EXPECT_NEAR(std::stod(valueOf(j, "spectral_width_hz")),
                std::stod(valueOf(j, "spectral_width_ppm")) * std::stod(valueOf(j, "carrier_mhz")),
                1e-3);
    EXPECT_EQ(j.find("\"points\":["), std::string::npos);  // only with --points
}

TEST(InfoCommand, PointsAreTheFirstComplexPairsOfTheFid) {
    const std::string folder = testdata::bruker("aspirin-1h");
    const std::string fid = testdata::readFile(folder + "/fid");
    const CliRun r = runCli({"info", folder, "--json", "--points", "72"});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto numbers = pointNumbers(r.out);
    ASSERT_EQ(numbers.size(), 144u);
    for (size_t i : {0u, 69u, 70u, 71u}) {
        EXPECT_EQ(numbers[2 * i], bigEndianWord(fid, 8 * i)) << i;
        EXPECT_EQ(numbers[2 * i + 1], bigEndianWord(fid, 8 * i + 4)) << i;
    }
    EXPECT_EQ(numbers[140], -147341);
}

TEST(InfoCommand, TwoDimensionalSetListsAxesInFIndexOrderAndEscapesItsTitle) {
    const CliRun r = runCli({"info", testdata::bruker("cyclosporin-cosy"), "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), 1u);  // the title's line breaks stay escaped
    const std::string& j = out[0];
    EXPECT_NE(j.find("\"flags\":[\"little endian\"]"), std::string::npos);
    EXPECT_EQ(valueOf(j, "dimensions"), "2");
    const size_t second = j.find("\"f_index\":2");
    ASSERT_NE(second, std::string::npos);
    EXPECT_EQ(valueOf(j, "f_index"), "1");
    EXPECT_EQ(valueOf(j, "points"), "128");
    EXPECT_EQ(valueOf(j, "points", second), "1024");
    EXPECT_EQ(valueOf(j, "ft_preferences", second), "3");
    EXPECT_EQ(valueOf(j, "title"), "\"COSY Cyclosporin\\r\\n\\r\\n\\r\\n\\r\\n\"");
    EXPECT_EQ(valueOf(j, "pulse_program"), "\"cosygpqf\"");
}

TEST(InfoCommand, ProcessedOptionReadsTheVendorSpectrumInsteadOfTheFid) {
    const std::string folder = testdata::bruker("strychnine-1h");
    const CliRun r = runCli({"info", folder, "--processed", "--json", "--points", "3"});
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string& j = r.out;
    EXPECT_NE(j.find("\"flags\":[\"little endian\",\"real only\"]"), std::string::npos) << j;
    EXPECT_EQ(valueOf(j, "time_domain_dimensions"), "0");
    EXPECT_EQ(valueOf(j, "points"), "131072");  // STSI of pdata/1/procs
    const std::string r1 = testdata::readFile(folder + "/pdata/1/1r");
    const auto numbers = pointNumbers(j);
    ASSERT_EQ(numbers.size(), 6u);
    for (size_t i = 0; i < 3; ++i) {
        uint32_t word = 0;  // BYTORDP 0: little-endian
        for (int b = 3; b >= 0; --b) word = (word << 8) | static_cast<unsigned char>(r1[4 * i + b]);
        EXPECT_EQ(numbers[2 * i], static_cast<int32_t>(word)) << i;
        EXPECT_EQ(numbers[2 * i + 1], 0.0) << i;  // real-only data
    }
}

TEST(InfoCommand, ReadableSummaryNamesFormatAxesAndMetadata) {
    const CliRun r = runCli({"info", testdata::bruker("aspirin-1h"), "--points", "2"});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* part :
         {"format: Bruker", "numbers: long; flags: none", "f1: 8192 points",
          "time shift -61.0208 pts", "solvent: CDCl3", "pulse program: zg30", "point 1: "})
        EXPECT_NE(r.out.find(part), std::string::npos) << part;
}

TEST(InfoCommand, UnreadablePathsAreReportedWhileTheOthersArePrinted) {
    const std::string dir = testdata::freshTempDir("cli-bad");
    std::filesystem::create_directories(dir + "/nofid");
    std::filesystem::copy_file(testdata::bruker("aspirin-1h") + "/acqus", dir + "/nofid/acqus");
    const CliRun r = runCli(
        {"info", dir + "/nothing-here", testdata::bruker("aspirin-1h"), dir + "/nofid", "--json"});
    std::filesystem::remove_all(dir);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(lines(r.out).size(), 1u);
    // A path that is not there says so rather than calling its format unknown.
    EXPECT_EQ(r.err,
              "Failed to Read the file: This file or folder does not exist\n"
              "Failed to Read the file: This Bruker file seems incoherent\n");
}

TEST(InfoCommand, DataTheLoaderCannotReadGiveTheDataPointMessage) {
    // Parameters for 8192 points over a fid that holds 100.
    const std::string dir = testdata::freshTempDir("cli-short");
    std::filesystem::copy_file(testdata::bruker("aspirin-1h") + "/acqus", dir + "/acqus");
    const std::string fid = testdata::readFile(testdata::bruker("aspirin-1h") + "/fid");
    std::ofstream(dir + "/fid", std::ios::binary) << fid.substr(0, 800);
    const CliRun r = runCli({"info", dir});
    std::filesystem::remove_all(dir);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "Failed to Read the file: Error found while trying to read data-points\n");
}

TEST(InfoCommand, HelpAndMalformedCommandLines) {
    const CliRun help = runCli({"info", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("usage: zolt-cli info PATH...", 0), 0u) << help.out;
    EXPECT_EQ(runCli({"--help"}).status, 0);
    EXPECT_EQ(runCli({}).status, 2);
    EXPECT_EQ(runCli({"info"}).status, 2);
    for (const auto& args : std::vector<std::vector<std::string>>{{"info", "x", "--points"},
                                                                  {"info", "x", "--points", "3a"},
                                                                  {"info", "x", "--colour"},
                                                                  {"frobnicate"}})
        EXPECT_EQ(runCli(args).status, 2) << args.back();
}

}  // namespace
}  // namespace zolt

// The JCAMP-DX writer: the forms and lines it writes, and the aspirin FID and spectrum read back
// by our reader and by jcampconverter.
#include "io/jcamp/jcamp_writer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "app/document_opening.h"
#include "jcamp_reference.h"
#include "operations/export_operations.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace testdata;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) {
        EXPECT_TRUE(l.ends_with('\r')) << l;
        lines.push_back(l.substr(0, l.size() - 1));
    }
    return lines;
}

TEST(JcampWriter, SqueezedAndDifferenceForms) {
    const std::pair<int64_t, const char*> squeezed[] = {{0, "@"},   {-25, "b5"}, {9, "I"},
                                                        {10, "A0"}, {-1, "a"},   {80000, "H0000"}};
    for (const auto& [v, text] : squeezed) EXPECT_EQ(squeezedForm(v), text) << v;
    const std::pair<int64_t, const char*> difference[] = {
        {0, "%"}, {-25, "k5"}, {1, "J"}, {-9, "r"}, {123, "J23"}};
    for (const auto& [v, text] : difference) EXPECT_EQ(differenceForm(v), text) << v;
}

JcampExport syntheticExport(bool fid, std::vector<float>& re, std::vector<float>& im) {
    JcampExport e;
    e.axis.points = 200;
    e.axis.carrier = 100.0f;
    e.axis.spectralWidth = 40.0f;  // 4000 Hz
    e.axis.lowestPpm = -10.0f;
    e.axis.timeShift = -44.75f;
    e.axis.isotope = 13;
    e.axis.atom[0] = 'C';
    re.resize(200);
    im.resize(200);
    for (size_t i = 0; i < 200; ++i) {
        re[i] = float(std::cos(i * 0.3) * 1000.0 / (1 + i * 0.02));
        im[i] = i < 50 ? 0.0f : -re[i];
    }
    e.re = re;
    e.im = im;
    e.title = std::string(80, 'T');
    e.quadratureMode = 3;
    e.reference = 1000.0;
    e.fid = fid;
    return e;
}

TEST(JcampWriter, FidHeaderAndSqueezedPages) {
    std::vector<float> re, im;
    const auto lines = linesOf(jcampText(syntheticExport(true, re, im)));
    ASSERT_GT(lines.size(), 24u);
    EXPECT_EQ(lines[0], "##TITLE= " + std::string(70, 'T'));
    EXPECT_EQ(lines[1], "##JCAMP-DX= 5.01 \t $$ Zolt");
    EXPECT_EQ(lines[2], "##DATA TYPE= NMR FID");
    EXPECT_EQ(lines[3], "##DATA CLASS= NTUPLES");
    EXPECT_EQ(lines[6], "##.OBSERVE FREQUENCY=  100.0000");
    EXPECT_EQ(lines[7], "##.OBSERVE NUCLEUS= ^13C ");
    EXPECT_EQ(lines[8], "##.ACQUISITION MODE= SINGLE");  // mode 3, on purpose
    EXPECT_EQ(lines[14], "##VAR_DIM= \t\t 200, \t 200, \t 200, \t 2");
    // The digital filter's shift puts the first sample before time zero.
    EXPECT_EQ(lines[16], "##FIRST= \t   -0.0111875,         1000,            0, \t 1");
    EXPECT_EQ(lines[18], "##FACTOR= \t 4.8203125E-07,       0.0125,       0.0125, \t 1");
    EXPECT_EQ(lines[19], "##PAGE= N = 1");
    EXPECT_EQ(lines[20], "##DATA TABLE=(X++(R..R)), XYDATA");
    EXPECT_EQ(lines[21].substr(0, 12), "-23209H0000G");  // X, then 80000 for 1000
    size_t pages = 0;
    for (size_t i = 21; i + 2 < lines.size(); ++i) {
        if (lines[i].starts_with("##")) {
            ++pages;
            continue;
        }
        EXPECT_LE(lines[i].size(), 80u);
        // A line is closed only when the next value (here at most 5 characters) would not fit.
        const std::string& next = lines[i + 1];
        if (!next.starts_with("##") && !next.empty()) {
            EXPECT_GT(lines[i].size(), 75u) << lines[i];
        }
    }
    EXPECT_EQ(pages, 1u);  // the imaginary page's label
    EXPECT_EQ(lines[lines.size() - 2], "");
    EXPECT_EQ(lines.back(), "##END=");
}

TEST(JcampWriter, SpectrumLinesRepeatTheirLastValue) {
    std::vector<float> re, im;
    JcampExport e = syntheticExport(false, re, im);
    e.magnitude = true;
    const auto lines = linesOf(jcampText(e));
    EXPECT_EQ(lines[2], "##DATA TYPE= NMR SPECTRUM");
    EXPECT_EQ(lines[3], "##DATA CLASS= XYDATA");
    EXPECT_EQ(lines[9], "##XUNITS= HZ");
    EXPECT_EQ(lines[10], "##YUNITS= MAGNITUDE");
    EXPECT_EQ(lines[11], "##FIRSTX=   2990.00");  // centres of the first and last points
    EXPECT_EQ(lines[12], "##LASTX=   -990.00");
    EXPECT_EQ(lines[13], "##XFACTOR=     0.037375");
    EXPECT_EQ(lines[14], "##YFACTOR=       0.0125");
    EXPECT_EQ(lines[15], "##NPOINTS= 200");
    EXPECT_EQ(lines[16], "##XYDATA= (X++(Y..Y))");
    EXPECT_EQ(lines[17].substr(0, 14), "80000H0000n072");
    for (size_t i = 17; lines[i + 1] != ""; ++i) {
        EXPECT_GE(lines[i].size(), 76u) << "line ended early: " << lines[i];
        EXPECT_LT(lines[i].size(), 76u + 8);
    }
}

// Our export of an aspirin document, read back by both readers: the same points within the
// rounding of the Y factor, on the same axis.
void expectReadBack(const SpectrumDocument& original, const std::string& path) {
    ASSERT_TRUE(exportJcamp(original, path));
    const double yFactor = jcampReferenceIntensity(original) / 80000.0;
    const SpectrumMatrix& m = original.matrix;
    const DimensionRecord& axis = m.dims[m.xIndex];
    const bool fid = original.source.highestTIndex > 0;
    const auto within = [&](const std::vector<double>& got, const std::vector<float>& want) {
        size_t bad = 0;
        for (size_t i = 0; i < want.size(); ++i)
            // Half a unit of the factor, and the float the value is kept in.
            if (std::abs(got[i] - want[i]) > yFactor * 0.5 + 1e-6 * std::abs(want[i]) && bad++ == 0)
                ADD_FAILURE() << "point " << i << ": " << got[i] << " vs " << want[i];
        return bad;
    };
    Message failure;
    const auto ours = readDocument(path, Preferences{}, failure);
    ASSERT_TRUE(ours) << failure.text;
    const DimensionRecord& d = ours->matrix.dims[1];
    EXPECT_EQ(d.points, axis.points);
    EXPECT_NEAR(spectralWidthHz(d), spectralWidthHz(axis), 0.02);
    EXPECT_EQ(within({ours->matrix.re.begin(), ours->matrix.re.end()}, m.re), 0u);
    if (fid) {
        EXPECT_NEAR(d.timeShift, axis.timeShift, 1e-3);
        EXPECT_EQ(within({ours->matrix.im.begin(), ours->matrix.im.end()}, m.im), 0u);
    } else {
        EXPECT_NEAR(ppmOfPoint(d, 0), ppmOfPoint(axis, 0), 0.01 / axis.carrier);
    }
    const auto reference = jcampconverterRead(path);
    if (!reference) GTEST_SKIP() << "node is not installed";
    ASSERT_EQ(reference->pages.size(), fid ? 2u : 1u);
    EXPECT_EQ(within(reference->pages[0].y, m.re), 0u);
    if (fid) {
        EXPECT_EQ(within(reference->pages[1].y, m.im), 0u);
    }
    const std::vector<double>& x = reference->pages[0].x;
    ASSERT_EQ(x.size(), axis.points);
    for (size_t i : {size_t{0}, size_t{axis.points / 2}, size_t{axis.points - 1}}) {
        if (fid)
            EXPECT_NEAR(x[i], (i + axis.timeShift) / spectralWidthHz(axis), 1e-6 * x.back());
        else
            EXPECT_NEAR(x[i], ppmOfPoint(axis, double(i)), 0.01 / axis.carrier);
    }
}

TEST(JcampWriter, AspirinFidReadsBack) {
    const auto doc = openExperiment("aspirin-1h");
    ASSERT_TRUE(doc);
    expectReadBack(*doc, freshTempDir("jcamp-fid") + "/aspirin.fid.dx");
}

TEST(JcampWriter, AspirinSpectrumReadsBack) {
    const auto doc = openTransformed("aspirin-1h");
    ASSERT_TRUE(doc);
    expectReadBack(*doc, freshTempDir("jcamp-spectrum") + "/aspirin.dx");
}

}  // namespace
}  // namespace zolt

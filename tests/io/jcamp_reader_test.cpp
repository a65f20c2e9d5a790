// The JCAMP-DX reader on the files of jcamp-data-test, checked point by point against
// jcampconverter; damaged copies of them; the ASDF forms one by one.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/document_opening.h"
#include "document/document_file.h"
#include "io/jcamp/jcamp_asdf.h"
#include "io/raw_loader.h"
#include "jcamp_reference.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace testdata;

std::string jcampFile(const std::string& name) {
    return root() + "/jcamp/" + name;
}

std::unique_ptr<SpectrumDocument> openFile(const std::string& path, Message& failure) {
    return readDocument(path, Preferences{}, failure);
}

// Counts the points outside the tolerance, reporting the first.
size_t mismatches(const std::vector<double>& ours, const std::vector<double>& reference,
                  double relative, const char* what) {
    size_t bad = 0;
    for (size_t i = 0; i < ours.size() && i < reference.size(); ++i)
        if (!closeTo(ours[i], reference[i], relative) && bad++ == 0)
            ADD_FAILURE() << what << " " << i << ": " << ours[i] << " vs " << reference[i];
    return bad;
}

class JcampFile : public ::testing::TestWithParam<const char*> {};

TEST_P(JcampFile, PointsEqualThoseOfJcampconverter) {
    const std::string path = jcampFile(GetParam());
    Message failure;
    const auto doc = openFile(path, failure);
    ASSERT_TRUE(doc) << failure.text;
    EXPECT_EQ(doc->source.provenance, "JCAMP-DX");
    const auto reference = jcampconverterRead(path);
    if (!reference) GTEST_SKIP() << "node is not installed";
    const SpectrumMatrix& m = doc->matrix;
    if (m.dimensions == 2) {
        ASSERT_EQ(reference->planes.size(), 1u);
        const ReferencePlane& z = reference->planes[0];
        const size_t rows = m.dims[1].points, columns = m.dims[2].points;
        ASSERT_EQ(z.rows, rows);
        ASSERT_EQ(z.columns, columns);
        // Our rows and columns run from high to low frequency.
        std::vector<double> ours(m.re.rbegin(), m.re.rend());
        EXPECT_EQ(mismatches(ours, z.z, 1e-6, "z"), 0u);
        return;
    }
    const bool complex = !m.im.empty();
    ASSERT_EQ(reference->pages.size(), complex ? 2u : 1u);
    const DimensionRecord& d = m.dims[1];
    const ReferencePage& real = reference->pages[0];
    ASSERT_EQ(real.y.size(), d.points);
    EXPECT_EQ(mismatches({m.re.begin(), m.re.end()}, real.y, 1e-6, "real"), 0u);
    if (complex) {
        EXPECT_EQ(mismatches({m.im.begin(), m.im.end()}, reference->pages[1].y, 1e-6, "imag"), 0u);
    }
    // The axis: ppm of each point of a spectrum, the sampling times of an FID (from its start).
    std::vector<double> x(d.points), expected(d.points);
    const double span = std::max(std::abs(real.x.front()), std::abs(real.x.back()));
    for (size_t i = 0; i < d.points; ++i) {
        x[i] = doc->source.highestTIndex ? i / spectralWidthHz(d) : ppmOfPoint(d, double(i));
        expected[i] = doc->source.highestTIndex ? real.x[i] - real.x[0] : real.x[i];
        // A tolerance relative to the axis' extent: points near zero are no harder.
        if (std::abs(x[i] - expected[i]) <= 1e-6 * span) x[i] = expected[i];
    }
    EXPECT_EQ(mismatches(x, expected, 0.0, "x"), 0u);
}

INSTANTIATE_TEST_SUITE_P(JcampDataTest, JcampFile,
                         ::testing::Values("aspirin-1h.dx", "aspirin-1h.fid.dx",
                                           "naphtoicAcid-1h.dx", "naphtoicAcid-1h.fid.dx",
                                           "Rutin_3080ug200uL_DMSOd6_qHNMR_400MHz_JDX.jdx",
                                           "Rutin_3080ug200uL_DMSOd6_13CNMR_400MHz_JDX.jdx",
                                           "Rutin_3080ug200uL_DMSOd6_COSY_400MHz_JDX.jdx",
                                           "Rutin_3080ug200uL_DMSOd6_HSQC_400MHz_JDX.jdx",
                                           "Rutin_3080ug200uL_DMSOd6_HMBC_400MHz_JDX.jdx",
                                           "qmagnetics/ibuprofen_j_ave_qmagnetics.jdx"));

TEST(JcampFile, AxesAndOptionsOfTheBrukerFid) {
    Message failure;
    const auto doc = openFile(jcampFile("aspirin-1h.fid.dx"), failure);
    ASSERT_TRUE(doc);
    const DimensionRecord& d = doc->source.dims[1];
    EXPECT_EQ(doc->source.blockSize & 7, 1u);  // ntuples only
    EXPECT_EQ(d.points, 8192u);
    EXPECT_NEAR(spectralWidthHz(d), 4789.27203065134, 1e-3);
    EXPECT_NEAR(d.timeShift, -61.0208, 1e-4);  // DSPFVS 10, DECIM 24
    EXPECT_EQ(d.isotope, 1);
    EXPECT_EQ(d.atom[0], 'H');
    EXPECT_EQ(doc->source.highestTIndex, 1);
    EXPECT_EQ(doc->metadata.solvent, "CDCl3");
}

// The options and factors live in the document file: the saved document decodes the same table.
TEST(JcampFile, SavedDocumentReadsTheSameTable) {
    const std::string dir = freshTempDir("jcamp-saved");
    Message failure;
    for (const char* name :
         {"naphtoicAcid-1h.fid.dx", "Rutin_3080ug200uL_DMSOd6_13CNMR_400MHz_JDX.jdx"}) {
        const std::string copy = dir + "/" + name;
        std::filesystem::copy_file(jcampFile(name), copy);
        const auto doc = openFile(copy, failure);
        ASSERT_TRUE(doc);
        saveDocument(*doc, documentPathFor(*doc), false);
        const auto reopened = openFile(copy, failure);
        ASSERT_TRUE(reopened) << failure.text;
        EXPECT_FALSE(reopened->documentPath.empty());
        EXPECT_EQ(reopened->source.blockSize & 7, doc->source.blockSize & 7);
        EXPECT_EQ(reopened->matrix.re, doc->matrix.re);
        EXPECT_EQ(reopened->matrix.im, doc->matrix.im);
    }
}

struct Damage {
    const char* name;
    std::string (*apply)(std::string);
    const char* message;
};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    return at == std::string::npos ? std::string() : text.replace(at, from.size(), to);
}

constexpr const char* kIncoherent = "This JCAMP-DX file seems incoherent";

const Damage kDamages[] = {
    {"cut inside the real page",
     [](std::string t) { return t.substr(0, t.find("(X++(R..R))") + 20000); }, kReadErrorText},
    {"cut inside the imaginary page", [](std::string t) { return t.substr(0, t.size() - 900); },
     kReadErrorText},
    {"ends after the table's label",
     [](std::string t) { return t.substr(0, t.find("(X++(R..R))") + 20); }, kReadErrorText},
    {"unknown character",
     [](std::string t) { return replaced(t, "\n32749a13453", "\n32749a13!53"); }, kReadErrorText},
    {"check value differs",
     [](std::string t) { return replaced(t, "\n32749a13453", "\n32749a13454"); }, kReadErrorText},
    {"points beyond what the file can hold",
     [](std::string t) { return replaced(t, "##VAR_DIM=   32768", "##VAR_DIM=   1000000000"); },
     kReadErrorText},
    {"cut before the table", [](std::string t) { return t.substr(0, t.find("##NTUPLES")); },
     kIncoherent},
    {"no count of points",
     [](std::string t) { return replaced(t, "##VAR_DIM=   32768", "##VAR_DIM=   many"); },
     kIncoherent},
};

TEST(JcampFile, DamagedCopiesAreRefusedWithTheirMessage) {
    const std::string original = readFile(jcampFile("aspirin-1h.dx"));
    ASSERT_FALSE(original.empty());
    const std::string folder = freshTempDir("jcamp-damaged");
    for (const Damage& damage : kDamages) {
        SCOPED_TRACE(damage.name);
        const std::string text = damage.apply(original);
        ASSERT_FALSE(text.empty());
        const std::string path = folder + "/copy.dx";
        std::ofstream(path, std::ios::binary) << text;
        Message failure;
        EXPECT_FALSE(openFile(path, failure));
        EXPECT_EQ(failure, (Message{kReadErrorCaption, damage.message}));
    }
}

// One table of each form: the values decoded, or nothing when the table is refused.
struct FormCase {
    const char* table;
    std::vector<double> values;  // empty: refused
    bool yDataOnly = false;
};

const FormCase kForms[] = {
    {"1 10 20 -30.5\n", {10, 20, -30.5}},        // AFFN
    {"1 1.5E+2,-2.5e-1 ? \n", {150, -0.25, 0}},  // exponents, a missing value
    {"1+10+20-5\n", {10, 20, -5}},               // PAC
    {"1A0J0J0\n4C0J\n", {10, 20, 30, 31}},       // SQZ, DIF, the check value dropped
    {"1A0JT\n", {10, 11, 12}},                   // DUP of a difference
    {"1@V\n", {0, 0, 0, 0}},                     // DUP of a value
    {"b5A1s1\n", {-25, 11}, true},               // Y data only; repeats past the page
    {"1A0J0\n2B1J\n", {}},                       // check value differs
    {"1A0J0w\n", {}},                            // unknown character
    {"1A0J0\n##END=\n", {}},                     // ends early
    {"1J\n", {}},                                // a difference without a value
};

TEST(JcampTable, EachFormDecodes) {
    for (const FormCase& c : kForms) {
        SCOPED_TRACE(c.table);
        const size_t n = c.values.empty() ? 3 : c.values.size();
        std::vector<float> out(n, -1.0f);
        const JcampPage page{out.data(), n, 1, false, 1.0};
        JcampTableOptions options;
        options.yDataOnly = c.yDataOnly;
        const bool ok = decodeJcampTable(c.table, {&page, 1}, options);
        EXPECT_EQ(ok, !c.values.empty());
        if (ok) {
            EXPECT_EQ(std::vector<double>(out.begin(), out.end()), c.values);
        }
    }
}

TEST(JcampTable, PagesFillInTurnReversedAndScaled) {
    std::vector<float> re(3), im(3);
    const JcampPage pages[] = {{re.data(), 3, 1, true, 2.0}, {im.data(), 3, 1, false, 0.5}};
    const char* table = "0A1JJ $$ comment\n##PAGE= N=2\n##DATA TABLE= (X++(I..I)), XYDATA\n0@A@\n";
    ASSERT_TRUE(decodeJcampTable(table, pages, {}));
    EXPECT_EQ(re, (std::vector<float>{26, 24, 22}));
    EXPECT_EQ(im, (std::vector<float>{0, 0.5f, 0}));
}

}  // namespace
}  // namespace zolt

#include "processing/ft_defaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "processing/ft_step.h"
#include "test_data.h"

namespace zolt {
namespace {

using namespace ft_flags;

SpectrumSource twoD(uint8_t fnMode, uint32_t rows = 256, uint8_t aqMod = 3) {
    SpectrumSource s;
    s.dims[2].points = 1000;
    s.dims[1].points = rows;
    setAtom(s.dims[2], "H");
    setAtom(s.dims[1], "C");
    s.ftPreferences[2] = aqMod;
    s.ftPreferences[1] = fnMode;
    s.highestTIndex = 2;
    return s;
}

TEST(FtDefaults, DirectAxisFollowsTheAcquisitionMode) {
    for (uint8_t code :
         {acquisition_mode::kQsim, acquisition_mode::kDqd, acquisition_mode::kNone}) {
        const auto step = defaultFourierTransformStep(twoD(4, 256, code), 2);
        ASSERT_TRUE(step);
        EXPECT_EQ(step->flags & (kQuadrature | kRealFt | kConjugate), kQuadrature) << int(code);
        EXPECT_EQ(step->shuffling, Shuffling::None);
        EXPECT_EQ(step->ftSize, 1024u);  // 1000 complex points, next power of two
        EXPECT_TRUE(step->flags & kApplyWeights);
        EXPECT_FALSE(step->flags & kAnyWeighting);
    }
    for (uint8_t code : {acquisition_mode::kQf, acquisition_mode::kQseq})
        EXPECT_TRUE(defaultFourierTransformStep(twoD(4, 256, code), 2)->flags & kRealFt);
}

TEST(FtDefaults, IndirectModesBecomeShufflingAndFlags) {
    struct Case {
        uint8_t code;
        Shuffling shuffling;
        uint16_t flags;
    };
    const uint16_t mask = kQuadrature | kConjugate | kRealFt | kHypercomplex | kMagnitude;
    const Case cases[] = {
        {indirect_mode::kUndefined, Shuffling::None, kQuadrature | kConjugate | kMagnitude},
        {indirect_mode::kQf, Shuffling::None, kQuadrature | kConjugate | kMagnitude},
        {indirect_mode::kQseq, Shuffling::PhaseSensitive, kRealFt | kConjugate | kHypercomplex},
        {indirect_mode::kTppi, Shuffling::PhaseSensitive, kRealFt | kConjugate | kHypercomplex},
        {indirect_mode::kStates, Shuffling::PhaseSensitive, kQuadrature | kHypercomplex},
        {indirect_mode::kStatesTppi, Shuffling::PhaseSensitive, kHypercomplex},
        {indirect_mode::kEchoAntiEcho, Shuffling::EchoAntiEcho, kQuadrature | kHypercomplex},
        {indirect_mode::kVarianStates, Shuffling::PhaseSensitive, kQuadrature | kHypercomplex},
    };
    for (const auto& c : cases) {
        const auto step = defaultFourierTransformStep(twoD(c.code, 200), 1);
        ASSERT_TRUE(step);
        EXPECT_EQ(step->shuffling, c.shuffling) << int(c.code);
        EXPECT_EQ(step->flags & mask, c.flags) << int(c.code);
        // Zero-filled to twice the recombined points: 200 rows -> 100 pairs -> 256; QF 512.
        EXPECT_EQ(step->ftSize, c.shuffling == Shuffling::None ? 512u : 256u) << int(c.code);
    }
}

TEST(FtDefaults, PseudoAxesGetNoStepAndExistingStepsStay) {
    auto s = twoD(1, 10);
    makePseudoDimension(s.dims[1], 10);
    EXPECT_FALSE(defaultFourierTransformStep(s, 1));
    EXPECT_FALSE(defaultFourierTransformStep(s, 3));

    SpectrumDocument doc;
    doc.source = twoD(6, 128);
    doc.source.dims[1].pointsAfterNus = 512;  // sized for the full grid
    FourierTransformStep mine;
    mine.ftSize = 64;
    doc.processing.steps.push_back(ProcessingStep{2, mine});
    addDefaultFourierTransformSteps(doc);
    addDefaultFourierTransformSteps(doc);
    ASSERT_EQ(doc.processing.steps.size(), 2u);
    EXPECT_EQ(findFourierTransformStep(doc.processing, 2)->ftSize, 64u);
    EXPECT_EQ(findFourierTransformStep(doc.processing, 1)->ftSize, 512u);
}

VendorProcessing vendor(int window, int size, double lb = 0.0, double gb = 0.0, double ssb = 0.0) {
    return VendorProcessing{true, window, lb, gb, ssb, size};
}

TEST(FtDefaults, TheSpectrometersWindowAndSizeAreTakenOver) {
    // The exponential of naphthoic acid and the bells of the COSY and HSQC are taken over when
    // those sets are opened. SSB n starts the bells at pi/n; 1 is a pure sine.
    const auto s = twoD(6, 256);
    const auto sine = vendor(3, 1024, 0.0, 0.0, 1.0);
    auto step = defaultFourierTransformStep(s, 1, &sine);
    EXPECT_EQ(step->flags & kAnyWeighting, kSineBell);
    EXPECT_FLOAT_EQ(step->weights[kWeightSineBell], 0.0f);
    // Sizes outside 32 ... 1 M and windows without a counterpart keep the defaults.
    for (const auto& odd : {vendor(0, 16), vendor(7, 1 << 21), vendor(1, 0, 0.3)}) {
        step = defaultFourierTransformStep(s, 2, &odd);
        EXPECT_EQ(step->ftSize, 1024u);
        EXPECT_EQ(step->flags & kAnyWeighting, odd.window == 1 ? kExponential : 0);
    }
}

TEST(FtDefaults, LorentzToGaussBecomesSharpeningAndAGaussian) {
    // 1000 points over 10 ppm at 100 MHz: AQ = 1 s. LB -1 Hz, maximum at 0.25 s:
    // b = pi / (2 * 0.25) = 2 pi per s^2, gb = 2/pi sqrt(2 pi ln 2) = 1.3286 Hz.
    auto s = twoD(6, 256);
    s.dims[2].spectralWidth = 10.0f;
    s.dims[2].carrier = 100.0f;
    const auto gm = vendor(2, 1024, -1.0, 0.25);
    const auto step = defaultFourierTransformStep(s, 2, &gm);
    EXPECT_EQ(step->flags & kAnyWeighting, kExponential | kGaussian);
    EXPECT_FLOAT_EQ(step->weights[kWeightExponential], -1.0f);
    EXPECT_NEAR(step->weights[kWeightGaussian], 2.0 / M_PI * std::sqrt(2.0 * M_PI * std::log(2.0)),
                1e-4);
    // Without a valid maximum only the broadening is left.
    const auto plain = vendor(2, 1024, -1.0, 0.0);
    EXPECT_EQ(defaultFourierTransformStep(s, 2, &plain)->flags & kAnyWeighting, kExponential);
}

// ---- every experiment of the test data against the spectrometer's own processing ----

// The vendor's peak list (pdata/1/peaklist.xml) where no processed data were kept.
std::vector<testdata::Peak> listedPeaks(const std::string& folder, double share) {
    const std::string xml = testdata::readFile(folder + "/pdata/1/peaklist.xml");
    const std::regex peak(R"re(<Peak1D F1="([-0-9.]+)" intensity="([-0-9.]+)")re");
    std::vector<testdata::Peak> peaks;
    for (std::sregex_iterator i(xml.begin(), xml.end(), peak), end; i != end; ++i)
        peaks.push_back({0, 0, 0.0, std::stod((*i)[1]), std::stod((*i)[2])});
    double top = 0;
    for (const auto& p : peaks) top = std::max(top, p.height);
    std::erase_if(peaks, [&](const testdata::Peak& p) { return p.height < share * top; });
    return peaks;
}

// t1rho-1h is left out: its processed spectrum was not transformed along f1 and its tallest
// points sit at the window's edges, so it names no peak to look for.
struct Expectation {
    const char* name;
    double f2Tolerance;  // ppm
    double f1Tolerance;  // ppm; 0 for 1-D and arrayed series
};

class EveryBrukerSet : public testing::TestWithParam<Expectation> {};

TEST_P(EveryBrukerSet, PeaksLandWhereTheSpectrometerPutThem) {
    const auto& e = GetParam();
    const auto doc = testdata::openTransformed(e.name);
    ASSERT_TRUE(doc) << e.name;
    const auto vendor = testdata::vendorSpectrum(e.name);
    const auto expected = vendor ? testdata::strongestPeaks(*vendor, 8, false)
                                 : listedPeaks(testdata::bruker(e.name), 0.3);
    ASSERT_FALSE(expected.empty()) << e.name;
    const auto ours = testdata::strongestPeaks(doc->matrix, 400, true);
    for (const auto& want : expected) {
        const bool found = std::any_of(ours.begin(), ours.end(), [&](const testdata::Peak& p) {
            return std::abs(p.xPpm - want.xPpm) <= e.f2Tolerance &&
                   (e.f1Tolerance == 0.0 || std::abs(p.yPpm - want.yPpm) <= e.f1Tolerance);
        });
        EXPECT_TRUE(found) << e.name << ": vendor peak at " << want.yPpm << " / " << want.xPpm;
    }
}

INSTANTIATE_TEST_SUITE_P(
    TestData, EveryBrukerSet,
    testing::Values(Expectation{"aspirin-1h", 0.01, 0}, Expectation{"naphtoicAcid-1h", 0.01, 0},
                    Expectation{"strychnine-1h", 0.01, 0}, Expectation{"cyclosporin-1h", 0.01, 0},
                    Expectation{"cyclosporin-cosy", 0.03, 0.12},
                    Expectation{"cyclosporin-hsqc", 0.03, 1.4},
                    Expectation{"cyclosporin-hmbc", 0.03, 3.5},
                    Expectation{"inversion-recovery", 0.01, 0.5},
                    Expectation{"cosy-nus", 0.03, 0.12}, Expectation{"hsqc-nus", 0.03, 1.4}),
    [](const auto& info) {
        std::string n = info.param.name;
        std::replace(n.begin(), n.end(), '-', '_');
        return n;
    });

}  // namespace
}  // namespace zolt

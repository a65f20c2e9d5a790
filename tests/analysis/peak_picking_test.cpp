#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "analysis/peak_actions.h"
#include "analysis/peak_picking_1d.h"
#include "analysis/peak_top.h"

namespace zolt {
namespace {

// A Gaussian line: its logarithm is a parabola, which the three-point fit recovers exactly.
void addGaussian(std::vector<float>& y, double centre, double height, double sigma) {
    for (size_t i = 0; i < y.size(); ++i)
        y[i] += static_cast<float>(height * std::exp(-0.5 * std::pow((i - centre) / sigma, 2)));
}

DimensionRecord axis(uint32_t n, float width, float lowest, float mhz) {
    DimensionRecord d;
    d.points = n, d.spectralWidth = width, d.lowestPpm = lowest, d.carrier = mhz;
    return d;
}

TEST(RefineTop, GaussianTopsAreExactAndFlatTopsStayOnTheFirstPoint) {
    std::vector<float> y(64, 0.0f);
    addGaussian(y, 20.3, 1000.0, 2.0);
    addGaussian(y, 45.0, -500.0, 1.5);
    const PeakTop pos = refineTop(y.data(), y.size(), 17, true);
    EXPECT_NEAR(pos.position, 20.3, 1e-3);
    EXPECT_NEAR(pos.height, 1000.0, 0.05);
    // The left crossing's fraction is added, not subtracted: off the point grid the width comes
    // out at 3 + 0.945 points on the left and 2.66 on the right, not the true 4.71.
    EXPECT_NEAR(pos.width, 6.605, 0.005);
    const PeakTop neg = refineTop(y.data(), y.size(), 47, true);
    EXPECT_NEAR(neg.position, 45.0, 1e-3);
    EXPECT_NEAR(neg.height, -500.0, 0.05);
    // Two equal highest points: the climb stops at the first, and the fit leans no way.
    std::vector<float> flat{0, 1, 2, 5, 5, 2, 1, 0};
    EXPECT_DOUBLE_EQ(refineTop(flat.data(), flat.size(), 1, false).position, 3.5);
    EXPECT_DOUBLE_EQ(refineTop(flat.data(), flat.size(), 6, false).position, 3.5);
    // A top on an end of the trace has no position.
    std::vector<float> edge{9, 5, 2, 1};
    EXPECT_EQ(refineTop(edge.data(), edge.size(), 2, false).position, 0.0);
}

TEST(PickRegion1D, KeepsTopsInsideTheLimitsAwayFromTheEdges) {
    const DimensionRecord d = axis(100, 10.0f, 0.0f, 400.0f);
    std::vector<float> y(100, 0.0f);
    y[2] = 50;    // within 3 points of the start
    y[20] = 100;  // at the upper limit exactly
    y[40] = 99;   // accepted
    y[60] = -80;  // negative
    y[98] = 70;   // within 3 points of the end
    PpmRegion whole{10.0, 0.0};
    RegionPeaks r = pickRegion1D(y.data(), d, whole, 10.0, 100.0, 0.0);
    ASSERT_EQ(r.ppm.size(), 1u);
    EXPECT_FLOAT_EQ(r.ppm[0], 6.0f);  // (1 - 40/100) * 10, no half-point shift
    EXPECT_EQ(r.highest, r.ppm[0]);
    // Once the lower limit allows negative values the negative line counts, and is highest
    // when it is the larger; the region widens to the refined tops.
    y[40] = 60;
    PpmRegion narrow{6.05, 3.85};
    r = pickRegion1D(y.data(), d, narrow, 10.0, 100.0, -90.0);
    EXPECT_EQ(r.ppm, (std::vector<float>{4.0f, 6.0f}));
    EXPECT_EQ(r.highest, 4.0f);
    // More than 200 peaks: nothing at all, and the count reached.
    std::vector<float> comb(1000, 0.0f);
    for (size_t i = 10; i < 990; i += 4) comb[i] = 1.0f;
    PpmRegion all{10.0, 0.0};
    r = pickRegion1D(comb.data(), axis(1000, 10.0f, 0.0f, 400.0f), all, 0.5, 2.0, 0.0);
    EXPECT_TRUE(r.ppm.empty());
    EXPECT_EQ(r.overflow, 201u);
}

TEST(Pick1D, MergesRegionsIntoTheAscendingListAtThePlotsThreshold) {
    const DimensionRecord d = axis(100, 10.0f, 0.0f, 400.0f);
    std::vector<float> y(100, 0.0f);
    y[30] = 50, y[50] = 20, y[70] = 3;
    DisplayParameters plot;
    plot.box = {0, 0, 100, 106};  // 100 intensity units at 1 per pixel
    plot.threshold = 1.0f;
    plot.horizontal.ppm = {9.0f, 5.5f, 4.5f, -3.0f};  // the second fragment runs off the axis
    std::vector<float> list{1.0f, 5.0f, 8.0f};        // 5.0 lies between the fragments
    const Pick1DResult r = pick1D(y.data(), d, plot, 0.0, 4, false, list);
    EXPECT_EQ(r.found, 1u);  // 3 lies below 4 display points
    EXPECT_EQ(list, (std::vector<float>{5.0f, 7.0f}));
    EXPECT_DOUBLE_EQ(pickingThreshold(-25.0, plot, 2), 25.0);
    EXPECT_DOUBLE_EQ(pickingThreshold(NAN, plot, 6), 6.0);
}

// A 2-D plane: 64 rows along f1 (vertical) of 128 points along f2 (horizontal), f2 contiguous.
SpectrumMatrix plane() {
    SpectrumMatrix m;
    m.dims[1] = axis(64, 64.0f, 0.0f, 100.0f);  // 100 Hz per point
    m.dims[2] = axis(128, 4.0f, 0.0f, 80.0f);   // 2.5 Hz per point
    m.contiguous = 2;
    m.re.assign(64 * 128, 0.0f);
    return m;
}

TEST(Pick2D, MultipletsCloserThanTheMergeDistanceCollapseToTheHigherLine) {
    SpectrumMatrix m = plane();
    m.re[10 * 128 + 40] = 80, m.re[10 * 128 + 42] = 90;  // 5 Hz apart
    m.re[30 * 128 + 100] = 500;                          // exactly at the upper limit
    m.re[50 * 128 + 20] = -70;                           // negative
    PeakPickingOptions o = loadPeakOptions(nullptr, 50.0f);
    o.upper = 500.0f;
    PickedPeaks r = pickPeaks(m, PeakAxes{2, 1, 0}, kWholeSpectrum, o);
    ASSERT_EQ(r.peaks.size(), 1u);
    EXPECT_FLOAT_EQ(r.peaks[0][0], float(ppmOfPoint(m.dims[2], 42)));
    EXPECT_FLOAT_EQ(r.peaks[0][1], float(ppmOfPoint(m.dims[1], 10)));
    EXPECT_EQ(o.window, 4);  // 10 Hz over 2.5 Hz points, along the last pass
    o.negative = true;
    EXPECT_EQ(pickPeaks(m, PeakAxes{2, 1, 0}, kWholeSpectrum, o).peaks.size(), 2u);
    // With a merge distance below one point the lines stay apart.
    o.deltaX = 1.0f;
    EXPECT_EQ(pickPeaks(m, PeakAxes{2, 1, 0}, kWholeSpectrum, o).peaks.size(), 3u);
}

TEST(PeakActions, ScanClearSelectAndTheLimitOf200) {
    SpectrumMatrix m = plane();
    for (size_t r = 2; r < 62; r += 3)
        for (size_t c = 4; c < 124; c += 10) m.re[r * 128 + c] = 100;  // 20 x 12 = 240
    PeakLists lists;
    lists.twoD = {{1.0f, 1.0f}};
    PeakPickingOptions o = loadPeakOptions(nullptr, 10.0f);
    o.deltaX = o.deltaY = 1.0f;
    o.action = uint8_t(PeakAction::ScanSpectrum);
    const PeakAxes axes{2, 1, 0};
    PeakActionResult r = runPeakAction(lists, m, axes, std::nullopt, o);
    EXPECT_TRUE(r.changed && r.tooMany);
    EXPECT_TRUE(lists.twoD.empty());
    // A selection of the lower-ppm half of the rows: 10 x 12 peaks.
    const PpmBox lower{{10.0, -1.0}, {31.9, 0.0}, {}};
    o.action = uint8_t(PeakAction::ScanSelection);
    r = runPeakAction(lists, m, axes, lower, o);
    EXPECT_FALSE(r.tooMany);
    EXPECT_EQ(lists.twoD.size(), 120u);
    o.action = uint8_t(PeakAction::AddHighest);
    runPeakAction(lists, m, axes, PpmBox{{4.0, 0.0}, {64.0, 60.0}, {}}, o);
    EXPECT_EQ(lists.twoD.back(), (std::array<float, 2>{float(ppmOfPoint(m.dims[2], 4)),
                                                       float(ppmOfPoint(m.dims[1], 2))}));
    EXPECT_EQ(peaksOnRow(lists.twoD, m.dims[1], ppmOfPoint(m.dims[1], 35) + 0.4).size(), 12u);
    o.action = uint8_t(PeakAction::ClearSelection);
    runPeakAction(lists, m, axes, lower, o);
    EXPECT_EQ(lists.twoD.size(), 1u);
    o.action = uint8_t(PeakAction::ClearSelection);
    EXPECT_FALSE(runPeakAction(lists, m, axes, std::nullopt, o).changed);
}

class MapStore : public PeakOptionStore {
public:
    std::optional<std::string> bytes(std::string_view name) const override {
        auto it = values.find(std::string(name));
        return it == values.end() ? std::nullopt : std::optional(it->second);
    }
    void setBytes(std::string_view name, std::string_view value) override {
        values[std::string(name)] = value;
    }
    std::map<std::string, std::string> values;
};

TEST(PeakOptions, SavedRatioAndMergeDistancesComeBackScaledByTheThreshold) {
    MapStore store;
    PeakPickingOptions o = loadPeakOptions(&store, 3.0f);
    EXPECT_EQ(o.upper, 300.0f);
    EXPECT_EQ(o.deltaX, 10.0f);
    EXPECT_TRUE(o.loaded && !o.negative);
    o.threshold = 0.5f;  // raised to 1; the ratio 600 stays
    o.negative = true;
    o.deltaX = 2.5f;
    savePeakOptions(o, store);
    EXPECT_EQ(o.threshold, 1.0f);
    EXPECT_EQ(o.upper, 600.0f);
    // -600.0f and the two floats 2.5, 10.0, little-endian.
    EXPECT_EQ(store.values["range"], std::string("\x00\x00\x16\xc4", 4));
    EXPECT_EQ(store.values["deltaXY"], std::string("\x00\x00\x20\x40\x00\x00\x20\x41", 8));
    o = loadPeakOptions(&store, 2.0f);
    EXPECT_TRUE(o.negative);
    EXPECT_EQ(o.upper, 1200.0f);
    EXPECT_EQ(o.deltaX, 2.5f);
    // The ratio is clamped to 2 ... 2000; damaged values keep their defaults.
    o.upper = 1e9f;
    savePeakOptions(o, store);
    EXPECT_EQ(o.upper, 4000.0f);
    store.values["range"] = std::string("\x00\x00\xc0\x7f", 4);  // NaN
    store.values["deltaXY"] = "short";
    o = loadPeakOptions(&store, 1.0f);
    EXPECT_EQ(o.upper, 100.0f);
    EXPECT_EQ(o.deltaY, 10.0f);
}

}  // namespace
}  // namespace zolt

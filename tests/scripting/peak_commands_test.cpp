// ups() and peak() on real spectra, checked against the spectrometer's own peak lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

#include "app/application.h"
#include "app/recording_platform.h"
#include "document/analysis_section.h"
#include "document/document_file.h"
#include "operations/peak_operations.h"
#include "scripting/startup_script.h"
#include "test_data.h"

namespace zolt {
namespace {

struct ReferencePeak {
    double ppm, intensity;
};

// The Peak1D entries of a processed set's pdata/1/peaklist.xml.
std::vector<ReferencePeak> spectrometerPeaks(const std::string& experiment) {
    const std::string xml = testdata::readFile(experiment + "/pdata/1/peaklist.xml");
    static const std::regex entry(
        R"re(<Peak1D F1="([-+0-9.eE]+)"[^>]*intensity="([-+0-9.eE]+)")re");
    std::vector<ReferencePeak> peaks;
    for (std::sregex_iterator it(xml.begin(), xml.end(), entry), end; it != end; ++it)
        peaks.push_back({std::stod((*it)[1]), std::stod((*it)[2])});
    return peaks;
}

class PeakCommands : public ::testing::Test {
protected:
    PeakCommands() : app(platform) {}
    SpectrumDocument& open(const std::string& name) {
        EXPECT_EQ(app.open(testdata::bruker(name)), 1);
        return *app.frontDocument();
    }
    bool run(const std::string& chunk) { return app.scriptHost().executeInput(chunk); }
    double nearest(const std::vector<float>& list, double ppm) {
        double best = INFINITY;
        for (float p : list) best = std::min(best, std::fabs(p - ppm));
        return best;
    }
    testing::RecordingPlatform platform;
    Application app;
};

// The spectrometer's lists are referenced as its operator left them, ours on the solvent line by
// the start-up script: both are put on one scale by the offset between their tallest peaks (the
// data's own height decides which of ours is tallest).
TEST_F(PeakCommands, StartupScriptFindsEverySpectrometerPeakAboveFivePercent) {
    for (const char* name : {"aspirin-1h", "naphtoicAcid-1h", "strychnine-1h"}) {
        SCOPED_TRACE(name);
        SpectrumDocument& d = open(name);
        const auto reference = spectrometerPeaks(testdata::bruker(name));
        ASSERT_FALSE(reference.empty());
        ASSERT_TRUE(run(std::string(defaultStartupScript())));
        const std::vector<float>& list = d.peaks.oneD;
        ASSERT_FALSE(list.empty());
        ASSERT_TRUE(std::is_sorted(list.begin(), list.end()));
        const auto tallestRef = std::max_element(
            reference.begin(), reference.end(),
            [](const auto& a, const auto& b) { return a.intensity < b.intensity; });
        const DimensionRecord& axis = d.matrix.dims[1];
        const auto height = [&](float ppm) { return d.matrix.re[pointOfPpm(axis, ppm)]; };
        const float tallest = *std::max_element(
            list.begin(), list.end(), [&](float a, float b) { return height(a) < height(b); });
        const double offset = tallestRef->ppm - tallest;
        EXPECT_LT(std::fabs(offset), 0.1);
        size_t checked = 0;
        for (const auto& p : reference) {
            if (p.intensity < 0.05 * tallestRef->intensity) continue;
            ++checked;
            EXPECT_LT(nearest(list, p.ppm - offset), 0.003) << p.ppm;
        }
        EXPECT_GT(checked, 5u);
        EXPECT_EQ(run("n = peak() a = peak(1) b, c = peak(n) e = peak(n + 1) f = peak(0)"), true);
        EXPECT_EQ(run("assert(n == " + std::to_string(list.size()) + " and e == nil and f == nil)"),
                  true);
        EXPECT_TRUE(run("assert(a < 0.001 + " + std::to_string(list.front()) + " and c == nil)"));
    }
}

// Cross peaks of the HSQC lie on lines of the proton spectrum.
TEST_F(PeakCommands, HsqcCrossPeaksSitOnProtonLines) {
    SpectrumDocument& hsqc = open("cyclosporin-hsqc");
    ASSERT_TRUE(run("wft() wft() aph() abc() ups()"));
    SpectrumDocument& proton = open("cyclosporin-1h");
    ASSERT_TRUE(run(std::string(defaultStartupScript())));
    ASSERT_GT(hsqc.peaks.twoD.size(), 10u);
    for (const auto& p : hsqc.peaks.twoD) EXPECT_LT(nearest(proton.peaks.oneD, p[0]), 0.02) << p[0];
    app.bringToFront(hsqc);
    ASSERT_TRUE(run("n = peak() x, y = peak(1)"));
    ASSERT_TRUE(run("assert(n == " + std::to_string(hsqc.peaks.twoD.size()) + " and math.abs(y - " +
                    std::to_string(hsqc.peaks.twoD[0][1]) + ") < 1e-3)"));

    // The list goes into the document file and comes back from it.
    plist::Ref tree(buildDocumentTree(hsqc));
    plist::Ref again(plist::read(plist::write(tree.get())));
    const PeakLists back = peaksFromTree(plist::lookUp(again.get(), "peaks"));
    EXPECT_EQ(back.twoD, hsqc.peaks.twoD);

    // A lowest contour level far below the noise finds too many: the message, and no peaks.
    DisplayParameters plot = hsqc.page.plots.front();
    plot.threshold /= 1e4f;
    hsqc.page.plots = {plot};
    ASSERT_TRUE(run("ups()"));
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, "Too Many Peaks !");
    EXPECT_EQ(platform.boxes[0].text, "Please reduce the threshold or narrow the region");
    EXPECT_TRUE(hsqc.peaks.twoD.empty());
}

}  // namespace
}  // namespace zolt

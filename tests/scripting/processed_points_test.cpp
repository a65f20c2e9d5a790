// Every stored point of every Bruker set after the start-up workflow, pinned as a fingerprint
// of the float bits: a change made for structure or speed must leave them bit-identical.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <string>

#include "app/application.h"
#include "app/recording_platform.h"
#include "test_data.h"

namespace zolt {
namespace {

// FNV-1a over the bytes of the sizes, the real parts and the imaginary parts.
uint64_t fingerprint(const SpectrumMatrix& m) {
    uint64_t h = 1469598103934665603ull;
    auto mix = [&h](const void* data, size_t bytes) {
        const auto* p = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < bytes; ++i) h = (h ^ p[i]) * 1099511628211ull;
    };
    for (const DimensionRecord& r : m.dims) mix(&r.points, sizeof r.points);
    mix(m.re.data(), m.re.size() * sizeof(float));
    mix(m.im.data(), m.im.size() * sizeof(float));
    return h;
}

std::string hex(uint64_t v) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(v));
    return text;
}

TEST(ProcessedPoints, StartUpWorkflowGivesThePinnedPointsOnEveryBrukerSet) {
    // Recorded before the restructuring of the document operations, reader table and FFT; the
    // two arrayed series since the automatic baseplane corrects their rows and leaves their
    // few-row axis.
    const std::map<std::string, std::string> expected = {
        {"aspirin-1h", "56e5b4cb1e6863f2"},         {"aspirin-1h-processed", "d7e092dc58a0d52c"},
        {"cosy-nus", "709a13e7d93c1bf3"},           {"cyclosporin-1h", "d3d4e6278357e584"},
        {"cyclosporin-cosy", "fb8a753e02c5888b"},   {"cyclosporin-hmbc", "a3a8ee7718c585f5"},
        {"cyclosporin-hsqc", "e85a9645580e1a27"},   {"hsqc-nus", "b4d2a5a9b3b3b784"},
        {"inversion-recovery", "42b534681b181ea1"}, {"naphtoicAcid-1h", "98954e7676aee7c7"},
        {"strychnine-1h", "b0bbee01bdab67fc"},      {"t1rho-1h", "8ce05af3c79063ae"},
    };
    for (const auto& [name, pinned] : expected) {
        testing::RecordingPlatform platform;
        Application app(platform);
        ASSERT_EQ(app.open(testdata::bruker(name)), 1) << name;
        SpectrumDocument& d = *app.frontDocument();
        const bool oneD = countDimensions(d.source) <= 1;
        ASSERT_TRUE(app.scriptHost().executeInput(oneD ? "wft() aph() poly(7, 64)"
                                                       : "wft() wft() aph() abc()"))
            << name;
        EXPECT_EQ(hex(fingerprint(d.matrix)), pinned) << name;
    }
}

TEST(ProcessedPoints, MagnitudeTransformOfTheHmbcGivesThePinnedPoints) {
    // The HMBC is transformed to magnitude; the points are pinned before the automatic phase
    // turns them back, so that the polar conversion itself is held to its float bits.
    testing::RecordingPlatform platform;
    Application app(platform);
    ASSERT_EQ(app.open(testdata::bruker("cyclosporin-hmbc")), 1);
    SpectrumDocument& d = *app.frontDocument();
    ASSERT_TRUE(app.scriptHost().executeInput("wft() wft()"));
    EXPECT_TRUE(d.matrix.state & matrix_state::kMagnitude);
    EXPECT_EQ(hex(fingerprint(d.matrix)), "9942bade8aed1875");
}

}  // namespace
}  // namespace zolt

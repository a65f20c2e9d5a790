#include "app/peak_option_settings.h"

#include <gtest/gtest.h>

#include "app/application.h"
#include "app/recording_platform.h"

namespace zolt {
namespace {

// The options live in their own group of the settings; the application hands ups() the stored
// ratio, and the picking minimum of its preferences.
TEST(PeakOptionSettings, StoredInTheirGroupAndReadByTheApplication) {
    MemorySettingsStore settings;
    SettingsPeakOptionStore store(settings);
    PeakPickingOptions o = loadPeakOptions(&store, 10.0f);
    o.upper = 250.0f;
    o.deltaY = 4.0f;
    savePeakOptions(o, store);
    EXPECT_EQ(settings.values().size(), 2u);
    EXPECT_EQ(settings.bytes("Peak-Picking 2D Options/range")->size(), 4u);
    EXPECT_EQ(settings.bytes("Peak-Picking 2D Options/deltaXY")->size(), 8u);

    testing::RecordingPlatform platform;
    Preferences prefs;
    Application app(platform, prefs);
    EXPECT_EQ(app.peakPickingOptions().upper, 100.0f);  // no store: the default ratio
    EXPECT_EQ(app.peakPickingMinimum(), 15);  // the default option byte
    app.setSettingsStore(&settings);
    app.preferences().optionBytes[kPickingMinimumByte] = 2;
    const PeakPickingOptions loaded = app.peakPickingOptions();
    EXPECT_EQ(loaded.upper, 25.0f);
    EXPECT_EQ(loaded.deltaY, 4.0f);
    EXPECT_EQ(app.peakPickingMinimum(), 4);  // never below 4
}

}  // namespace
}  // namespace zolt

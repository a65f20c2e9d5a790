#include "app/settings_form.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/timed_preferences.h"
#include "recording_platform.h"
#include "scripting/startup_script.h"
#include "test_data.h"

namespace zolt {
namespace {

TEST(SettingsForm, FieldConversionsTruncateAndClampToAByte) {
    struct Case {
        double value;
        FieldScale scale;
        int byte;
    };
    for (const Case& c : {Case{4, FieldScale::Reciprocal64, 15},
                          {16, FieldScale::Reciprocal64, 3},
                          {3, FieldScale::Reciprocal64, 20},
                          {0.1, FieldScale::Reciprocal64, 255},
                          {0, FieldScale::Reciprocal64, 255},
                          {-2, FieldScale::Reciprocal64, 0},
                          {0.5, FieldScale::Times32, 15},
                          {0.03, FieldScale::Times32, 0},
                          {100, FieldScale::Times32, 255},
                          {15.9, FieldScale::Byte, 15},
                          {300, FieldScale::Byte, 255},
                          {-1, FieldScale::Byte, 0}})
        EXPECT_EQ(optionByteFromValue(c.value, c.scale), c.byte) << c.value;
    // What a byte is shown as converts back to that byte, for every byte.
    for (FieldScale s : {FieldScale::Byte, FieldScale::Reciprocal64, FieldScale::Times32})
        for (int b = 0; b < 256; ++b)
            EXPECT_EQ(optionByteFromValue(valueFromOptionByte(uint8_t(b), s), s), b);
}

TEST(SettingsForm, TypedNumbersReadTheirLeadingNumber) {
    EXPECT_EQ(parseNumberField(" 600.13 MHz"), 600.13);
    EXPECT_EQ(parseNumberField("+2e1"), 20.0);
    for (const char* bad : {"", "MHz", "nan", "inf", "1e999", "-"})
        EXPECT_FALSE(parseNumberField(bad)) << bad;
}

TEST(SettingsForm, UnchangedFieldsKeepTheirValuesAndTypedOnesAreConverted) {
    Preferences base;
    base.spectrometerMhz = 400.13f;
    base.consoleShortcuts = "old";
    SettingsForm form = formFromPreferences(base);
    EXPECT_EQ(form.spectrometerMhz, "400.13");
    EXPECT_EQ(form.optionBytes[0], "15");
    const Preferences same = preferencesFromForm(base, form);
    EXPECT_EQ(same.spectrometerMhz, base.spectrometerMhz);
    EXPECT_EQ(same.optionBytes, base.optionBytes);

    form.flags = pref_flags::kShowPlan;  // the run-time switches stay as they are
    form.spectrometerMhz = "600";
    form.zeroFilling = "-2";  // not positive: kept
    form.optionBytes[0] = "30";
    form.fontFace = "";  // the font face is never left empty
    form.fontForNotes = "Courier";
    form.scriptsFolder = "";
    form.consoleShortcuts = "  a   b  ";
    const Preferences p = preferencesFromForm(base, form);
    EXPECT_EQ(p.flags, pref_flags::kShowPlan | pref_flags::kCallOpenBabel);
    EXPECT_EQ(p.spectrometerMhz, 600.0f);
    EXPECT_EQ(p.zeroFilling, 1.5f);
    EXPECT_EQ(p.optionBytes[optionByteFields()[0].index], 30);
    EXPECT_EQ(p.fontFace, "Verdana");
    EXPECT_EQ(p.fontForNotes, "Courier");
    EXPECT_FALSE(p.scriptsFolder);
    EXPECT_EQ(p.consoleShortcuts, "a b");
    form.consoleShortcuts = "   ";
    EXPECT_FALSE(preferencesFromForm(base, form).consoleShortcuts);
}

TEST(SettingsForm, TheStartupScriptButtonWritesOpensAndSwitchesProcessingOn) {
    testing::RecordingPlatform platform;
    Preferences p;
    p.flags &= ~pref_flags::kAutomaticProcessing;
    p.scriptsFolder = testdata::freshTempDir("edit-startup") + "/new/scripts";
    ASSERT_TRUE(editStartupScript(p, platform));
    const std::string script = *p.scriptsFolder + "/autoexec.lua";
    EXPECT_EQ(platform.opened, std::vector<std::string>{script});
    EXPECT_TRUE(p.has(pref_flags::kAutomaticProcessing));
    EXPECT_EQ(testdata::readFile(script), defaultStartupScript());

    p.scriptsFolder = "/proc/no-scripts-here";  // cannot be created
    EXPECT_FALSE(editStartupScript(p, platform));
    EXPECT_FALSE(p.has(pref_flags::kAutomaticProcessing));
    EXPECT_EQ(platform.opened.size(), 1u);
}

TEST(TimedPreferences, SwitchesComeBackAsTheyWereBeforeTheFirstChange) {
    Preferences p;
    const uint32_t before = p.flags;
    TimedPreferences timed;
    changeForAWhile(p, timed, pref_flags::kAutomaticProcessing | pref_flags::kShowPlan,
                    pref_flags::kShowPlan);
    changeForAWhile(p, timed, pref_flags::kShowPlan | pref_flags::kAutoSaving, 0);
    EXPECT_EQ(p.flags, before & ~(pref_flags::kAutomaticProcessing | pref_flags::kAutoSaving));
    EXPECT_EQ(lastingPreferences(p, timed).flags, before);
    p.flags |= pref_flags::kPrintDate;  // set meanwhile, not by the timer: stays
    restoreTimedPreferences(p, timed);
    EXPECT_EQ(p.flags, before | pref_flags::kPrintDate);
    EXPECT_FALSE(timed.active());
}

}  // namespace
}  // namespace zolt

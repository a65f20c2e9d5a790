#include "app/preferences.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace zolt {
namespace {

std::string le32(uint32_t v) {
    std::string s;
    for (int i = 0; i < 4; ++i) s.push_back(static_cast<char>(v >> (8 * i)));
    return s;
}

TEST(Preferences, FreshStoreGivesTheStatedDefaults) {
    MemorySettingsStore store;
    const Preferences p = loadPreferences(store);
    // AutoSaving, Automatic Processing, ArrowsCanZoom, RetinaDisplay, and Call Open Babel.
    EXPECT_EQ(p.flags, 0x9a0080u | 0x800000u);
    const std::array<uint8_t, 17> bytes = {3, 3,  5, 3,  1, 15, 15, 7, 15,
                                           3, 40, 2, 15, 8, 0,  10, 10};
    EXPECT_EQ(p.optionBytes, bytes);
    EXPECT_EQ(p.reportOptions, uint32_t{'M'} << 16);
    EXPECT_FLOAT_EQ(p.spectrometerMhz, 400.0f);
    EXPECT_FLOAT_EQ(p.zeroFilling, 1.5f);
    EXPECT_EQ(p.fontFace, "Verdana");
    EXPECT_FALSE(p.fontForNotes || p.scriptsFolder || p.consoleShortcuts);
    EXPECT_EQ(p.colours[1], 0xbaba5000u);
    EXPECT_EQ(p.colours[3], 0x2000dd00u);
    EXPECT_EQ(p.colours[5], 0xe0004000u);
    EXPECT_EQ(p.colours[6], 0xffffffffu);
    EXPECT_EQ(p.colours[7], 0x0000ffffu);
}

TEST(Preferences, AutomaticProcessingIsDecidedByTheStartupScriptCheck) {
    MemorySettingsStore store;
    int calls = 0;
    const Preferences p = loadPreferences(store, [&](Preferences& prefs) {
        ++calls;
        return prefs.flags & ~pref_flags::kAutomaticProcessing;
    });
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(p.has(pref_flags::kAutomaticProcessing));
}

TEST(Preferences, LegacyPackedFlagsSurviveAndAreStoredOneByOneAfterSaving) {
    MemorySettingsStore store;
    const uint32_t old =
        pref_flags::kShowPlan | pref_flags::kPrintDate | pref_flags::kCommaSeparatedValues;
    store.setBytes("2012 flags", le32(old));
    Preferences p = loadPreferences(store);
    EXPECT_EQ(p.flags, old | pref_flags::kCallOpenBabel);

    savePreferences(p, store);
    EXPECT_FALSE(store.contains("2012 flags"));
    EXPECT_EQ(*store.bytes("ShowPlan"), std::string(1, '\1'));
    EXPECT_EQ(*store.bytes("PrintDate"), std::string(1, '\1'));
    EXPECT_EQ(*store.bytes("CommaSeparatedValues"), std::string(1, '\1'));
    EXPECT_EQ(*store.bytes("AutoSaving"), std::string(1, '\0'));
    EXPECT_EQ(*store.bytes("Drawer SinceTheStart"), std::string(1, '\0'));
    // Run-time toggles are never stored.
    for (const auto& [name, value] : store.values()) EXPECT_NE(name, "Call Open Babel");

    const Preferences again = loadPreferences(store);
    EXPECT_EQ(again.flags, old | pref_flags::kCallOpenBabel);
}

TEST(Preferences, FlagValuesMustBeExactlyOneNonZeroByte) {
    MemorySettingsStore store;
    store.setBytes("ShowPlan", std::string(1, '\2'));
    store.setBytes("PrintFrame", std::string(2, '\1'));  // too long: stays clear
    store.setBytes("AutoSaving", std::string(1, '\0'));
    store.setBytes("2012 flags", le32(0xffff));  // ignored once any flag is set
    const Preferences p = loadPreferences(store);
    EXPECT_EQ(p.flags, pref_flags::kShowPlan | pref_flags::kCallOpenBabel);
}

TEST(Preferences, StoredSwitchesReplaceTheDefaultSwitchesOnceAnythingIsStored) {
    // A store that holds other values only: every switch reads as off, defaults included.
    MemorySettingsStore others;
    others.setBytes("MHz", le32(0x44160000));  // 600.0f
    const Preferences p = loadPreferences(others);
    EXPECT_EQ(p.flags, pref_flags::kCallOpenBabel);
    EXPECT_FLOAT_EQ(p.spectrometerMhz, 600.0f);

    // One switch on: the default switches are not merged in.
    MemorySettingsStore one;
    one.setBytes("DoBackUp", std::string(1, '\1'));
    EXPECT_EQ(loadPreferences(one).flags, pref_flags::kDoBackUp | pref_flags::kCallOpenBabel);
}

TEST(Preferences, LegacyPackedFlagsStandInOnlyWhenNoSwitchIsOn) {
    const uint32_t old = pref_flags::kShowPlan | pref_flags::kReadProcessedData;
    // Every switch stored off: the packed word is used.
    MemorySettingsStore allOff;
    for (const auto& f : preferenceFlagNames()) allOff.setBytes(f.name, std::string(1, '\0'));
    allOff.setBytes("2012 flags", le32(old));
    EXPECT_EQ(loadPreferences(allOff).flags, old | pref_flags::kCallOpenBabel);

    // A packed word of the wrong length cannot be read: no switch is on, and none comes back.
    MemorySettingsStore damaged;
    damaged.setBytes("2012 flags", le32(old).substr(0, 3));
    EXPECT_EQ(loadPreferences(damaged).flags, pref_flags::kCallOpenBabel);
}

TEST(Preferences, SavedValuesLoadBackAndUnsetStringsAreRemoved) {
    MemorySettingsStore store;
    store.setText("font for notes", "Courier");
    Preferences p;
    p.flags = pref_flags::kShowPlan;  // every other switch stored off stays off
    p.spectrometerMhz = 600.13f;
    p.zeroFilling = 2.0f;
    p.optionBytes[10] = 0x30;
    p.colours[8] = 0x12345678;
    p.scriptsFolder = "/data/scripts";
    p.consoleShortcuts = "reprocess peaks";
    savePreferences(p, store);
    EXPECT_FALSE(store.contains("font for notes"));
    EXPECT_EQ(store.bytes("MHz")->size(), 4u);
    EXPECT_EQ(store.bytes("colors")->size(), 36u);
    EXPECT_EQ(store.bytes("2012 bytes")->size(), 17u);

    const Preferences q = loadPreferences(store);
    EXPECT_EQ(q.flags, pref_flags::kShowPlan | pref_flags::kCallOpenBabel);
    EXPECT_FLOAT_EQ(q.spectrometerMhz, 600.13f);
    EXPECT_FLOAT_EQ(q.zeroFilling, 2.0f);
    EXPECT_EQ(q.optionBytes[10], 0x30);
    EXPECT_EQ(q.colours[8], 0x12345678u);
    EXPECT_EQ(q.scriptsFolder, "/data/scripts");
    EXPECT_EQ(q.consoleShortcuts, "reprocess peaks");
    EXPECT_FALSE(q.fontForNotes);
}

TEST(Preferences, DamagedValuesKeepTheirDefaults) {
    MemorySettingsStore store;
    store.setBytes("MHz", "abc");
    store.setBytes("colors", std::string(35, '\xff'));
    store.setBytes("2012 bytes", std::string(18, '\1'));
    store.setText("font face", "");
    store.setInteger("zero-filling", 3);  // not binary
    const Preferences p = loadPreferences(store);
    const Preferences defaults;
    EXPECT_FLOAT_EQ(p.spectrometerMhz, 400.0f);
    EXPECT_EQ(p.colours, defaults.colours);
    EXPECT_EQ(p.optionBytes, defaults.optionBytes);
    EXPECT_EQ(p.fontFace, "Verdana");
    EXPECT_FLOAT_EQ(p.zeroFilling, 1.5f);
}

TEST(Preferences, ReportOptionsCarryTheLetterMInTheirThirdByte) {
    MemorySettingsStore store;
    store.setBytes("2012 report", le32(0x11223344));
    EXPECT_EQ(loadPreferences(store).reportOptions, 0x114d3344u);
}

TEST(Preferences, ConsoleShortcutsAreNormalised) {
    EXPECT_EQ(normaliseConsoleShortcuts("  a   b  "), "a b");
    EXPECT_EQ(normaliseConsoleShortcuts("  reprocess\t\tpeaks "), "reprocess peaks");
    EXPECT_EQ(normaliseConsoleShortcuts("   "), "");
}

TEST(Preferences, ScriptsFolderDefaultsToTheHomeDocuments) {
    const char* saved = std::getenv("HOME");
    const std::string home = saved ? saved : "";
    setenv("HOME", "/home/someone", 1);
    Preferences p;
    EXPECT_EQ(scriptsFolder(p), "/home/someone/Documents/Zolt scripts");
    p.scriptsFolder = "/elsewhere";
    EXPECT_EQ(scriptsFolder(p), "/elsewhere");
    unsetenv("HOME");
    EXPECT_EQ(defaultScriptsFolder(), "");
    if (saved) setenv("HOME", home.c_str(), 1);
}

TEST(SettingsStore, GroupsPrefixNamesAndRemovingAGroupRemovesItsValues) {
    MemorySettingsStore store;
    store.beginGroup("recent");
    store.setText("1", "/data/a");
    store.setInteger("count", 2);
    store.endGroup();
    store.setText("recently", "kept");
    EXPECT_EQ(store.text("recent/1"), "/data/a");
    EXPECT_EQ(store.integer("recent/count"), 2);
    EXPECT_EQ(store.text("recent/count"), "2");
    EXPECT_FALSE(store.bytes("recent/count"));
    store.setText("number", "42");
    EXPECT_EQ(store.integer("number"), 42);
    store.setText("word", "42x");
    EXPECT_FALSE(store.integer("word"));
    store.remove("recent");
    EXPECT_FALSE(store.contains("recent/1"));
    EXPECT_TRUE(store.contains("recently"));
}

}  // namespace
}  // namespace zolt

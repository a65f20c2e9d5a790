// The program's preference block: defaults, loading from and saving to the settings store.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "app/settings_store.h"

namespace zolt {

namespace pref_flags {
inline constexpr uint32_t kPrintFrame = 0x1;
inline constexpr uint32_t kPrintTitle = 0x2;
inline constexpr uint32_t kPrintFileName = 0x4;
inline constexpr uint32_t kPrintDate = 0x8;
inline constexpr uint32_t kPrintDashedLines = 0x10;
inline constexpr uint32_t kFixedSize = 0x20;
inline constexpr uint32_t kPreferLP = 0x40;
inline constexpr uint32_t kAutoSaving = 0x80;
inline constexpr uint32_t kDoBackUp = 0x100;
inline constexpr uint32_t kShowPlan = 0x200;
inline constexpr uint32_t kDrawerSinceTheStart = 0x400;
inline constexpr uint32_t kDocNotesSinceTheStart = 0x800;
inline constexpr uint32_t kReadProcessedData = 0x1000;
inline constexpr uint32_t kMightyMouseScrolls = 0x2000;
inline constexpr uint32_t kCommaSeparatedValues = 0x4000;
inline constexpr uint32_t kDontSaveOverlays = 0x8000;
inline constexpr uint32_t kDisplayTitle = 0x10000;
inline constexpr uint32_t kAutomaticProcessing = 0x20000;
inline constexpr uint32_t kCanSplitIntegrals = 0x40000;
inline constexpr uint32_t kArrowsCanZoom = 0x80000;
inline constexpr uint32_t kRetinaDisplay = 0x100000;
// Toggled by the frame while it runs; never stored.
inline constexpr uint32_t kCallOpenBabel = 0x800000;
inline constexpr uint32_t kFastSelection = 0x1000000;
inline constexpr uint32_t kGlobalCross = 0x2000000;
inline constexpr uint32_t kFirstOrder = 0x4000000;
inline constexpr uint32_t kLockEqualLetters = 0x8000000;
inline constexpr uint32_t kRunTime = 0x0F800000;
inline constexpr uint32_t kDefault = 0x9a0080;
}  // namespace pref_flags

struct PreferenceFlagName {
    uint32_t bit;
    const char* name;
};
// Every stored flag with its value name, in bit order.
const std::array<PreferenceFlagName, 21>& preferenceFlagNames();

struct Preferences {
    uint32_t flags = pref_flags::kDefault;
    std::array<uint8_t, 17> optionBytes{0x03, 0x03, 0x05, 0x03, 0x01, 0x0f, 0x0f, 0x07, 0x0f,
                                        0x03, 0x28, 0x02, 0x0f, 0x08, 0x00, 0x0a, 0x0a};
    uint32_t reportOptions = 0;
    float spectrometerMhz = 400.0f;
    float zeroFilling = 1.5f;
    std::string fontFace = "Verdana";
    std::optional<std::string> fontForNotes;
    std::optional<std::string> scriptsFolder;
    std::optional<std::string> consoleShortcuts;
    std::array<uint32_t, 9> colours{0,          0xbaba5000, 0,          0x2000dd00, 0,
                                    0xe0004000, 0xffffffff, 0x0000ffff, 0};

    bool has(uint32_t bit) const { return (flags & bit) != 0; }
};

// Decides the automatic-processing bit at start-up (writes the start-up script when missing);
// returns the flags with that bit set or cleared.
using StartupScriptCheck = std::function<uint32_t(Preferences&)>;

// Defaults, overridden by what the store holds. Once anything at all is stored, the stored
// switches replace the default ones (a switch not stored is off); a missing or damaged value
// keeps its default.
Preferences loadPreferences(const SettingsStore& store, const StartupScriptCheck& check = {});
void savePreferences(const Preferences& prefs, SettingsStore& store);

// "  a   b  " becomes "a b"; an empty result means nothing is stored.
std::string normaliseConsoleShortcuts(std::string_view typed);

// HOME (USERPROFILE on Windows) + "Documents/Zolt scripts"; empty without a home folder.
std::string defaultScriptsFolder();
// The folder preference, or the default folder when it is unset.
std::string scriptsFolder(const Preferences& prefs);

}  // namespace zolt

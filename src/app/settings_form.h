// The settings dialog without its window: the preference block as the texts and switches the
// dialog shows, and back. Numeric fields are typed as text and converted on the way back.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/platform.h"
#include "app/preferences.h"

namespace zolt {

// How a numeric field maps to its option byte.
enum class FieldScale : uint8_t {
    Byte,          // the number truncated to a byte
    Reciprocal64,  // stored as trunc(64 / value - 1)
    Times32,       // stored as trunc(32 * value - 1)
};

struct OptionByteField {
    size_t index;  // into Preferences::optionBytes
    FieldScale scale;
    const char* label;
};
// The option bytes the dialog shows, in its order.
const std::array<OptionByteField, 1>& optionByteFields();

// The byte a typed value stands for, clamped to 0 ... 255 (a value of 0 for Reciprocal64 gives
// 255).
uint8_t optionByteFromValue(double value, FieldScale scale);
// The value shown for a stored byte: the one that converts back to it.
double valueFromOptionByte(uint8_t byte, FieldScale scale);
// The leading number of a typed text ("12 MHz" reads 12); nothing when it does not start with a
// finite number.
std::optional<double> parseNumberField(std::string_view text);

struct SettingsForm {
    uint32_t flags = 0;
    std::string spectrometerMhz;
    std::string zeroFilling;
    std::array<std::string, 1> optionBytes;  // as optionByteFields()
    std::string fontFace;
    std::string fontForNotes;
    std::string scriptsFolder;
    std::string consoleShortcuts;
};

SettingsForm formFromPreferences(const Preferences& prefs);
// The block with the form's values over `base`. A numeric field whose text is unchanged keeps
// the stored value exactly; one that does not read as a number (or, for the frequency and the
// zero-filling factor, not as a positive one) keeps it too. Empty texts store nothing; the
// console shortcuts are normalised; the run-time switches of `base` are kept.
Preferences preferencesFromForm(const Preferences& base, const SettingsForm& form);

// The settings dialog's button for the start-up script, with the dialog's values taken over:
// makes sure of "autoexec.lua" in the scripts folder; when it is there, opens it with the system
// and switches automatic processing on. True when it was opened.
bool editStartupScript(Preferences& prefs, Platform& platform);

}  // namespace zolt

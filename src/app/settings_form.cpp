#include "app/settings_form.h"

#include <charconv>
#include <cmath>
#include <filesystem>

#include "app/automatic_processing.h"
#include "app/peak_option_settings.h"
#include "scripting/startup_script.h"

namespace zolt {

namespace {

// The shortest text that reads back as the same number.
template <class T>
std::string numberText(T v) {
    char buf[64];
    const auto end = std::to_chars(buf, buf + sizeof buf, v).ptr;
    return std::string(buf, end);
}

// A float field: the typed number when it is a positive one, else the stored value.
float positiveFloat(const std::string& typed, const std::string& shown, float stored) {
    if (typed == shown) return stored;
    auto v = parseNumberField(typed);
    if (!v || !(*v > 0) || *v > 3.0e38) return stored;
    return static_cast<float>(*v);
}

std::optional<std::string> unlessEmpty(const std::string& text) {
    if (text.empty()) return std::nullopt;
    return text;
}

}  // namespace

const std::array<OptionByteField, 1>& optionByteFields() {
    static const std::array<OptionByteField, 1> fields = {{
        {kPickingMinimumByte, FieldScale::Byte, "Smallest peak picked (display points)"},
    }};
    return fields;
}

uint8_t optionByteFromValue(double value, FieldScale scale) {
    double v = value;
    if (scale == FieldScale::Reciprocal64) v = 64.0 / value - 1.0;
    if (scale == FieldScale::Times32) v = 32.0 * value - 1.0;
    if (!(v > 0)) return 0;  // negative, and 64 / -0
    return v >= 255 ? 255 : static_cast<uint8_t>(std::trunc(v));
}

double valueFromOptionByte(uint8_t byte, FieldScale scale) {
    switch (scale) {
        case FieldScale::Reciprocal64: {
            // 64 / (b + 1) may round to just above the value whose conversion gives b; the
            // nearest smaller doubles convert back.
            double v = 64.0 / (byte + 1.0);
            for (int i = 0; i < 8 && optionByteFromValue(v, scale) < byte; ++i)
                v = std::nextafter(v, 0.0);
            return v;
        }
        case FieldScale::Times32:
            return (byte + 1.0) / 32.0;
        case FieldScale::Byte:
            break;
    }
    return byte;
}

std::optional<double> parseNumberField(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double v = 0;
    const auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::general);
    if (ec != std::errc() || end == text.data() || !std::isfinite(v)) return std::nullopt;
    return v;
}

SettingsForm formFromPreferences(const Preferences& prefs) {
    SettingsForm form;
    form.flags = prefs.flags;
    form.spectrometerMhz = numberText(prefs.spectrometerMhz);
    form.zeroFilling = numberText(prefs.zeroFilling);
    for (size_t i = 0; i < optionByteFields().size(); ++i) {
        const OptionByteField& f = optionByteFields()[i];
        form.optionBytes[i] = numberText(valueFromOptionByte(prefs.optionBytes[f.index], f.scale));
    }
    form.fontFace = prefs.fontFace;
    form.fontForNotes = prefs.fontForNotes.value_or("");
    form.scriptsFolder = prefs.scriptsFolder.value_or("");
    form.consoleShortcuts = prefs.consoleShortcuts.value_or("");
    return form;
}

Preferences preferencesFromForm(const Preferences& base, const SettingsForm& form) {
    const SettingsForm shown = formFromPreferences(base);
    Preferences p = base;
    p.flags = (base.flags & pref_flags::kRunTime) | (form.flags & ~pref_flags::kRunTime);
    p.spectrometerMhz =
        positiveFloat(form.spectrometerMhz, shown.spectrometerMhz, base.spectrometerMhz);
    p.zeroFilling = positiveFloat(form.zeroFilling, shown.zeroFilling, base.zeroFilling);
    for (size_t i = 0; i < optionByteFields().size(); ++i) {
        if (form.optionBytes[i] == shown.optionBytes[i]) continue;
        const OptionByteField& f = optionByteFields()[i];
        if (auto v = parseNumberField(form.optionBytes[i]))
            p.optionBytes[f.index] = optionByteFromValue(*v, f.scale);
    }
    if (!form.fontFace.empty()) p.fontFace = form.fontFace;
    p.fontForNotes = unlessEmpty(form.fontForNotes);
    p.scriptsFolder = unlessEmpty(form.scriptsFolder);
    p.consoleShortcuts = unlessEmpty(normaliseConsoleShortcuts(form.consoleShortcuts));
    return p;
}

bool editStartupScript(Preferences& prefs, Platform& platform) {
    prefs.flags = ensureStartupScript(prefs);
    if (!prefs.has(pref_flags::kAutomaticProcessing)) return false;
    const std::filesystem::path script =
        std::filesystem::path(scriptsFolder(prefs)) / kStartupScriptFile;
    platform.openWithSystem(script.string());
    return true;
}

}  // namespace zolt

#include "app/preferences.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace zolt {

namespace {

constexpr const char* kLegacyFlags = "2012 flags";
constexpr const char* kOptionBytes = "2012 bytes";
constexpr const char* kReport = "2012 report";
constexpr const char* kMhz = "MHz";
constexpr const char* kZeroFilling = "zero-filling";
constexpr const char* kFontFace = "font face";
constexpr const char* kFontForNotes = "font for notes";
constexpr const char* kScriptsFolder = "folder of scripts";
constexpr const char* kConsoleShortcuts = "console shortcuts";
constexpr const char* kColours = "colors";

// Stored values keep the byte order of the platform that first wrote them: little-endian.
uint32_t readLe32(const char* p) {
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<uint8_t>(p[i]);
    return v;
}

void writeLe32(std::string& out, uint32_t v) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xff));
}

std::optional<uint32_t> readWord(const SettingsStore& store, const char* name) {
    auto b = store.bytes(name);
    if (!b || b->size() != 4) return std::nullopt;
    return readLe32(b->data());
}

void readFloat(const SettingsStore& store, const char* name, float& value) {
    if (auto w = readWord(store, name)) std::memcpy(&value, &*w, 4);
}

void readString(const SettingsStore& store, const char* name, std::string& value) {
    auto s = store.text(name);
    if (s && !s->empty()) value = *s;
}

void readString(const SettingsStore& store, const char* name, std::optional<std::string>& value) {
    auto s = store.text(name);
    if (s && !s->empty()) value = *s;
}

void writeWord(SettingsStore& store, const char* name, uint32_t v) {
    std::string b;
    writeLe32(b, v);
    store.setBytes(name, b);
}

void writeFloat(SettingsStore& store, const char* name, float value) {
    uint32_t w = 0;
    std::memcpy(&w, &value, 4);
    writeWord(store, name, w);
}

void writeString(SettingsStore& store, const char* name, const std::optional<std::string>& v) {
    if (v && !v->empty())
        store.setText(name, *v);
    else
        store.remove(name);
}

}  // namespace

const std::array<PreferenceFlagName, 21>& preferenceFlagNames() {
    static const std::array<PreferenceFlagName, 21> names = {{
        {pref_flags::kPrintFrame, "PrintFrame"},
        {pref_flags::kPrintTitle, "PrintTitle"},
        {pref_flags::kPrintFileName, "PrintFileName"},
        {pref_flags::kPrintDate, "PrintDate"},
        {pref_flags::kPrintDashedLines, "PrintDashedLines"},
        {pref_flags::kFixedSize, "FixedSize"},
        {pref_flags::kPreferLP, "PreferLP"},
        {pref_flags::kAutoSaving, "AutoSaving"},
        {pref_flags::kDoBackUp, "DoBackUp"},
        {pref_flags::kShowPlan, "ShowPlan"},
        {pref_flags::kDrawerSinceTheStart, "Drawer SinceTheStart"},
        {pref_flags::kDocNotesSinceTheStart, "DocNotes SinceTheStart"},
        {pref_flags::kReadProcessedData, "ReadProcessedData"},
        {pref_flags::kMightyMouseScrolls, "MightyMouseScrolls"},
        {pref_flags::kCommaSeparatedValues, "CommaSeparatedValues"},
        {pref_flags::kDontSaveOverlays, "DontSaveOverlays"},
        {pref_flags::kDisplayTitle, "DisplayTitle"},
        {pref_flags::kAutomaticProcessing, "Automatic Processing"},
        {pref_flags::kCanSplitIntegrals, "CanSplitIntegrals"},
        {pref_flags::kArrowsCanZoom, "ArrowsCanZoom"},
        {pref_flags::kRetinaDisplay, "RetinaDisplay"},
    }};
    return names;
}

Preferences loadPreferences(const SettingsStore& store, const StartupScriptCheck& check) {
    Preferences p;

    // A store that cannot be opened keeps the default flags. Otherwise the switches read replace
    // them, even when none is on; only then may the word packed by older installations stand in.
    if (!store.empty()) {
        uint32_t read = 0;
        for (const auto& f : preferenceFlagNames()) {
            auto b = store.bytes(f.name);
            if (b && b->size() == 1 && (*b)[0] != 0) read |= f.bit;
        }
        p.flags = (p.flags & pref_flags::kRunTime) | read;
        if (read == 0)
            if (auto legacy = readWord(store, kLegacyFlags)) p.flags = *legacy;
    }

    if (auto b = store.bytes(kOptionBytes); b && b->size() == p.optionBytes.size())
        std::memcpy(p.optionBytes.data(), b->data(), p.optionBytes.size());
    if (auto w = readWord(store, kReport)) p.reportOptions = *w;
    readFloat(store, kMhz, p.spectrometerMhz);
    readFloat(store, kZeroFilling, p.zeroFilling);
    readString(store, kFontFace, p.fontFace);
    readString(store, kFontForNotes, p.fontForNotes);
    readString(store, kScriptsFolder, p.scriptsFolder);
    readString(store, kConsoleShortcuts, p.consoleShortcuts);
    if (auto b = store.bytes(kColours); b && b->size() == 4 * p.colours.size()) {
        for (size_t i = 0; i < p.colours.size(); ++i) p.colours[i] = readLe32(b->data() + 4 * i);
    }

    if (p.has(pref_flags::kAutomaticProcessing) && check) p.flags = check(p);
    p.flags |= pref_flags::kCallOpenBabel;
    p.reportOptions = (p.reportOptions & ~0xff0000u) | (uint32_t{'M'} << 16);
    return p;
}

void savePreferences(const Preferences& p, SettingsStore& store) {
    for (const auto& f : preferenceFlagNames())
        store.setBytes(f.name, std::string(1, p.has(f.bit) ? '\1' : '\0'));
    store.remove(kLegacyFlags);
    store.setBytes(kOptionBytes, std::string(reinterpret_cast<const char*>(p.optionBytes.data()),
                                             p.optionBytes.size()));
    writeWord(store, kReport, p.reportOptions);
    writeFloat(store, kMhz, p.spectrometerMhz);
    writeFloat(store, kZeroFilling, p.zeroFilling);
    std::string colours;
    for (uint32_t c : p.colours) writeLe32(colours, c);
    store.setBytes(kColours, colours);
    writeString(store, kFontFace, p.fontFace);
    writeString(store, kFontForNotes, p.fontForNotes);
    writeString(store, kScriptsFolder, p.scriptsFolder);
    writeString(store, kConsoleShortcuts, p.consoleShortcuts);
}

std::string normaliseConsoleShortcuts(std::string_view typed) {
    std::string out;
    bool blank = false;
    for (char c : typed) {
        if (static_cast<unsigned char>(c) <= 32) {
            blank = true;
            continue;
        }
        if (blank && !out.empty()) out.push_back(' ');
        blank = false;
        out.push_back(c);
    }
    return out;
}

std::string defaultScriptsFolder() {
#ifdef _WIN32
    const char* home = std::getenv("USERPROFILE");
#else
    const char* home = std::getenv("HOME");
#endif
    if (!home || !*home) return {};
    return (std::filesystem::path(home) / "Documents" / "Zolt scripts").string();
}

std::string scriptsFolder(const Preferences& prefs) {
    if (prefs.scriptsFolder && !prefs.scriptsFolder->empty()) return *prefs.scriptsFolder;
    return defaultScriptsFolder();
}

}  // namespace zolt

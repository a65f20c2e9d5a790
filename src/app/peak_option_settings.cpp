#include "app/peak_option_settings.h"

#include <algorithm>

#include "app/application.h"

namespace zolt {

std::string SettingsPeakOptionStore::nameInGroup(std::string_view name) const {
    return std::string(kPeakOptionsGroup) + "/" + std::string(name);
}

std::optional<std::string> SettingsPeakOptionStore::bytes(std::string_view name) const {
    return store_.bytes(nameInGroup(name));
}

void SettingsPeakOptionStore::setBytes(std::string_view name, std::string_view value) {
    store_.setBytes(nameInGroup(name), value);
}

int pickingMinimum(const Preferences& prefs) {
    return std::max<int>(prefs.optionBytes[kPickingMinimumByte], 4);
}

PeakPickingOptions Application::peakPickingOptions() {
    if (!settings_) return loadPeakOptions(nullptr, 1.0f);
    const SettingsPeakOptionStore store(*settings_);
    return loadPeakOptions(&store, 1.0f);
}

int Application::peakPickingMinimum() {
    return pickingMinimum(preferences_);
}

}  // namespace zolt

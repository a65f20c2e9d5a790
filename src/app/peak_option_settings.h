// The 2-D peak-picking options in the program's settings, under their own group.
#pragma once

#include "analysis/peak_options.h"
#include "app/preferences.h"
#include "app/settings_store.h"

namespace zolt {

// Which of the preference option bytes holds the picking minimum of 1-D peaks, in display
// points (15 by default: 3 % of a plot scaled to its tallest line keeps a crowded proton
// spectrum under the 200 lines a region may yield).
inline constexpr size_t kPickingMinimumByte = 5;

class SettingsPeakOptionStore : public PeakOptionStore {
public:
    explicit SettingsPeakOptionStore(SettingsStore& store) : store_(store) {}
    std::optional<std::string> bytes(std::string_view name) const override;
    void setBytes(std::string_view name, std::string_view value) override;

private:
    std::string nameInGroup(std::string_view name) const;
    SettingsStore& store_;
};

// The picking minimum of the preferences, never below 4.
int pickingMinimum(const Preferences& prefs);

}  // namespace zolt

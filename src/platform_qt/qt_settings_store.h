// The user's settings through QSettings("Ostrivo", "Zolt"): the registry key on Windows,
// ~/.config/Ostrivo/Zolt.conf on Linux.
#pragma once

#include <memory>

#include "app/settings_store.h"

class QSettings;

namespace zolt {

class QtSettingsStore : public SettingsStore {
public:
    QtSettingsStore();
    // A settings file of its own (tests, or a configuration chosen on the command line).
    explicit QtSettingsStore(const std::string& iniPath);
    ~QtSettingsStore() override;

    bool empty() const override;

protected:
    std::optional<SettingValue> read(const std::string& fullName) const override;
    void write(const std::string& fullName, const SettingValue& value) override;
    void erase(const std::string& fullName) override;

private:
    std::unique_ptr<QSettings> settings_;
};

}  // namespace zolt

// Help > Settings: the preference block as switches and fields. OK stores it and makes it the
// program's; the start-up script's button does the same and opens the script for editing.
// Each control's object name is its value's name ("ShowPlan", "MHz", ...).
#pragma once

#include <QDialog>

#include "app/settings_form.h"

class QCheckBox;
class QLineEdit;

namespace zolt {

class Application;
class SettingsStore;

inline constexpr const char* kAutomaticProcessingText =
    "Zolt will automatically process a new FID according to the script autoexec.lua";
inline constexpr const char* kEditStartupScriptText =
    "Modify the script that performs the automatic processing";

// The check box text of a stored switch.
const char* preferenceSwitchLabel(uint32_t bit);

class SettingsDialog : public QDialog {
    Q_OBJECT
public:
    // Shows the preferences without the switches changed for a limited time.
    SettingsDialog(Application& app, SettingsStore& store, QWidget* parent = nullptr);

    void accept() override;

private:
    SettingsForm form() const;
    // Stores the block, makes it the program's and ends any timed change, then closes.
    void keep(const Preferences& prefs);
    void editStartupScript();

    Application& app_;
    SettingsStore& store_;
    Preferences shown_;
    std::vector<std::pair<uint32_t, QCheckBox*>> switches_;
    QLineEdit* mhz_;
    QLineEdit* zeroFilling_;
    std::vector<QLineEdit*> optionBytes_;
    QLineEdit* fontFace_;
    QLineEdit* fontForNotes_;
    QLineEdit* scriptsFolder_;
    QLineEdit* shortcuts_;
};

}  // namespace zolt

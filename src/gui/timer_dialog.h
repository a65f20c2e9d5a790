// Help > Timer: a few switches changed for this run only, for a number of minutes or until the
// program quits. Nothing is stored; the switches come back when the time runs out.
#pragma once

#include <QDialog>
#include <array>
#include <cstdint>

#include "app/preferences.h"

class QCheckBox;
class QPushButton;
class QSpinBox;

namespace zolt {

class Application;

inline constexpr const char* kTimerTitle = "Change your Preferences for a Limited Time";
// The object name of the timer that restores the switches (a child of the dialog's parent, so
// that it outlives the dialog).
inline constexpr const char* kPreferenceTimerName = "timed preferences";

class TimerDialog : public QDialog {
    Q_OBJECT
public:
    // The switches it offers, as the settings dialog names them.
    static constexpr std::array<uint32_t, 6> kSwitches = {
        pref_flags::kAutomaticProcessing,  pref_flags::kShowPlan,
        pref_flags::kAutoSaving,           pref_flags::kDoBackUp,
        pref_flags::kCommaSeparatedValues, pref_flags::kReadProcessedData};

    TimerDialog(Application& app, QWidget* parent = nullptr);
    // Changes the switches that differ from the preferences and starts (or restarts) the timer.
    void accept() override;

private:
    void restoreNow();

    Application& app_;
    std::array<QCheckBox*, kSwitches.size()> boxes_{};
    QSpinBox* minutes_;
    QPushButton* restore_;
};

}  // namespace zolt

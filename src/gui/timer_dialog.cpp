#include "gui/timer_dialog.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

#include "app/application.h"
#include "app/timed_preferences.h"
#include "gui/settings_dialog.h"

namespace zolt {

namespace {

constexpr int kDefaultMinutes = 30;
constexpr int kMostMinutes = 24 * 60;

QObject* timerOwner(QWidget* dialog) {
    if (QObject* p = dialog->parent()) return p;
    return QCoreApplication::instance();
}

}  // namespace

TimerDialog::TimerDialog(Application& app, QWidget* parent)
    : QDialog(parent), app_(app), minutes_(new QSpinBox(this)) {
    setWindowTitle(kTimerTitle);
    auto* layout = new QVBoxLayout(this);
    auto* note =
        new QLabel("These switches change for this run of Zolt only and are never stored.", this);
    note->setWordWrap(true);
    layout->addWidget(note);
    const uint32_t flags = app_.preferences().flags;
    for (size_t i = 0; i < kSwitches.size(); ++i) {
        boxes_[i] = new QCheckBox(preferenceSwitchLabel(kSwitches[i]), this);
        boxes_[i]->setChecked((flags & kSwitches[i]) != 0);
        layout->addWidget(boxes_[i]);
    }
    minutes_->setRange(0, kMostMinutes);
    minutes_->setValue(kDefaultMinutes);
    minutes_->setSuffix(" min");
    minutes_->setSpecialValueText("until Zolt quits");
    auto* form = new QFormLayout;
    form->addRow("For", minutes_);
    layout->addLayout(form);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    restore_ = buttons->addButton("Restore now", QDialogButtonBox::ResetRole);
    restore_->setEnabled(app_.timedPreferences().active());
    connect(buttons, &QDialogButtonBox::accepted, this, &TimerDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TimerDialog::reject);
    connect(restore_, &QPushButton::clicked, this, &TimerDialog::restoreNow);
    layout->addWidget(buttons);
}

void TimerDialog::accept() {
    Preferences& prefs = app_.preferences();
    uint32_t mask = 0, values = 0;
    for (size_t i = 0; i < kSwitches.size(); ++i) {
        const bool on = boxes_[i]->isChecked();
        if (on != prefs.has(kSwitches[i])) mask |= kSwitches[i];
        if (on) values |= kSwitches[i];
    }
    changeForAWhile(prefs, app_.timedPreferences(), mask, values);

    QObject* owner = timerOwner(this);
    auto* timer = owner->findChild<QTimer*>(kPreferenceTimerName, Qt::FindDirectChildrenOnly);
    if (!timer) {
        timer = new QTimer(owner);
        timer->setObjectName(kPreferenceTimerName);
        timer->setSingleShot(true);
        Application* app = &app_;
        QObject::connect(timer, &QTimer::timeout, timer, [app] {
            restoreTimedPreferences(app->preferences(), app->timedPreferences());
        });
    }
    // Without a time the switches stay changed until the program ends.
    if (minutes_->value() > 0 && app_.timedPreferences().active())
        timer->start(minutes_->value() * 60 * 1000);
    else
        timer->stop();
    QDialog::accept();
}

void TimerDialog::restoreNow() {
    restoreTimedPreferences(app_.preferences(), app_.timedPreferences());
    if (auto* timer =
            timerOwner(this)->findChild<QTimer*>(kPreferenceTimerName, Qt::FindDirectChildrenOnly))
        timer->stop();
    const uint32_t flags = app_.preferences().flags;
    for (size_t i = 0; i < kSwitches.size(); ++i)
        boxes_[i]->setChecked((flags & kSwitches[i]) != 0);
    restore_->setEnabled(false);
}

}  // namespace zolt

// The settings dialog stores what it shows; the timer dialog changes switches for a while only.
#include "gui/settings_dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <lua.hpp>

#include "app/application.h"
#include "app/recording_platform.h"
#include "gui/about_box.h"
#include "gui/timer_dialog.h"
#include "platform_qt/qt_settings_store.h"
#include "test_data.h"

using namespace zolt;

class SettingsDialogTest : public QObject {
    Q_OBJECT

    static void setText(const QDialog& dialog, const char* name, const QString& text) {
        auto* edit = dialog.findChild<QLineEdit*>(name);
        QVERIFY2(edit, name);
        edit->setText(text);
    }
    static QCheckBox* box(const QDialog& dialog, const char* name) {
        return dialog.findChild<QCheckBox*>(name);
    }

    testing::RecordingPlatform platform;

private slots:
    void okStoresTheFieldsAndAFreshLoadGivesThemBack() {
        const std::string ini = testdata::freshTempDir("settings-dialog") + "/Zolt.conf";
        QtSettingsStore store(ini);
        Application app(platform);
        SettingsDialog dialog(app, store);
        QCOMPARE(dialog.findChild<QLineEdit*>("MHz")->text(), QString("400"));
        QCOMPARE(dialog.findChild<QLineEdit*>("option byte 5")->text(), QString("15"));
        box(dialog, "ShowPlan")->setChecked(true);
        box(dialog, "AutoSaving")->setChecked(false);
        box(dialog, "Automatic Processing")->setChecked(false);
        setText(dialog, "MHz", "600.13");
        setText(dialog, "zero-filling", "two");  // not a number: kept
        setText(dialog, "option byte 5", "22.7");
        setText(dialog, "font for notes", "Courier");
        setText(dialog, "console shortcuts", "  a   b  ");
        dialog.accept();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));

        const Preferences loaded = loadPreferences(QtSettingsStore(ini));
        const Preferences& live = app.preferences();
        for (const Preferences* p : {&loaded, &live}) {
            QCOMPARE(p->flags & ~pref_flags::kRunTime, pref_flags::kShowPlan |
                                                           pref_flags::kArrowsCanZoom |
                                                           pref_flags::kRetinaDisplay);
            QCOMPARE(p->spectrometerMhz, 600.13f);
            QCOMPARE(p->zeroFilling, 1.5f);
            QCOMPARE(int(p->optionBytes[5]), 22);
            QCOMPARE(p->fontForNotes, std::optional<std::string>("Courier"));
            QCOMPARE(p->consoleShortcuts, std::optional<std::string>("a b"));
            QVERIFY(!p->scriptsFolder);  // an empty field stores nothing
        }
    }

    void theStartupScriptButtonOpensTheScriptAndKeepsTheValues() {
        MemorySettingsStore store;
        Preferences start;
        start.flags &= ~pref_flags::kAutomaticProcessing;
        Application app(platform, start);
        SettingsDialog dialog(app, store);
        QVERIFY(dialog.findChildren<QLabel*>().size() > 0);
        bool explained = false;
        for (auto* label : dialog.findChildren<QLabel*>())
            explained |= label->text() ==
                         "Zolt will automatically process a new FID according to the script "
                         "autoexec.lua";
        QVERIFY(explained);
        auto* edit = dialog.findChild<QPushButton*>("editStartupScript");
        QCOMPARE(edit->text(), QString("Modify the script that performs the automatic processing"));
        const std::string folder = testdata::freshTempDir("settings-scripts") + "/scripts";
        setText(dialog, "folder of scripts", QString::fromStdString(folder));
        setText(dialog, "MHz", "500");
        edit->click();
        QCOMPARE(platform.opened.back(), folder + "/autoexec.lua");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QVERIFY(app.preferences().has(pref_flags::kAutomaticProcessing));
        QCOMPARE(app.preferences().spectrometerMhz, 500.0f);
        QCOMPARE(*store.bytes("Automatic Processing"), std::string(1, '\1'));
        QCOMPARE(*store.text("folder of scripts"), folder);
    }

    void theAboutBoxNamesTheProgramItsVersionAndLua() {
        const QStringList lines = aboutText().split('\n');
        QVERIFY(QRegularExpression("^Zolt \\d+\\.\\d+").match(lines.front()).hasMatch());
        QCOMPARE(lines.back(), QString("Scripting with " LUA_RELEASE));
    }

    void timedSwitchesAreNeitherShownAsLastingNorStoredAndComeBack() {
        MemorySettingsStore store;
        Application app(platform);
        QWidget frame;
        TimerDialog timer(app, &frame);
        QCOMPARE(timer.windowTitle(), QString("Change your Preferences for a Limited Time"));
        const auto boxes = timer.findChildren<QCheckBox*>();
        QCOMPARE(boxes.size(), qsizetype(TimerDialog::kSwitches.size()));
        boxes[1]->setChecked(true);   // ShowPlan
        boxes[0]->setChecked(false);  // Automatic Processing
        timer.findChild<QSpinBox*>()->setValue(1);
        timer.accept();
        QVERIFY(app.preferences().has(pref_flags::kShowPlan));
        QVERIFY(!app.preferences().has(pref_flags::kAutomaticProcessing));
        QVERIFY(store.empty());
        {
            SettingsDialog settings(app, store);
            QVERIFY(!box(settings, "ShowPlan")->isChecked());
            QVERIFY(box(settings, "Automatic Processing")->isChecked());
        }
        auto* clock = frame.findChild<QTimer*>(kPreferenceTimerName);
        QVERIFY(clock && clock->isActive());
        QCOMPARE(clock->remainingTime() > 59000, true);
        clock->start(1);  // the minute runs out at once
        QTRY_VERIFY(!app.timedPreferences().active());
        QCOMPARE(app.preferences().flags, pref_flags::kDefault);
        QVERIFY(store.empty());
    }
};

QTEST_MAIN(SettingsDialogTest)
#include "settings_dialog_test.moc"

// The console window hands its keys and buttons to the real script host and shows the result.
#include "gui/console_window.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <filesystem>

#include "app/application.h"
#include "app/recording_platform.h"
#include "test_data.h"

using namespace zolt;
namespace fs = std::filesystem;

class ConsoleWindowTest : public QObject {
    Q_OBJECT

    static Preferences prefs() {
        Preferences p;
        p.scriptsFolder = testdata::freshTempDir("console-window-scripts");
        p.consoleShortcuts = "reprocess peaks";
        return p;
    }
    QPushButton* button(const ConsoleWindow& console, const QString& text) {
        for (auto* b : console.findChildren<QPushButton*>())
            if (b->text() == text) return b;
        return nullptr;
    }
    void type(ConsoleWindow& console, const QString& line) {
        QTest::keyClicks(console.inputLine(), line);
        QTest::keyClick(console.inputLine(), Qt::Key_Return);
    }

    testing::RecordingPlatform platform;
    std::unique_ptr<Application> app;
    std::unique_ptr<ConsoleWindow> console;

private slots:
    void init() {
        app = std::make_unique<Application>(platform, prefs());
        console = std::make_unique<ConsoleWindow>(*app);
    }
    void cleanup() {
        console.reset();
        app.reset();
    }

    void controlsCarryTheirTextsAndToolTips() {
        QCOMPARE(console->windowTitle(), QString("Console"));
        const std::pair<const char*, const char*> buttons[] = {
            {"Run", "runs the code chunk at left"},
            {"store", "runs the code chunk at left"},
            {"restore", "reloads the commands already used with the current spectrum"},
            {"copy", ""},
            {"?", ""},
        };
        for (const auto& [text, tip] : buttons) {
            QPushButton* b = button(*console, text);
            QVERIFY2(b, text);
            QCOMPARE(b->toolTip(), QString(tip));
        }
        auto* forAll = console->findChild<QCheckBox*>();
        QCOMPARE(forAll->text(), QString("for all documents"));
        QCOMPARE(forAll->toolTip(), QString("apply processing to all windows"));
        QCOMPARE(console->findChild<AmplificationArrows*>()->toolTip(),
                 QString("sets the amplification for the spectra"));
        QCOMPARE(console->messageLine()->text(), QString("--"));
        QCOMPARE(console->messageLine()->toolTip(), QString("Lua messages"));
        // Two shortcut names: two buttons, the others hidden.
        console->show();
        QVERIFY(button(*console, "reprocess")->isVisible());
        QVERIFY(button(*console, "peaks")->isVisible());
        QCOMPARE(button(*console, "")->isVisible(), false);
    }

    void enterRunsTheLineOnTheDocumentAndErrorsShowInTheMessageLine() {
        const std::string dir = testdata::freshTempDir("console-window-run") + "/aspirin";
        fs::copy(testdata::bruker("aspirin-1h"), dir, fs::copy_options::recursive);
        QCOMPARE(app->open(dir), 1);
        SpectrumDocument& doc = *app->frontDocument();
        QCOMPARE(doc.source.highestTIndex, 1);
        QSignalSpy ran(console.get(), &ConsoleWindow::commandsRan);

        type(*console, "wft()");
        QCOMPARE(doc.source.highestTIndex, 0);
        QCOMPARE(ran.count(), 1);
        QCOMPARE(console->inputLine()->text(), QString());
        QVERIFY(console->logView()->toPlainText().endsWith("\nwft()"));

        type(*console, "nosuch()");
        QCOMPARE(console->messageLine()->text(),
                 QString("[string \"input\"]:1: attempt to call global 'nosuch' (a nil value)"));
        // Enough lines to scroll: the log shows its end.
        for (int i = 0; i < 40; ++i) type(*console, QString("print(%1)").arg(i));
        const QScrollBar* bar = console->logView()->verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
        QCOMPARE(console->messageLine()->text(), QString("39"));
        QTest::keyClick(console->inputLine(), Qt::Key_PageUp);
        QCOMPARE(console->inputLine()->text(), QString("39"));

        // Store writes the history beside the data and switches the workflow on.
        console->inputLine()->clear();
        button(*console, "store")->click();
        const ScriptHost& host = app->scriptHost();
        QCOMPARE(host.history().size(), size_t{24});
        std::string expected;
        for (const std::string& entry : host.history()) expected += entry + '\n';
        QCOMPARE(testdata::readFile(dir + "/script.lua"), expected);
        QCOMPARE(doc.flags & 0x24000u, 0x24000u);
        QCOMPARE(console->messageLine()->text(), QString("Custom Workflow ON - cw() to disable"));
        QVERIFY(
            console->logView()->toPlainText().endsWith("\nCustom Workflow ON - cw() to disable"));
        button(*console, "restore")->click();
        QCOMPARE(console->inputLine()->text().toStdString(), expected);

        button(*console, "copy")->click();
        QCOMPARE(platform.clipboard, host.log());
    }

    void historyKeysArrowsAndTheCheckBoxGoThroughTheHost() {
        QTest::keyClick(console->inputLine(), Qt::Key_Up);  // empty history: nothing
        QCOMPARE(console->inputLine()->text(), QString());
        for (int i = 1; i <= 26; ++i) type(*console, QString("y = %1").arg(i));
        QCOMPARE(app->scriptHost().history().front(), std::string("y = 3"));
        QTest::keyClick(console->inputLine(), Qt::Key_Up);
        QTest::keyClick(console->inputLine(), Qt::Key_Up);
        QCOMPARE(console->inputLine()->text(), QString("y = 25"));
        QTest::keyClick(console->inputLine(), Qt::Key_Down);
        QCOMPARE(console->inputLine()->text(), QString("y = 26"));

        console->inputLine()->clear();
        type(*console, "function amp(x) print('amp', x) end");
        auto* arrows = console->findChild<AmplificationArrows*>();
        arrows->stepBy(1);  // the up arrow enlarges
        QCOMPARE(console->messageLine()->text(), QString("amp\t1.1"));
        arrows->stepBy(-1);
        QCOMPARE(console->messageLine()->text(), QString("amp\t0.9"));
        QTest::keyClick(console->inputLine(), Qt::Key_Escape);
        QCOMPARE(console->messageLine()->text(), QString("amp\tnil"));

        console->findChild<QCheckBox*>()->click();
        QVERIFY(app->scriptHost().applyToAll());
        type(*console, "forall(false)");
        QVERIFY(!console->findChild<QCheckBox*>()->isChecked());
    }

    void hidingKeepsTheHostAndClosingEndsBoth() {
        type(*console, "kept = 1");
        console->show();
        QSignalSpy visible(console.get(), &ConsoleWindow::visibilityChanged);
        console->hide();
        QVERIFY(app->hasScriptHost());
        QCOMPARE(app->scriptHost().history().size(), size_t{1});
        console->show();
        QCOMPARE(visible.count(), 2);

        QPointer<ConsoleWindow> window = console.release();
        window->close();
        QVERIFY(!app->hasScriptHost());
        QTRY_VERIFY(window.isNull());
        // The next console starts a fresh host.
        console = std::make_unique<ConsoleWindow>(*app);
        QVERIFY(app->scriptHost().history().empty());
        QVERIFY(!console->logView()->toPlainText().contains("kept"));
    }
};

QTEST_MAIN(ConsoleWindowTest)
#include "console_window_test.moc"

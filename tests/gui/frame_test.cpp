// The frame: shortcuts reach their commands, Open Folder's limit, the quit prompt, recent files
// and automatic processing on opening, on real data.
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "app/automatic_processing.h"
#include "app/document_opening.h"
#include "app/recording_platform.h"
#include "gui/document_window.h"
#include "gui/main_window.h"
#include "test_data.h"

using namespace zolt;
namespace fs = std::filesystem;

namespace {

// The documents' windows in the frame's client area.
int windowCount(MainWindow& frame) {
    return int(frame.findChild<QMdiArea*>()->subWindowList().size());
}

// The top-level menu that holds a command.
QMenu* menuOf(MainWindow& frame, int id) {
    QMenu* menu = qobject_cast<QMenu*>(frame.action(id)->parent());
    while (menu && qobject_cast<QMenu*>(menu->parent()))
        menu = qobject_cast<QMenu*>(menu->parent());
    return menu;
}

}  // namespace

class FrameTest : public QObject {
    Q_OBJECT
private slots:
    // Walks the table: each shortcut, typed on the frame, enters the routing as its command.
    void everyAcceleratorReachesItsCommand() {
        testing::RecordingPlatform platform;
        Application app(platform);
        MainWindow frame(app);
        frame.choosePath = [](bool) { return QString(); };
        frame.show();
        QVERIFY(QTest::qWaitForWindowActive(&frame));
        std::vector<int> reached;
        connect(&frame, &MainWindow::commandTriggered, [&](int id) { reached.push_back(id); });
        // Settings and About open modal boxes: close each one as it comes up.
        QTimer closer;
        connect(&closer, &QTimer::timeout, [] {
            if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
        });
        closer.start(20);
        int sent = 0;
        for (const CommandRow& row : commandTable()) {
            for (const char* key : {row.accelerator, row.secondAccelerator}) {
                if (!*key) continue;
                reached.clear();
                QTest::keySequence(&frame, QKeySequence(QString::fromUtf8(key)));
                QCOMPARE(reached, std::vector<int>{row.id});
                // A dialog the command opened took the focus away.
                frame.activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(&frame));
                ++sent;
            }
        }
        QCOMPARE(sent, 51);
        QTest::keySequence(&frame, QKeySequence("Ctrl+I"));
        QCOMPARE(reached.back(), 703);
    }

    void openFolderStopsAtThirtyDocuments() {
        const fs::path folder = testdata::freshTempDir("forty-sets");
        for (int i = 0; i < 40; ++i)
            fs::copy(testdata::bruker("naphtoicAcid-1h"), folder / ("set" + std::to_string(i)),
                     fs::copy_options::recursive);
        testing::RecordingPlatform platform;
        Application app(platform);
        MainWindow frame(app);
        frame.openPath(QString::fromStdString(folder.string()));
        QCOMPARE(app.documentList().size(), kMaxDocuments);
        QCOMPARE(windowCount(frame), 30);
        QCOMPARE(platform.boxes.size(), size_t{1});
        QCOMPARE(platform.boxes[0].caption, std::string("Too Many Document Windows"));
        QCOMPARE(platform.boxes[0].text, std::string("you can't exceed the maximum of 30"));
    }

    // With three modified documents Exit asks; Cancel keeps the frame. The list follows the
    // active window, and closing a window closes its document.
    void exitCountsUnsavedDocuments() {
        testing::RecordingPlatform platform;
        Application app(platform);
        MainWindow frame(app);
        frame.show();
        for (const char* name : {"aspirin-1h", "naphtoicAcid-1h", "strychnine-1h"})
            frame.openPath(QString::fromStdString(testdata::bruker(name)));
        QCOMPARE(windowCount(frame), 3);
        SpectrumDocument* back = app.documentList().back().get();
        frame.findChild<QMdiArea*>()->setActiveSubWindow(frame.windowOf(*back));
        QCOMPARE(app.frontDocument(), back);

        for (const auto& doc : app.documentList()) doc->flags |= document_flags::kModified;
        platform.answer = MessageAnswer::Cancel;
        frame.runCommand(117);
        QCOMPARE(platform.boxes.size(), size_t{1});
        QCOMPARE(platform.boxes[0].caption, std::string("there are 3 unsaved documents"));
        QCOMPARE(platform.boxes[0].text, std::string("quit anyway?"));
        QVERIFY(frame.isVisible());

        frame.runCommand(103);  // Close: the front document's window
        QTRY_COMPARE(app.documentList().size(), size_t{2});
        QVERIFY(frame.windowOf(*app.frontDocument()));
        QCOMPARE(windowCount(frame), 2);
    }

    void aVanishedRecentFileIsRemovedWhenChosen() {
        MemorySettingsStore store;
        const std::string real = testdata::bruker("aspirin-1h");
        store.setText("Recent Titles/0", "gone");
        store.setText("Recent Paths/0", "/nowhere/gone/fid");
        store.setText("Recent Titles/1", "aspirin");
        store.setText("Recent Paths/1", real);
        testing::RecordingPlatform platform;
        Application app(platform);
        {
            MainWindow frame(app, &store);
            QCOMPARE(frame.recentFiles().paths.size(), size_t{2});
            frame.runCommand(140);
            QCOMPARE(frame.recentFiles().paths, std::vector<std::string>{real});
            QVERIFY(platform.boxes.empty());
            QVERIFY(app.documentList().empty());
            frame.runCommand(140);  // now the real one
            QCOMPARE(app.documentList().size(), size_t{1});
            frame.close();
        }
        QCOMPARE(*store.text("Recent Paths/0"), real);
        QVERIFY(!store.contains("Recent Paths/1"));
    }

    // The start-up script runs on newly read data: the window shows peaks and integrals.
    void openingRunsTheStartupScript() {
        Preferences prefs;
        prefs.scriptsFolder = testdata::freshTempDir("frame-scripts");
        prefs.flags = ensureStartupScript(prefs);
        QVERIFY(prefs.has(pref_flags::kAutomaticProcessing));
        testing::RecordingPlatform platform;
        Application app(platform, prefs);
        app.setAutomaticScripts(true);
        MainWindow frame(app);
        frame.openPath(QString::fromStdString(testdata::bruker("aspirin-1h")));
        QCOMPARE(windowCount(frame), 1);
        const SpectrumDocument& doc = *app.frontDocument();
        QCOMPARE(doc.peaks.oneD.size(), size_t{21});
        QCOMPARE(doc.integrals.size(), size_t{3});  // as zolt-cli process finds them
        QVERIFY(platform.boxes.empty());

        // The menus as they open: the transformed document's items, the frame's console text.
        const std::map<int, bool> enabled{{509, true}, {508, true},  {602, false}, {801, true},
                                          {251, true}, {253, false}, {113, false}, {104, true}};
        for (const auto& [id, on] : enabled) {
            QMenu* menu = menuOf(frame, id);
            emit menu->aboutToShow();
            QCOMPARE(frame.action(id)->isEnabled(), on);
            emit menu->aboutToHide();
        }
        QCOMPARE(frame.action(801)->text(), QString("Show Console     Ctrl+0"));
        // A new spectrum shows its integral values; View > Integral Values hides them.
        QVERIFY(frame.action(505)->isChecked());
        frame.runCommand(505);
        emit menuOf(frame, 505)->aboutToShow();
        QVERIFY(!frame.action(505)->isChecked());

        // Edit > Copy... > List of Peaks and View > Delete All Integrals on the front document.
        frame.runCommand(251);
        QCOMPARE(platform.beeps, 1);
        QVERIFY(platform.clipboard.starts_with("line \t        ppm \t"));
        frame.runCommand(509);
        QVERIFY(doc.integrals.empty());
        QVERIFY(doc.flags & document_flags::kModified);

        // The Scripts menu lists the folder's scripts by name as it opens; an entry runs its
        // script on the front document.
        std::ofstream(fs::path(*prefs.scriptsFolder) / "unpick.lua") << "mark(7.0)\n";
        QMenu* scripts = frame.menuBar()->actions().back()->menu();
        emit scripts->aboutToShow();
        QCOMPARE(scripts->actions().size(), 2);
        QCOMPARE(scripts->actions()[1]->text(), QString("unpick"));
        frame.runCommand(5001);
        QCOMPARE(doc.marks[0], std::vector<float>{7.0f});
    }
};

QTEST_MAIN(FrameTest)
#include "frame_test.moc"

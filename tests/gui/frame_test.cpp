// The frame: shortcuts reach their commands, Open Folder's limit, the quit prompt, recent files
// and automatic processing on opening, on real data.
#include <QDropEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "app/application.h"
#include "app/automatic_processing.h"
#include "app/document_opening.h"
#include "app/recording_platform.h"
#include "gui/document_window.h"
#include "gui/levels_colors_dialog.h"
#include "gui/main_window.h"
#include "gui/plot_view.h"
#include "plot/page_renderer.h"
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

// A drop of these paths on the frame, as the platform delivers it; whether the drag was taken.
bool drop(MainWindow& frame, const QStringList& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths) urls << QUrl::fromLocalFile(path);
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&frame, &enter);
    QDropEvent dropped(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&frame, &dropped);
    return enter.isAccepted() && dropped.isAccepted();
}

QList<QRect> windowRects(MainWindow& frame) {
    QList<QRect> rects;
    for (const auto& doc : frame.application().documentList())
        rects << frame.windowOf(*doc)->geometry();
    return rects;
}

// The rectangles lie inside the work space, overlap nowhere and cover all of it.
bool coverWithoutOverlap(const QList<QRect>& rects, const QRect& space) {
    int area = 0;
    for (int i = 0; i < rects.size(); ++i) {
        if (!space.contains(rects[i])) return false;
        for (int j = i + 1; j < rects.size(); ++j)
            if (rects[i].intersects(rects[j])) return false;
        area += rects[i].width() * rects[i].height();
    }
    return area == space.width() * space.height();
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

    // The first dropped path opens: a data-set folder as Open Folder, a file as Open.
    void droppedPathsOpen() {
        testing::RecordingPlatform platform;
        Application app(platform);
        MainWindow frame(app);
        QVERIFY(drop(frame, {QString::fromStdString(testdata::bruker("naphtoicAcid-1h"))}));
        QCOMPARE(windowCount(frame), 1);
        // The window names the data set, not the folders above it.
        QCOMPARE(frame.frontWindow()->windowTitle(), QString("naphtoicAcid-1h/1"));
        const QString jcamp = QString::fromStdString(testdata::root() + "/jcamp/aspirin-1h.dx");
        QVERIFY(drop(frame, {jcamp, jcamp}));
        QCOMPARE(windowCount(frame), 2);
        QCOMPARE(frame.frontWindow()->windowTitle(), QString("aspirin-1h.dx"));
        QVERIFY(platform.boxes.empty());
    }

    // Tiled windows share the work space; with Synchronize on, a zoom of one trace zooms the
    // other over the same ppm range.
    void tilingAndSynchronizedZoom() {
        testing::RecordingPlatform platform;
        Application app(platform);
        MainWindow frame(app);
        frame.resize(1000, 700);
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        for (const char* set : {"aspirin-1h", "naphtoicAcid-1h"}) {
            frame.openPath(QString::fromStdString(testdata::bruker(set)));
            frame.runCommand(602);  // FT now
        }
        const QRect space = frame.findChild<QMdiArea*>()->viewport()->rect();
        for (int id : {901, 902}) {
            frame.runCommand(id);
            const QList<QRect> rects = windowRects(frame);
            QVERIFY(coverWithoutOverlap(rects, space));
            // Side by side (901), or one above the other (902), the front window first.
            QCOMPARE(rects[0].height(), id == 901 ? space.height() : space.height() / 2);
            QCOMPARE(rects[0].topLeft(), QPoint(0, 0));
        }
        frame.runCommand(903);
        QVERIFY(windowRects(frame)[0].topLeft() != QPoint(0, 0));

        QMenu* window = menuOf(frame, 904);
        frame.runCommand(905);
        frame.runCommand(904);
        emit window->aboutToShow();
        QVERIFY(frame.action(904)->isChecked() && !frame.action(905)->isChecked());
        QVERIFY(frame.action(901)->isEnabled() && !frame.action(906)->isEnabled());
        emit window->aboutToHide();

        // Format > Level && Colors... is a trace's command too: its dialog opens, once.
        emit menuOf(frame, 404)->aboutToShow();
        QVERIFY(frame.action(404)->isEnabled());
        frame.runCommand(404);
        frame.runCommand(404);
        QCOMPARE(frame.frontWindow()->findChildren<LevelsColorsDialog*>().size(), 1);
        frame.frontWindow()->findChild<LevelsColorsDialog*>()->reject();

        frame.runCommand(901);
        SpectrumDocument& front = *app.frontDocument();
        SpectrumDocument& back = *app.documentList().back();
        const std::vector<float> backBefore = back.page.plots.front().horizontal.ppm;
        PlotView* view = frame.frontWindow()->plotView();
        view->setTool(851);
        // From 9 to 6 ppm, inside both spectra.
        const SegmentMap x = drawnMainPlot(front, view->size())->frame.x.front();
        const int y = view->height() / 2, left = int(x.pixel(9.0)), right = int(x.pixel(6.0));
        QTest::mousePress(view, Qt::LeftButton, {}, QPoint(left, y));
        QTest::mouseMove(view, QPoint(right, y));
        QTest::mouseRelease(view, Qt::LeftButton, {}, QPoint(right, y));
        const std::vector<float> zoomed = front.page.plots.front().horizontal.ppm;
        QCOMPARE(back.page.plots.front().horizontal.ppm, zoomed);
        QVERIFY(zoomed != backBefore);

        // Off again: the windows zoom alone.
        frame.runCommand(904);
        QCOMPARE(frame.synchronisation(), 0);
        frame.runCommand(501);  // Full, of the front document only
        QCOMPARE(back.page.plots.front().horizontal.ppm, zoomed);
    }
};

QTEST_MAIN(FrameTest)
#include "frame_test.moc"

// The frame: the menus built from the command table, one sub-window per document, the recent
// files, drag and drop, and the quit prompt.
#pragma once

#include <QApplication>
#include <QMainWindow>
#include <QPointer>
#include <QPrinter>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "app/command_table.h"
#include "app/menu_enabling.h"
#include "app/recent_files.h"

class QMdiArea;
class QMenu;

namespace zolt {

class Application;
class ConsoleWindow;
class DocumentWindow;
class SettingsStore;
class SingleInstance;
struct SpectrumDocument;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // The recent files are read from the settings and written back on quitting; without
    // settings they start empty and are not kept.
    explicit MainWindow(Application& app, SettingsStore* settings = nullptr,
                        QWidget* parent = nullptr);
    ~MainWindow() override;

    Application& application() { return app_; }
    // Opens a file or a folder (every data set inside it) and shows the new documents.
    void openPath(const QString& path);
    // A menu selection or accelerator: routed to a script, the front document or the frame.
    void runCommand(int id);
    // Gives a window to every document without one: after scripts run from elsewhere (the
    // console) opened documents.
    void showDocuments();
    // After scripts ran (a Scripts entry, the console): windows for the documents they opened,
    // every window redrawn.
    void scriptsRan();

    // The synchronisation mode of tiled windows: 0 none, 1 smart marks, 2 synchronize.
    int synchronisation() const { return synchronisation_; }

    // The action of a table row (the first of a range); nullptr for an identifier not built.
    QAction* action(int id) const;
    DocumentWindow* windowOf(const SpectrumDocument& document) const;
    DocumentWindow* frontWindow() const;
    const RecentFiles& recentFiles() const { return recent_; }

    // Asks for a path: a file to open (folder false) or a folder. Replaceable for tests.
    std::function<QString(bool folder)> choosePath;

signals:
    // Every command as it enters the routing.
    void commandTriggered(int id);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    friend class FrameRouting;

    // frame_menus.cpp
    void buildMenus();
    QAction* addCommand(QMenu* menu, const CommandRow& row);
    void updateMenu(QMenu* menu, Menu which);
    void applyItems(const std::vector<ItemState>& items);
    FrameState frameState() const;
    void rebuildRecentFiles();
    void rebuildScripts();

    // frame_commands.cpp
    bool frameCommand(int id);
    void openRecentFile(int index);
    void runScriptEntry(int index);
    void sendEditCommand(int id);
    void toggleFlag(uint32_t bit);
    // frame_dialogs.cpp: the dialogs and boxes the frame opens.
    bool frameDialog(int id);
    void toggleConsole();
    void print();
    void pageSetup();

    // frame_windows.cpp: the Window menu.
    enum class Arrangement { SideBySide, OneAboveTheOther, Cascade };
    bool windowCommand(int id);
    void arrangeWindows(Arrangement arrangement);
    void traceZoomed(DocumentWindow* window, double fromPpm, double toPpm);

    // main_window.cpp
    void closeWindow(DocumentWindow* window);
    void activated(DocumentWindow* window);

    Application& app_;
    SettingsStore* settings_;
    QMdiArea* mdi_;
    RecentFiles recent_;
    std::map<int, QAction*> actions_;
    std::map<const SpectrumDocument*, DocumentWindow*> windows_;
    // Documents whose window is closing: they leave the list once the window is gone.
    std::set<const SpectrumDocument*> closing_;
    QMenu* recentMenu_ = nullptr;
    QMenu* scriptsMenu_ = nullptr;
    int synchronisation_ = 0;
    // Created on first demand, hidden rather than destroyed when toggled off.
    QPointer<ConsoleWindow> console_;
    // Page Setup's choices carry over to Print.
    QPrinter printer_{QPrinter::HighResolution};
};

// False for a dialog command whose dialog is not part of the program yet: its row stays
// disabled.
bool frameDialogReady(int id);

// Start-up of the desktop program, as the first instance listening for later starts' files;
// returns the exit code.
int runDesktop(QApplication& qapp, std::unique_ptr<SingleInstance> instance);

}  // namespace zolt

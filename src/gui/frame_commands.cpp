// The frame's share of the commands: the routing of every identifier, and the commands the
// frame handles itself (opening, recent files, scripts, run-time switches, edit commands).
#include <QApplication>
#include <QFileInfo>
#include <QMenu>

#include "app/application.h"
#include "app/command_routing.h"
#include "gui/document_window.h"
#include "gui/main_window.h"

namespace zolt {

using namespace command_ids;

// The frame's windows and lists as the routing sees them.
class FrameRouting : public CommandTargets {
public:
    explicit FrameRouting(MainWindow& frame) : frame_(frame) {}
    void runScriptEntry(int index) override { frame_.runScriptEntry(index); }
    bool frontDocumentHandles(int id) override {
        DocumentWindow* front = frame_.frontWindow();
        return front && front->handleCommand(id);
    }
    void openRecentFile(int index) override { frame_.openRecentFile(index); }
    // No display formats are saved yet: the Custom Format submenu is empty.
    void applySavedFormat(int) override {}
    bool frameHandles(int id) override { return frame_.frameCommand(id); }

private:
    MainWindow& frame_;
};

void MainWindow::runCommand(int id) {
    emit commandTriggered(id);
    FrameRouting routing(*this);
    routeCommand(id, routing);
    // Scripts and commands may have opened documents.
    showDocuments();
}

bool MainWindow::frameCommand(int id) {
    if (frameDialog(id) || windowCommand(id)) return true;
    if (const uint32_t bit = toggledFlag(id)) {
        toggleFlag(bit);
        return true;
    }
    switch (id) {
        case kOpen:
        case kOpenFolder:
            if (const QString path = choosePath(id == kOpenFolder); !path.isEmpty()) openPath(path);
            return true;
        case kClearRecent:
            recent_ = {};
            rebuildRecentFiles();
            return true;
        case kNewContainer:
            app_.newDocument();
            return true;
        case kExit:
            close();
            return true;
        case kUndo:
        case kCut:
        case kCopy:
        case kPaste:
            sendEditCommand(id);
            return true;
        default: {
            // The frame's rows whose windows (simulation, formats, cross peaks, help) are not part
            // of the program yet are taken and do nothing.
            const CommandRow* row = findCommand(id);
            return row && row->frame;
        }
    }
}

void MainWindow::openRecentFile(int index) {
    if (index < 0 || size_t(index) >= recent_.paths.size()) return;
    const QString path = QString::fromStdString(recent_.paths[size_t(index)]);
    if (QFileInfo::exists(path)) {
        openPath(path);
        return;
    }
    removeRecentFile(recent_, size_t(index));
    rebuildRecentFiles();
}

// The entry's text names the script, run as the run command of the scripts runs it.
void MainWindow::runScriptEntry(int index) {
    const QList<QAction*> entries = scriptsMenu_->actions();
    if (index < 0 || index >= entries.size()) return;
    app_.scriptHost().runScript(entries[index]->text().toStdString());
    scriptsRan();
}

void MainWindow::scriptsRan() {
    showDocuments();
    for (auto& [doc, window] : windows_) window->documentChanged();
}

// Undo, Cut, Copy and Paste nobody else took go to the widget with the keyboard focus.
void MainWindow::sendEditCommand(int id) {
    QWidget* focus = QApplication::focusWidget();
    if (!focus) return;
    const char* slot = id == kUndo ? "undo" : id == kCut ? "cut" : id == kCopy ? "copy" : "paste";
    if (focus->metaObject()->indexOfMethod((std::string(slot) + "()").c_str()) >= 0)
        QMetaObject::invokeMethod(focus, slot);
}

void MainWindow::toggleFlag(uint32_t bit) {
    app_.preferences().flags ^= bit;
}

}  // namespace zolt

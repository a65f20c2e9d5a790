// The frame's menus: built from the command table, enabled as each one opens, and the two
// lists filled at run time (recent files, scripts).
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>

#include "app/application.h"
#include "gui/console_window.h"
#include "gui/document_window.h"
#include "gui/main_window.h"

namespace zolt {

namespace {

// The text an item shows: its own, and beside it a key that is not its shortcut.
QString shownText(const CommandRow& row) {
    QString text = QString::fromUtf8(row.text);
    if (*row.shownKey) text += '\t' + QString::fromUtf8(row.shownKey);
    if (*row.toolKey) text += '\t' + QString::fromUtf8(row.toolKey);
    return text;
}

void enableAll(QMenu* menu) {
    for (QAction* action : menu->actions()) {
        action->setEnabled(true);
        if (QMenu* sub = action->menu()) enableAll(sub);
    }
}

}  // namespace

void MainWindow::buildMenus() {
    std::map<Menu, QMenu*> menus;
    std::map<std::pair<Menu, std::string>, QMenu*> submenus;
    for (const CommandRow& row : commandTable()) {
        QMenu*& top = menus[row.menu];
        if (!top) {
            top = menuBar()->addMenu(
                QString::fromUtf8(menuTitle(row.menu).data(), int(menuTitle(row.menu).size())));
            const Menu which = row.menu;
            QMenu* menu = top;
            connect(top, &QMenu::aboutToShow, this,
                    [this, menu, which] { updateMenu(menu, which); });
            // Shortcuts keep working between openings; the commands check themselves.
            connect(top, &QMenu::aboutToHide, this, [menu] { enableAll(menu); });
        }
        QMenu* target = top;
        if (*row.submenu) {
            QMenu*& sub = submenus[{row.menu, row.submenu}];
            if (!sub) sub = top->addMenu(QString::fromUtf8(row.submenu));
            target = sub;
        }
        if (row.id == kFirstRecentFile) {
            recentMenu_ = target;
        } else if (row.id == kFirstScript) {
            scriptsMenu_ = target;
        } else if (row.id == row.lastId) {
            addCommand(target, row);
        }
    }
    rebuildRecentFiles();
    rebuildScripts();
}

QAction* MainWindow::addCommand(QMenu* menu, const CommandRow& row) {
    QAction* action = menu->addAction(shownText(row));
    action->setData(row.id);
    QList<QKeySequence> keys;
    for (const char* key : {row.accelerator, row.secondAccelerator})
        if (*key) keys << QKeySequence(QString::fromUtf8(key));
    action->setShortcuts(keys);
    // Shortcuts reach the frame whichever of its windows has the focus.
    action->setShortcutContext(Qt::WindowShortcut);
    const int id = row.id;
    connect(action, &QAction::triggered, this, [this, id] { runCommand(id); });
    actions_[row.id] = action;
    return action;
}

FrameState MainWindow::frameState() const {
    FrameState s;
    s.flags = app_.preferences().flags;
    s.documents = int(windows_.size());
    s.frontDocument = frontWindow() != nullptr;
    s.focusWidget = QApplication::focusWidget() != nullptr;
    s.synchronisation = synchronisation_;
    s.consoleShown = console_ && console_->isVisible();
    return s;
}

// Every item starts disabled (the submenus' items too in Edit, View and Process); the frame,
// then the front document, enable theirs. Such a submenu opens when one of its items is on.
void MainWindow::updateMenu(QMenu* menu, Menu which) {
    if (which == Menu::Scripts) {
        rebuildScripts();
        return;
    }
    if (which > Menu::Window) return;
    const bool withSubmenus = which == Menu::Edit || which == Menu::View || which == Menu::Process;
    for (QAction* action : menu->actions()) {
        QMenu* sub = action->menu();
        if (!sub) {
            action->setEnabled(false);
        } else if (withSubmenus) {
            for (QAction* item : sub->actions()) item->setEnabled(false);
        }
    }
    applyItems(frameMenuItems(which, frameState()));
    if (DocumentWindow* front = frontWindow()) applyItems(front->menuItems(which));
    if (!withSubmenus) return;
    for (QAction* action : menu->actions())
        if (QMenu* sub = action->menu()) {
            const QList<QAction*> items = sub->actions();
            action->setEnabled(
                std::any_of(items.begin(), items.end(), [](QAction* a) { return a->isEnabled(); }));
        }
}

void MainWindow::applyItems(const std::vector<ItemState>& items) {
    for (const ItemState& item : items) {
        QAction* a = action(item.id);
        if (!a) continue;
        a->setEnabled(item.enabled && frameDialogReady(item.id));
        a->setCheckable(item.checked || a->isCheckable());
        a->setChecked(item.checked);
        if (!item.text.empty()) a->setText(QString::fromStdString(item.text));
    }
}

void MainWindow::rebuildRecentFiles() {
    if (!recentMenu_) return;
    recentMenu_->clear();
    for (size_t i = 0; i < recent_.titles.size() && i <= size_t(kLastRecentFile - kFirstRecentFile);
         ++i) {
        QAction* a = recentMenu_->addAction(QString::fromStdString(recent_.titles[i]));
        const int id = kFirstRecentFile + int(i);
        a->setData(id);
        connect(a, &QAction::triggered, this, [this, id] { runCommand(id); });
    }
    recentMenu_->addSeparator();
    addCommand(recentMenu_, *findCommand(command_ids::kClearRecent));
}

// The ".lua" files of the scripts folder by base name, identifiers from 5000 in list order.
void MainWindow::rebuildScripts() {
    if (!scriptsMenu_) return;
    scriptsMenu_->clear();
    const QDir folder(QString::fromStdString(app_.scriptsFolder()));
    const QStringList files = folder.entryList({"*.lua"}, QDir::Files, QDir::Name);
    for (int i = 0; i < files.size() && kFirstScript + i <= kLastScript; ++i) {
        QAction* a = scriptsMenu_->addAction(QFileInfo(files[i]).completeBaseName());
        const int id = kFirstScript + i;
        a->setData(id);
        connect(a, &QAction::triggered, this, [this, id] { runCommand(id); });
    }
}

}  // namespace zolt

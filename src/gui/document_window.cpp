#include "gui/document_window.h"

#include <QCloseEvent>
#include <QFileDialog>

#include "app/application.h"
#include "app/command_table.h"
#include "app/document_commands.h"
#include "document/document_file.h"
#include "document/folder_export.h"
#include "gui/levels_colors_dialog.h"
#include "gui/plot_view.h"

namespace zolt {

using namespace command_ids;

namespace {

bool isTool(int id) {
    return id >= kPointer && id <= kCrossHair;
}

bool enabledIn(const std::vector<ItemState>& items, int id) {
    for (const ItemState& item : items)
        if (item.id == id) return item.enabled;
    return false;
}

}  // namespace

DocumentWindow::DocumentWindow(Application& app, SpectrumDocument& document, QWidget* parent)
    : QMdiSubWindow(parent),
      app_(app),
      document_(document),
      view_(new PlotView(app, document, this)) {
    setWidget(view_);
    setWindowTitle(QString::fromStdString(dataSetTitle(document)));
    connect(view_, &PlotView::modified, this, &DocumentWindow::documentChanged);
    resize(820, 560);
}

bool DocumentWindow::handleCommand(int id) {
    const CommandRow* row = findCommand(id);
    if (!row || row->frame || !enabledIn(menuItems(row->menu), id)) return false;
    if (id == kClose) {
        close();
        return true;
    }
    if (isTool(id)) {
        view_->setTool(id);
        return true;
    }
    if (id == kExport) {
        exportPackage();
        return true;
    }
    if (id == kLevelsColors) {
        showLevelsColors();
        return true;
    }
    const DocumentCommand command = runDocumentCommand(app_, document_, id);
    if (!command.handled) return false;
    if (command.result.message)
        app_.platform().messageBox(command.result.message->caption, command.result.message->text);
    if (command.result.applied) documentChanged();
    return true;
}

std::vector<ItemState> DocumentWindow::menuItems(Menu menu) const {
    std::vector<ItemState> items = documentMenuItems(menu, document_);
    if (menu == Menu::Tools)
        for (int id = kPointer; id <= kCrossHair; ++id)
            items.push_back({id, true, view_->tool() == id, {}});
    return items;
}

void DocumentWindow::documentChanged() {
    setWindowTitle(QString::fromStdString(dataSetTitle(document_)));
    view_->documentChanged();
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    emit closing(this);
}

// Modeless, as the phase dialog: one per window, which it goes with.
void DocumentWindow::showLevelsColors() {
    if (!levelsColors_) {
        levelsColors_ = new LevelsColorsDialog(*view_, this);
        levelsColors_->setAttribute(Qt::WA_DeleteOnClose);
    }
    levelsColors_->show();
    levelsColors_->raise();
    levelsColors_->activateWindow();
}

// File > Export...: the document as a package folder, as the export script command writes it.
void DocumentWindow::exportPackage() {
    const QString folder = QFileDialog::getSaveFileName(this, "Export...");
    if (folder.isEmpty()) return;
    if (!zolt::exportPackage(document_, folder.toStdString()))
        app_.platform().messageBox(kSystemErrorCaption, kSystemErrorText);
}

}  // namespace zolt

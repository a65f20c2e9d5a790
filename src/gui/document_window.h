// The window of one document inside the frame: its plot view, the commands it takes and what
// it enables in the menus.
#pragma once

#include <QDialog>
#include <QMdiSubWindow>
#include <QPointer>
#include <vector>

#include "app/menu_enabling.h"

namespace zolt {

class Application;
class PlotView;
struct SpectrumDocument;

class DocumentWindow : public QMdiSubWindow {
    Q_OBJECT
public:
    DocumentWindow(Application& app, SpectrumDocument& document, QWidget* parent = nullptr);

    SpectrumDocument& document() { return document_; }
    PlotView* plotView() { return view_; }

    // The document's command handler: false when the command is not the document's or does
    // not apply to it now (a disabled item is never run).
    bool handleCommand(int id);
    // The document's menu updater: the items of the menu it enables and checks.
    std::vector<ItemState> menuItems(Menu menu) const;

    // Draws again and renames the window after the document changed.
    void documentChanged();

signals:
    // The window is closing: the frame lets its document go once the window is gone.
    void closing(DocumentWindow* window);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void exportPackage();
    void showLevelsColors();

    Application& app_;
    SpectrumDocument& document_;
    PlotView* view_;
    QPointer<QDialog> levelsColors_;
};

}  // namespace zolt

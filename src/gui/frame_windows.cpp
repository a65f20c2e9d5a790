// The frame's Window menu: tiling the document windows side by side or one above the other,
// cascading them again, and the synchronisation of tiled windows.
#include <QMdiArea>

#include "app/application.h"
#include "app/window_arrangement.h"
#include "gui/document_window.h"
#include "gui/main_window.h"
#include "gui/plot_view.h"

namespace zolt {

using namespace command_ids;

namespace {

std::vector<DocumentWindow*> frontFirst(MainWindow& frame, Application& app) {
    std::vector<DocumentWindow*> windows;
    for (const auto& doc : app.documentList())
        if (DocumentWindow* w = frame.windowOf(*doc)) windows.push_back(w);
    return windows;
}

}  // namespace

bool MainWindow::windowCommand(int id) {
    switch (id) {
        case kTileVertically:
            arrangeWindows(Arrangement::SideBySide);
            return true;
        case kTileHorizontally:
            arrangeWindows(Arrangement::OneAboveTheOther);
            return true;
        case kDoNotTile:
            arrangeWindows(Arrangement::Cascade);
            return true;
        case kSynchronize:
            synchronisation_ = synchronisation_ == 2 ? 0 : 2;
            return true;
        case kSmartMarks:
            synchronisation_ = synchronisation_ == 1 ? 0 : 1;
            return true;
        default:
            return false;
    }
}

// The windows leave the maximised state first: a tiled window has its own frame.
void MainWindow::arrangeWindows(Arrangement arrangement) {
    const std::vector<DocumentWindow*> windows = frontFirst(*this, app_);
    const QSize space = mdi_->viewport()->size();
    const int n = int(windows.size());
    const std::vector<WindowRect> rects =
        arrangement == Arrangement::Cascade
            ? cascadeWindows(n, space.width(), space.height())
            : tileWindows(
                  n, space.width(), space.height(),
                  arrangement == Arrangement::SideBySide ? Tiling::Vertical : Tiling::Horizontal);
    for (size_t i = 0; i < rects.size(); ++i) {
        DocumentWindow* w = windows[i];
        if (w->isMaximized() || w->isMinimized()) w->showNormal();
        w->setGeometry(rects[i].x, rects[i].y, rects[i].width, rects[i].height);
    }
    // Behind-to-front, so that the front window stays on top.
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) (*it)->raise();
    if (!windows.empty()) mdi_->setActiveSubWindow(windows.front());
}

// With Synchronize on, every other trace shows the ppm range the zoom tool chose.
void MainWindow::traceZoomed(DocumentWindow* window, double fromPpm, double toPpm) {
    if (synchronisation_ != 2) return;
    for (SpectrumDocument* doc :
         zoomTracesAlike(app_.documents(), window->document(), fromPpm, toPpm))
        if (DocumentWindow* other = windowOf(*doc)) other->documentChanged();
}

}  // namespace zolt

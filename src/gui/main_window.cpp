#include "gui/main_window.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMdiArea>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>

#include "app/application.h"
#include "app/automatic_processing.h"
#include "app/quit_prompt.h"
#include "app/window_arrangement.h"
#include "gui/document_window.h"
#include "gui/plot_view.h"
#include "gui/qt_platform.h"
#include "gui/single_instance.h"
#include "platform_qt/qt_settings_store.h"
#include "plot/picture_output.h"

namespace zolt {

MainWindow::MainWindow(Application& app, SettingsStore* settings, QWidget* parent)
    : QMainWindow(parent), app_(app), settings_(settings), mdi_(new QMdiArea(this)) {
    setWindowTitle("Zolt");
    setCentralWidget(mdi_);
    setAcceptDrops(true);
    statusBar();
    resize(1200, 800);
    if (settings_) recent_ = loadRecentFiles(*settings_);
    choosePath = [this](bool folder) {
        return folder ? QFileDialog::getExistingDirectory(this, "Open Folder")
                      : QFileDialog::getOpenFileName(this, "Open");
    };
    buildMenus();
    connect(mdi_, &QMdiArea::subWindowActivated, this,
            [this](QMdiSubWindow* sub) { activated(qobject_cast<DocumentWindow*>(sub)); });
    app_.setRedrawListener([this](SpectrumDocument& doc) {
        if (DocumentWindow* w = windowOf(doc)) w->documentChanged();
    });
}

// The windows go with the frame: no activation reaches the document list while they do.
MainWindow::~MainWindow() {
    disconnect(mdi_, nullptr, this, nullptr);
    app_.setRedrawListener({});
}

void MainWindow::openPath(const QString& path) {
    const size_t before = app_.documentList().size();
    app_.open(path.toStdString());
    if (app_.documentList().size() == before) return;
    const bool one = app_.documentList().size() == before + 1;
    const std::string title =
        one ? app_.frontDocument()->windowName : QFileInfo(path).fileName().toStdString();
    addRecentFile(recent_, title, QFileInfo(path).absoluteFilePath().toStdString());
    rebuildRecentFiles();
    showDocuments();
}

QAction* MainWindow::action(int id) const {
    auto it = actions_.find(id);
    return it == actions_.end() ? nullptr : it->second;
}

DocumentWindow* MainWindow::windowOf(const SpectrumDocument& document) const {
    auto it = windows_.find(&document);
    return it == windows_.end() ? nullptr : it->second;
}

DocumentWindow* MainWindow::frontWindow() const {
    SpectrumDocument* front = app_.frontDocument();
    return front ? windowOf(*front) : nullptr;
}

// Every document without a window gets one; the back ones first, so that the front document
// ends up the active window and the list keeps its order.
void MainWindow::showDocuments() {
    std::vector<SpectrumDocument*> missing;
    for (const auto& doc : app_.documentList())
        if (!windows_.contains(doc.get()) && !closing_.contains(doc.get()))
            missing.push_back(doc.get());
    std::reverse(missing.begin(), missing.end());
    for (SpectrumDocument* doc : missing) {
        auto* window = new DocumentWindow(app_, *doc);
        windows_[doc] = window;
        connect(window, &DocumentWindow::closing, this, &MainWindow::closeWindow);
        connect(window->plotView(), &PlotView::statusChanged, statusBar(),
                [this](const QString& text) { statusBar()->showMessage(text); });
        connect(window->plotView(), &PlotView::traceZoomed, this,
                [this, window](double from, double to) { traceZoomed(window, from, to); });
        mdi_->addSubWindow(window);
        // A document alone fills the work space; later ones cascade over it at their own size,
        // each a step below and right of the one before, so that every title stays in sight.
        const QSize space = mdi_->viewport()->size();
        if (windows_.size() == 1) {
            window->setGeometry(mdi_->viewport()->rect());
        } else {
            const WindowRect r =
                cascadeWindows(int(windows_.size()), space.width(), space.height()).front();
            window->setGeometry(r.x, r.y, r.width, r.height);
        }
        window->show();
        mdi_->setActiveSubWindow(window);
    }
}

// The window goes first, its document once the window's events are over.
void MainWindow::closeWindow(DocumentWindow* window) {
    SpectrumDocument* doc = &window->document();
    windows_.erase(doc);
    closing_.insert(doc);
    QTimer::singleShot(0, this, [this, window, doc] {
        delete window;
        app_.closeDocument(*doc);
        closing_.erase(doc);
    });
}

// The document list follows the active window: front-most first.
void MainWindow::activated(DocumentWindow* window) {
    if (window && windows_.contains(&window->document())) app_.bringToFront(window->document());
}

// Exit and the frame's close box: the quit prompt, then the recent files are kept.
void MainWindow::closeEvent(QCloseEvent* event) {
    if (!confirmQuit(app_.platform(), app_.documents())) {
        event->ignore();
        return;
    }
    if (settings_) saveRecentFiles(*settings_, recent_);
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

// The first dropped path: a folder as Open Folder, a file as Open (both through open).
void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile()) return;
    event->acceptProposedAction();
    openPath(urls.front().toLocalFile());
}

int runDesktop(QApplication& qapp, std::unique_ptr<SingleInstance> instance) {
    QtSettingsStore settings;
    QtPlatform platform;
    Application app(platform, loadPreferences(settings, ensureStartupScript));
    app.setSettingsStore(&settings);
    app.setAutomaticScripts(true);
    app.setPictureWriter(
        [&app](const SpectrumDocument& doc, const std::string& path, std::string_view type) {
            return writePicture(doc, path, type, {}, renderStyle(app.preferences()));
        });
    MainWindow frame(app, &settings);
    platform.setParent(&frame);
    QObject::connect(instance.get(), &SingleInstance::filesReceived, &frame,
                     [&frame](const QStringList& paths) {
                         for (const QString& path : paths) frame.openPath(path);
                         if (frame.isMinimized()) frame.showNormal();
                         frame.raise();
                         frame.activateWindow();
                     });
    frame.show();
    for (int i = 1; i < qapp.arguments().size(); ++i) frame.openPath(qapp.arguments()[i]);
    return qapp.exec();
}

}  // namespace zolt

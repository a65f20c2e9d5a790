#include "gui/main_window.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QStatusBar>

#include "app/application.h"
#include "app/headless_platform.h"
#include "gui/plot_view.h"

namespace zolt {

MainWindow::MainWindow(Application& app, QWidget* parent)
    : QMainWindow(parent), app_(app), mdi_(new QMdiArea(this)) {
    setWindowTitle("Zolt");
    setCentralWidget(mdi_);
    statusBar();
    resize(1200, 800);
}

MainWindow::~MainWindow() = default;

void MainWindow::openPath(const QString& path) {
    size_t before = app_.documentList().size();
    app_.open(path.toStdString());
    if (app_.documentList().size() != before) showDocuments();
}

void MainWindow::showDocuments() {
    SpectrumDocument* doc = app_.frontDocument();
    auto* view = new PlotView(app_, *doc);
    connect(view, &PlotView::statusChanged, statusBar(),
            [this](const QString& text) { statusBar()->showMessage(text); });
    QMdiSubWindow* sub = mdi_->addSubWindow(view);
    sub->setWindowTitle(QString::fromStdString(doc->windowName));
    sub->resize(820, 560);
    sub->show();
}

int runDesktop(QApplication& qapp) {
    HeadlessPlatform platform;
    Application app(platform);
    MainWindow frame(app);
    frame.show();
    for (int i = 1; i < qapp.arguments().size(); ++i) frame.openPath(qapp.arguments()[i]);
    return qapp.exec();
}

}  // namespace zolt

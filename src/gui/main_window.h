// The frame: one window with a multiple-document client area, one sub-window per document.
#pragma once

#include <QApplication>
#include <QMainWindow>
#include <memory>

class QMdiArea;

namespace zolt {

class Application;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(Application& app, QWidget* parent = nullptr);
    ~MainWindow() override;

    Application& application() { return app_; }
    // Opens a file or a data-set folder and shows its document.
    void openPath(const QString& path);

private:
    void showDocuments();

    Application& app_;
    QMdiArea* mdi_;
};

// Start-up of the desktop program; returns the exit code.
int runDesktop(QApplication& qapp);

}  // namespace zolt

// The plot inside a document window: draws the document's page with the renderer and turns
// the mouse and the tool keys into the document operations.
#pragma once

#include <QWidget>

namespace zolt {

class Application;
struct SpectrumDocument;

class PlotView : public QWidget {
    Q_OBJECT
public:
    PlotView(Application& app, SpectrumDocument& document, QWidget* parent = nullptr);

    SpectrumDocument& document() { return document_; }

    // The tool of the command table's Tools menu (850 Pointer ... 861 Cross-Hair).
    void setTool(int toolId);
    int tool() const { return tool_; }

public slots:
    // Draws again after an operation changed the document.
    void documentChanged();

signals:
    // The cursor's position as the status bar shows it (ppm, Hz and intensity).
    void statusChanged(const QString& text);
    // An interaction changed the document.
    void modified();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Application& app_;
    SpectrumDocument& document_;
    int tool_ = 850;
};

}  // namespace zolt

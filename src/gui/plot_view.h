// The plot inside a document window: draws the document's page with the renderer and turns
// the mouse and the tool keys into the document operations.
#pragma once

#include <QPixmap>
#include <QPoint>
#include <QWidget>
#include <functional>
#include <optional>

#include "plot/plot_pointer.h"

namespace zolt {

class Application;
struct SpectrumDocument;

class PlotView : public QWidget {
    Q_OBJECT
public:
    PlotView(Application& app, SpectrumDocument& document, QWidget* parent = nullptr);

    SpectrumDocument& document() { return document_; }

    // The tool of the command table's Tools menu (850 Pointer ... 861 Cross-Hair); other
    // identifiers are ignored.
    void setTool(int toolId);
    int tool() const { return tool_; }

    // A document drawn instead of the view's own (a trial of the Phase Correction dialog);
    // nullptr draws the document again.
    void setPreview(const SpectrumDocument* preview);
    const SpectrumDocument& shownDocument() const;

    // While set, a click in the plot goes to the handler instead of the tool.
    using PointHandler = std::function<void(const PlotPoint&)>;
    void setPointHandler(PointHandler handler) { pointHandler_ = std::move(handler); }
    // A vertical line drawn at this horizontal ppm (the dialog's pivot); nothing when unset.
    void setMarker(std::optional<double> ppm);

public slots:
    // Draws again after an operation changed the document.
    void documentChanged();
    // Draws again and tells the window the document was changed through the view.
    void documentEdited();

signals:
    // The cursor's position as the status bar shows it (ppm, Hz and intensity).
    void statusChanged(const QString& text);
    // An interaction changed the document.
    void modified();
    // A tool key or setTool chose another tool.
    void toolChanged(int toolId);
    // The zoom tool showed another horizontal ppm range of a trace (synchronised windows follow).
    void traceZoomed(double fromPpm, double toPpm);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    bool dragsRegions() const;
    void finishDrag(QPoint end);
    void zoomTo(const PlotSpan& span);
    void pickIn(const PlotSpan& span);
    void integrateOver(const PlotSpan& span);
    void paintOverlay(QPainter& painter);

    Application& app_;
    SpectrumDocument& document_;
    const SpectrumDocument* preview_ = nullptr;
    // The page as last drawn: the cross-hair and a drag's band move over it without drawing
    // the page again (a map's contours take tens of milliseconds). Null when out of date.
    QPixmap page_;
    int tool_ = 850;
    PointHandler pointHandler_;
    std::optional<double> marker_;
    std::optional<QPoint> cursor_;     // inside the view, for the cross-hair
    std::optional<QPoint> dragStart_;  // a drag of the zoom, picker or integrator
};

}  // namespace zolt

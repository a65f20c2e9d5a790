// The Phase Correction dialog: zero- and first-order sliders about a pivot picked in the plot,
// shown live on a copy of the data; the document changes only when the dialog is accepted.
#pragma once

#include <QDialog>
#include <QPointer>
#include <map>

#include "model/spectrum_document.h"
#include "operations/phase_operations.h"

class QComboBox;
class QLabel;
class QSlider;

namespace zolt {

class Application;
class PlotView;
struct PlotPoint;

class PhaseDialog : public QDialog {
    Q_OBJECT
public:
    // Modeless: while it is open a click in the view sets the pivot. The frame shows it.
    PhaseDialog(Application& app, PlotView& view, QWidget* parent = nullptr);
    ~PhaseDialog() override;

    // The f-index being corrected, and its trial (degrees, pivot as a point index).
    int dimension() const;
    void setDimension(int fIndex);
    PivotedPhase trial() const;
    void setZeroOrder(double degrees);
    void setFirstOrder(double degrees);
    // Keeps the trial's correction of the data; only the zero order shown changes.
    void setPivot(double point);

public slots:
    void accept() override;
    void reject() override;
    void turnBy180();
    void removeAll();
    void automatic();

private:
    void build();
    void showTrial();
    void refreshPreview();
    void pivotAt(const PlotPoint& p);
    void detach();
    size_t points(int fIndex) const;

    Application& app_;
    QPointer<PlotView> view_;
    SpectrumMatrix original_;   // the data when the dialog opened
    SpectrumDocument preview_;  // what the view draws meanwhile
    std::map<int, PivotedPhase> trials_;
    QComboBox* dimension_ = nullptr;
    QSlider* zero_ = nullptr;
    QSlider* first_ = nullptr;
    QLabel* zeroText_ = nullptr;
    QLabel* firstText_ = nullptr;
    QLabel* pivotText_ = nullptr;
};

}  // namespace zolt

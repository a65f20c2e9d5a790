#include "gui/phase_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "gui/plot_view.h"
#include "operations/document_axes.h"

namespace zolt {

namespace {

// The sliders move in tenths of a degree.
constexpr double kSliderSteps = 10.0;
constexpr int kZeroRange = 180;
constexpr int kFirstRange = 720;

double wrapDegrees(double degrees) {
    degrees = std::remainder(degrees, 360.0);
    return degrees <= -180.0 ? degrees + 360.0 : degrees;
}

double degreesOf(double radians) {
    return radians * 180.0 / 3.14159265358979323846;
}

int sliderValue(double degrees) {
    return static_cast<int>(std::lround(degrees * kSliderSteps));
}

}  // namespace

PhaseDialog::PhaseDialog(Application& app, PlotView& view, QWidget* parent)
    : QDialog(parent),
      app_(app),
      view_(&view),
      original_(view.document().matrix),
      preview_(view.document()) {
    setWindowTitle("Phase Correction");
    setModal(false);
    build();
    view.setPointHandler([this](const PlotPoint& p) { pivotAt(p); });
    showTrial();
}

PhaseDialog::~PhaseDialog() {
    detach();
}

void PhaseDialog::build() {
    const SpectrumDocument& doc = view_->document();
    dimension_ = new QComboBox;
    dimension_->setToolTip("Choose here which Dimension to Correct");
    for (int f = 3; f >= 1; --f)
        if (countsAsDimension(original_.dims[f]) && f > doc.source.highestTIndex)
            dimension_->addItem(QString("f%1").arg(f), f);
    const int horizontal = dimension_->findData(horizontalAxis(doc));
    if (horizontal >= 0) dimension_->setCurrentIndex(horizontal);
    dimension_->setEnabled(dimension_->count() > 1);

    zero_ = new QSlider(Qt::Horizontal);
    zero_->setRange(-kZeroRange * int(kSliderSteps), kZeroRange * int(kSliderSteps));
    first_ = new QSlider(Qt::Horizontal);
    first_->setRange(-kFirstRange * int(kSliderSteps), kFirstRange * int(kSliderSteps));
    zero_->setObjectName("zeroOrder");
    first_->setObjectName("firstOrder");
    first_->setToolTip("First-order correction. Define a pivot point for better results.");
    zeroText_ = new QLabel;
    firstText_ = new QLabel;
    pivotText_ = new QLabel;
    auto* turn = new QPushButton("180°");
    turn->setToolTip("Changes the zero order correction by 180");
    auto* remove = new QPushButton("Remove");
    remove->setToolTip("Removes all corrections in the current dimension");
    auto* automaticButton = new QPushButton("Automatic");
    turn->setObjectName("turn180");
    remove->setObjectName("removeAll");
    automaticButton->setObjectName("automatic");
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel("Zero order"), 0, 0);
    grid->addWidget(zero_, 0, 1);
    grid->addWidget(zeroText_, 0, 2);
    grid->addWidget(new QLabel("First order"), 1, 0);
    grid->addWidget(first_, 1, 1);
    grid->addWidget(firstText_, 1, 2);
    grid->addWidget(new QLabel("Pivot"), 2, 0);
    grid->addWidget(pivotText_, 2, 1, 1, 2);
    grid->setColumnMinimumWidth(1, 320);
    auto* row = new QHBoxLayout;
    row->addWidget(dimension_);
    row->addWidget(turn);
    row->addWidget(remove);
    row->addWidget(automaticButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(row);
    layout->addWidget(buttons);

    connect(zero_, &QSlider::valueChanged, this, [this](int v) { setZeroOrder(v / kSliderSteps); });
    connect(first_, &QSlider::valueChanged, this,
            [this](int v) { setFirstOrder(v / kSliderSteps); });
    connect(dimension_, &QComboBox::currentIndexChanged, this, [this] { showTrial(); });
    connect(turn, &QPushButton::clicked, this, &PhaseDialog::turnBy180);
    connect(remove, &QPushButton::clicked, this, &PhaseDialog::removeAll);
    connect(automaticButton, &QPushButton::clicked, this, &PhaseDialog::automatic);
    connect(buttons, &QDialogButtonBox::accepted, this, &PhaseDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PhaseDialog::reject);
}

int PhaseDialog::dimension() const {
    return dimension_->currentData().toInt();
}

void PhaseDialog::setDimension(int fIndex) {
    const int i = dimension_->findData(fIndex);
    if (i >= 0) dimension_->setCurrentIndex(i);
}

size_t PhaseDialog::points(int fIndex) const {
    return fIndex >= 1 && fIndex <= 3 ? original_.dims[fIndex].points : 0;
}

PivotedPhase PhaseDialog::trial() const {
    const auto it = trials_.find(dimension());
    return it == trials_.end() ? PivotedPhase{} : it->second;
}

void PhaseDialog::setZeroOrder(double degrees) {
    if (!dimension() || !std::isfinite(degrees)) return;
    trials_[dimension()].zeroDegrees = wrapDegrees(degrees);
    showTrial();
}

void PhaseDialog::setFirstOrder(double degrees) {
    if (!dimension() || !std::isfinite(degrees)) return;
    trials_[dimension()].firstDegrees = degrees;
    showTrial();
}

void PhaseDialog::setPivot(double point) {
    const int f = dimension();
    if (!f || !std::isfinite(point)) return;
    PivotedPhase& t = trials_[f];
    const double atFirst = zeroOrderAtFirstPoint(t, points(f));
    t.pivot = point;
    t.zeroDegrees = wrapDegrees(atFirst + t.firstDegrees * point / double(points(f)));
    showTrial();
}

void PhaseDialog::pivotAt(const PlotPoint& p) {
    const int f = dimension();
    if (!f || (f != p.fx && f != p.fy)) return;
    const DimensionRecord& d = original_.dims[f];
    const int64_t k = pointOfPpm(d, f == p.fx ? p.x : p.y);
    setPivot(static_cast<double>(std::clamp<int64_t>(k, 0, int64_t(d.points) - 1)));
}

void PhaseDialog::turnBy180() {
    setZeroOrder(trial().zeroDegrees + 180.0);
}

void PhaseDialog::removeAll() {
    const int f = dimension();
    if (!f) return;
    trials_[f] = removingPhase(original_.dims[f], trial().pivot);
    trials_[f].zeroDegrees = wrapDegrees(trials_[f].zeroDegrees);
    showTrial();
}

// The automatic correction of the data as they were when the dialog opened, read back as the
// change of each axis' stored phase.
void PhaseDialog::automatic() {
    preview_.matrix = original_;
    if (!automaticPhase(preview_, false).applied) return;
    for (int i = 0; i < dimension_->count(); ++i) {
        const int f = dimension_->itemData(i).toInt();
        const DimensionRecord &before = original_.dims[f], &after = preview_.matrix.dims[f];
        PivotedPhase& t = trials_[f];
        t.firstDegrees = degreesOf(double(after.phase1) - before.phase1);
        const double atFirst = degreesOf(double(after.phase0) - before.phase0);
        t.zeroDegrees = wrapDegrees(atFirst + t.firstDegrees * t.pivot / double(points(f)));
    }
    showTrial();
}

// The controls follow the trial of the chosen dimension, then the view shows it.
void PhaseDialog::showTrial() {
    const PivotedPhase t = trial();
    const int firstValue = sliderValue(t.firstDegrees);
    {
        const QSignalBlocker blockZero(zero_), blockFirst(first_);
        zero_->setValue(sliderValue(t.zeroDegrees));
        if (std::abs(firstValue) > first_->maximum())
            first_->setRange(-std::abs(firstValue), std::abs(firstValue));
        first_->setValue(firstValue);
    }
    zeroText_->setText(QString("%1°").arg(t.zeroDegrees, 0, 'f', 1));
    firstText_->setText(QString("%1°").arg(t.firstDegrees, 0, 'f', 1));
    const int f = dimension();
    const double pivotPpm = f ? ppmOfPoint(original_.dims[f], t.pivot) : 0.0;
    pivotText_->setText(QString("%1 ppm (point %2): click the spectrum to move it")
                            .arg(pivotPpm, 0, 'f', 3)
                            .arg(t.pivot, 0, 'f', 0));
    refreshPreview();
    if (view_)
        view_->setMarker(f && f == horizontalAxis(view_->document())
                             ? std::optional<double>(pivotPpm)
                             : std::nullopt);
}

void PhaseDialog::refreshPreview() {
    if (!view_) return;
    const SpectrumDocument& doc = view_->document();
    // What the plot shows besides the data may have changed meanwhile (a zoom).
    preview_.page = doc.page;
    preview_.peaks = doc.peaks;
    preview_.integrals = doc.integrals;
    preview_.marks = doc.marks;
    preview_.matrix = original_;
    for (const auto& [f, t] : trials_)
        changeDocumentPhaseDegrees(preview_, zeroOrderAtFirstPoint(t, points(f)), t.firstDegrees,
                                   f);
    view_->setPreview(&preview_);
}

void PhaseDialog::accept() {
    detach();
    if (view_) {
        SpectrumDocument& doc = view_->document();
        bool changed = false;
        for (const auto& [f, t] : trials_)
            if (t.zeroDegrees != 0.0 || t.firstDegrees != 0.0)
                changed |= changeDocumentPhaseDegrees(doc, zeroOrderAtFirstPoint(t, points(f)),
                                                      t.firstDegrees, f)
                               .applied;
        if (changed) view_->documentEdited();
    }
    QDialog::accept();
}

void PhaseDialog::reject() {
    detach();
    QDialog::reject();
}

// The view draws its own document again and its clicks go back to its tool.
void PhaseDialog::detach() {
    if (!view_) return;
    view_->setPreview(nullptr);
    view_->setPointHandler({});
    view_->setMarker(std::nullopt);
}

}  // namespace zolt

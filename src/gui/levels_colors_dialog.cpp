#include "gui/levels_colors_dialog.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include "gui/plot_view.h"
#include "model/spectrum_document.h"
#include "operations/page_style_operations.h"
#include "plot/plot_frame.h"

namespace zolt {

namespace {

Rgb16 rgb16(const QColor& c) {
    const QRgba64 v = c.rgba64();
    return {v.red(), v.green(), v.blue()};
}

QIcon swatch(const std::array<uint16_t, 3>& rgb) {
    QPixmap square(28, 16);
    square.fill(pageColor(rgb));
    return QIcon(square);
}

}  // namespace

LevelsColorsDialog::LevelsColorsDialog(PlotView& view, QWidget* parent)
    : QDialog(parent),
      view_(&view),
      opened_(levelsColorsState(view.document().page)),
      openedFlags_(view.document().flags) {
    setWindowTitle("Levels & Colors");
    chooseColor = [this](const QColor& current, const QString& title) {
        return QColorDialog::getColor(current, this, title);
    };
    build();
    showValues();
}

QWidget* LevelsColorsDialog::stepper(const char* name, const char* tip, QLabel*& value,
                                     const std::function<void(int)>& step) {
    auto* box = new QWidget;
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    value = new QLabel;
    value->setObjectName(name);
    value->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setMinimumWidth(110);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(value, 1);
    for (int direction : {-1, 1}) {
        auto* arrow = new QToolButton;
        arrow->setObjectName(QString(name) + (direction > 0 ? "Up" : "Down"));
        arrow->setArrowType(direction > 0 ? Qt::UpArrow : Qt::DownArrow);
        arrow->setAutoRepeat(true);
        connect(arrow, &QToolButton::clicked, this, [step, direction] { step(direction); });
        row->addWidget(arrow);
    }
    box->setToolTip(tip);
    return box;
}

void LevelsColorsDialog::build() {
    using Tips = LevelsColorsToolTips;
    plotMode_ = new QComboBox;
    plotMode_->setObjectName("plotMode");
    plotMode_->setToolTip(Tips::plotMode);
    for (const char* name : kPlotModeNames) plotMode_->addItem(name);
    connect(plotMode_, &QComboBox::activated, this, [this](int index) {
        change([index](SpectrumDocument& d) { choosePlotMode(d.page.plots.front(), index); });
    });

    auto levels = [this](bool positive) {
        return [this, positive](int direction) {
            change([positive, direction](SpectrumDocument& d) {
                int8_t& count = positive ? d.page.plots.front().positiveLevels
                                         : d.page.plots.front().negativeLevels;
                count = stepLevelCount(count, direction);
            });
        };
    };
    QWidget* positive = stepper("positiveLevels", Tips::positiveLevels, positive_, levels(true));
    QWidget* negative = stepper("negativeLevels", Tips::negativeLevels, negative_, levels(false));
    QWidget* threshold = stepper("threshold", Tips::threshold, threshold_, [this](int direction) {
        change([direction](SpectrumDocument& d) {
            float& t = d.page.plots.front().threshold;
            t = stepThreshold(t, direction);
        });
    });
    QWidget* ratio = stepper("ratio", Tips::ratio, ratio_, [this](int direction) {
        change([direction](SpectrumDocument& d) {
            DisplayParameters& plot = d.page.plots.front();
            plot.ratio = stepRatio(plot.ratio, direction, plot.hasVertical);
        });
    });

    mainColor_ = new QPushButton("Main");
    mainColor_->setObjectName("mainColor");
    mainColor_->setToolTip(Tips::mainColor);
    auxiliaryColor_ = new QPushButton("Auxiliary");
    auxiliaryColor_->setObjectName("auxiliaryColor");
    auxiliaryColor_->setToolTip(Tips::auxiliaryColor);
    connect(mainColor_, &QPushButton::clicked, this, [this] { pickColor(true); });
    connect(auxiliaryColor_, &QPushButton::clicked, this, [this] { pickColor(false); });
    auto* colors = new QHBoxLayout;
    colors->addWidget(mainColor_);
    colors->addWidget(auxiliaryColor_);

    auto* form = new QFormLayout;
    form->addRow("Plot mode", plotMode_);
    form->addRow("Positive levels", positive);
    form->addRow("Negative levels", negative);
    form->addRow("Threshold", threshold);
    form->addRow("Ratio", ratio);
    form->addRow("Colors", colors);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* undoButton = buttons->addButton("Undo", QDialogButtonBox::ResetRole);
    undoButton->setObjectName("undo");
    undoButton->setToolTip(Tips::undo);
    connect(undoButton, &QPushButton::clicked, this, &LevelsColorsDialog::undo);
    connect(buttons, &QDialogButtonBox::accepted, this, &LevelsColorsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &LevelsColorsDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

// Every control's edit of the main plot, then the view and the controls show the result.
void LevelsColorsDialog::change(const std::function<void(SpectrumDocument&)>& edit) {
    if (!view_ || view_->document().page.plots.empty()) return;
    edit(view_->document());
    view_->documentChanged();
    showValues();
}

void LevelsColorsDialog::pickColor(bool main) {
    if (!view_) return;
    const PageRecord& page = view_->document().page;
    const QColor current = pageColor(main ? page.color1 : page.color2);
    const QColor chosen = chooseColor(current, main ? "Main Color" : "Auxiliary Color");
    if (!chosen.isValid()) return;
    const std::optional<Rgb16> rgb = rgb16(chosen);
    if (setPlotColours(view_->document(), main ? rgb : std::nullopt, main ? std::nullopt : rgb)
            .applied)
        view_->documentChanged();
    showValues();
}

void LevelsColorsDialog::undo() {
    if (!view_) return;
    restoreLevelsColors(view_->document().page, opened_);
    view_->documentChanged();
    showValues();
}

void LevelsColorsDialog::showValues() {
    if (!view_) return;
    const LevelsColorsState now = levelsColorsState(view_->document().page);
    {
        const QSignalBlocker block(plotMode_);
        plotMode_->setCurrentIndex(int(now.plotMode) < plotMode_->count() ? int(now.plotMode) : 0);
    }
    positive_->setText(QString::number(now.positiveLevels));
    negative_->setText(QString::number(now.negativeLevels));
    threshold_->setText(QString::number(now.threshold, 'g', 6));
    ratio_->setText(QString::number(now.ratio, 'f', 3));
    mainColor_->setIcon(swatch(now.color1));
    auxiliaryColor_->setIcon(swatch(now.color2));
}

// The changes stay; the window learns of them.
void LevelsColorsDialog::accept() {
    if (view_) view_->documentEdited();
    QDialog::accept();
}

void LevelsColorsDialog::reject() {
    if (view_) {
        undo();
        view_->document().flags = openedFlags_;
    }
    QDialog::reject();
}

}  // namespace zolt

// The Levels & Colors dialog: the plot mode, the contour levels, the threshold, the ratio and
// the two colours of the front document's main plot. Every change goes through the rules of
// display/levels_colors.h and shows at once; OK keeps the changes, Cancel undoes them.
#pragma once

#include <QColor>
#include <QDialog>
#include <QPointer>
#include <functional>

#include "display/levels_colors.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace zolt {

class PlotView;
struct SpectrumDocument;

class LevelsColorsDialog : public QDialog {
    Q_OBJECT
public:
    // The dialog works on the document the view draws; the view's window parents it.
    explicit LevelsColorsDialog(PlotView& view, QWidget* parent = nullptr);

    // Asks for a colour (the current one and the dialog's title given); an invalid colour
    // keeps the current one. Replaceable for tests.
    std::function<QColor(const QColor& current, const QString& title)> chooseColor;

public slots:
    void accept() override;
    void reject() override;
    // Undoes all changes since the dialog was opened.
    void undo();

private:
    void build();
    QWidget* stepper(const char* name, const char* tip, QLabel*& value,
                     const std::function<void(int)>& step);
    void change(const std::function<void(SpectrumDocument&)>& edit);
    void pickColor(bool main);
    void showValues();

    QPointer<PlotView> view_;
    LevelsColorsState opened_;
    uint32_t openedFlags_ = 0;  // the document's flags word: Cancel leaves it unmodified
    QComboBox* plotMode_ = nullptr;
    QLabel* positive_ = nullptr;
    QLabel* negative_ = nullptr;
    QLabel* threshold_ = nullptr;
    QLabel* ratio_ = nullptr;
    QPushButton* mainColor_ = nullptr;
    QPushButton* auxiliaryColor_ = nullptr;
};

}  // namespace zolt

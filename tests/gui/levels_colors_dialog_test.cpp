// The Levels & Colors dialog on real spectra: its arrows, list and colour buttons change the main
// plot as the rules say and the view shows it at once; Undo and Cancel bring back exactly what
// was there when it opened.
#include "gui/levels_colors_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "app/application.h"
#include "app/headless_platform.h"
#include "document/document_file.h"
#include "gui/plot_view.h"
#include "io/plist_value.h"
#include "io/plist_writer.h"
#include "test_data.h"

using namespace zolt;

namespace {

std::string documentText(const SpectrumDocument& doc) {
    plist::Value* tree = buildDocumentTree(doc);
    std::string text = plist::write(tree);
    plist::release(tree);
    return text;
}

struct DialogSetup {
    HeadlessPlatform platform;
    Application app{platform};
    std::unique_ptr<SpectrumDocument> doc;
    std::unique_ptr<PlotView> view;
    std::unique_ptr<LevelsColorsDialog> dialog;

    explicit DialogSetup(const char* set) : doc(testdata::openTransformed(set)) {
        if (!doc) return;
        view = std::make_unique<PlotView>(app, *doc);
        view->resize(700, 500);
        view->show();
        dialog = std::make_unique<LevelsColorsDialog>(*view);
        dialog->show();
    }
    void click(const char* name, int times = 1) {
        auto* button = dialog->findChild<QAbstractButton*>(name);
        QVERIFY(button);
        for (int i = 0; i < times; ++i) button->click();
    }
    QString shown(const char* name) { return dialog->findChild<QLabel*>(name)->text(); }
    DisplayParameters& plot() { return doc->page.plots.front(); }
};

}  // namespace

class LevelsColorsDialogTest : public QObject {
    Q_OBJECT
private slots:
    void controlsFollowTheRulesAndUndoRestores() {
        DialogSetup s("cyclosporin-hsqc");
        QVERIFY(s.doc);
        QVERIFY(s.plot().hasVertical);
        const std::string opened = documentText(*s.doc);
        const QImage before = s.view->grab().toImage();
        const LevelsColorsState start = levelsColorsState(s.doc->page);

        s.click("thresholdUp", 2);
        QCOMPARE(s.plot().threshold, stepThreshold(stepThreshold(start.threshold, 1), 1));
        s.click("positiveLevelsUp", 3);
        s.click("negativeLevelsDown", 200);
        QCOMPARE(int(s.plot().positiveLevels), start.positiveLevels + 3);
        QCOMPARE(int(s.plot().negativeLevels), 0);
        QCOMPARE(s.shown("negativeLevels"), QString("0"));
        s.click("ratioDown", 100);  // a map's ratio stops at 1.15
        QCOMPARE(s.plot().ratio, 1.15f);
        QCOMPARE(s.shown("ratio"), QString("1.150"));
        auto* mode = s.dialog->findChild<QComboBox*>("plotMode");
        QCOMPARE(mode->itemText(6), QString("Chessboard"));
        QCOMPARE(mode->toolTip(), QString("Plot Mode for this Spectrum"));
        emit mode->activated(6);
        QCOMPARE(s.plot().flags & display_flags::kPlotModeMask, 6u);
        s.dialog->chooseColor = [](const QColor&, const QString&) { return QColor(Qt::red); };
        s.click("auxiliaryColor");
        QCOMPARE(s.doc->page.color2, (std::array<uint16_t, 3>{65535, 0, 0}));
        QCOMPARE(s.dialog->findChild<QPushButton*>("auxiliaryColor")->toolTip(),
                 QString("auxiliary color"));
        QVERIFY(s.view->grab().toImage() != before);  // shown at once

        s.click("undo");
        QCOMPARE(s.dialog->findChild<QPushButton*>("undo")->toolTip(),
                 QString("Undoes all changes since the dialog was opened"));
        QCOMPARE(s.view->grab().toImage(), before);
        // The document file would hold the same page; only the colour marked it modified.
        s.doc->flags &= ~document_flags::kModified;
        QCOMPARE(documentText(*s.doc), opened);
    }

    void cancelUndoesAndOkKeeps() {
        DialogSetup s("aspirin-1h");
        QVERIFY(s.doc);
        const std::string opened = documentText(*s.doc);
        const uint32_t flags = s.doc->flags;
        const float ratio = s.plot().ratio;
        // A trace's ratio moves by 0.005.
        s.click("ratioUp");
        QCOMPARE(s.plot().ratio, stepRatio(ratio, 1, false));
        s.click("thresholdDown");
        s.dialog->chooseColor = [](const QColor&, const QString&) { return QColor(Qt::blue); };
        s.click("mainColor");
        s.dialog->reject();
        QCOMPARE(documentText(*s.doc), opened);
        QCOMPARE(s.doc->flags, flags);

        s.dialog = std::make_unique<LevelsColorsDialog>(*s.view);
        s.click("thresholdDown");
        const float kept = s.plot().threshold;
        s.dialog->accept();
        QCOMPARE(s.plot().threshold, kept);
        QVERIFY(documentText(*s.doc) != opened);
    }
};

QTEST_MAIN(LevelsColorsDialogTest)
#include "levels_colors_dialog_test.moc"

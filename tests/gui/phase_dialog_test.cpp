// The Phase Correction dialog: accepting it equals the phase command with the same angles, and
// cancelling leaves the document as it was, whatever the trial showed meanwhile.
#include "gui/phase_dialog.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <cstring>

#include "app/application.h"
#include "app/headless_platform.h"
#include "document/document_file.h"
#include "gui/plot_view.h"
#include "io/plist_value.h"
#include "io/plist_writer.h"
#include "operations/document_axes.h"
#include "plot/page_renderer.h"
#include "test_data.h"

using namespace zolt;

namespace {

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

bool samePoints(const SpectrumMatrix& a, const SpectrumMatrix& b) {
    for (int f = 1; f <= 3; ++f)
        if (a.dims[f].phase0 != b.dims[f].phase0 || a.dims[f].phase1 != b.dims[f].phase1)
            return false;
    return sameBits(a.re, b.re) && sameBits(a.im, b.im);
}

// What the document file would keep: the processing record, the axes with their phases.
std::string documentText(const SpectrumDocument& doc) {
    plist::Value* tree = buildDocumentTree(doc);
    std::string text = plist::write(tree);
    plist::release(tree);
    return text;
}

struct PhasingSetup {
    HeadlessPlatform platform;
    Application app{platform};
    std::unique_ptr<SpectrumDocument> doc = testdata::openTransformed("aspirin-1h");
    std::unique_ptr<PlotView> view;

    PhasingSetup() {
        if (!doc) return;
        view = std::make_unique<PlotView>(app, *doc);
        view->resize(800, 500);
        view->show();
    }
    QPoint pixelOf(double ppm) const {
        const double x = drawnMainPlot(*doc, view->size())->frame.x.front().pixel(ppm);
        return QPoint(int(std::lround(x)), 200);
    }
};

}  // namespace

class PhaseDialogTest : public QObject {
    Q_OBJECT
private slots:
    void acceptingEqualsThePhaseCommandWithTheSameAngles() {
        PhasingSetup s;
        QVERIFY(s.doc);
        const SpectrumMatrix before = s.doc->matrix;
        const DimensionRecord& axis = before.dims[horizontalAxis(*s.doc)];
        PhaseDialog dialog(s.app, *s.view);
        dialog.show();
        QTest::mouseClick(s.view.get(), Qt::LeftButton, {}, s.pixelOf(2.29));
        const double pivot = dialog.trial().pivot;
        QVERIFY(std::fabs(pivot - double(pointOfPpm(axis, 2.29))) < axis.points / 700.0);
        dialog.findChild<QSlider*>("zeroOrder")->setValue(305);
        dialog.findChild<QSlider*>("firstOrder")->setValue(-1203);
        QCOMPARE(dialog.trial().zeroDegrees, 30.5);
        QCOMPARE(dialog.trial().firstDegrees, -120.3);
        // The view shows the trial; the document is untouched until the dialog is accepted.
        QVERIFY(!sameBits(s.view->shownDocument().matrix.re, before.re));
        QVERIFY(samePoints(s.doc->matrix, before));

        QSignalSpy modified(s.view.get(), &PlotView::modified);
        dialog.accept();
        QCOMPARE(modified.count(), 1);
        QCOMPARE(&s.view->shownDocument(), s.doc.get());

        SpectrumDocument& scripted = s.app.addDocument(testdata::openTransformed("aspirin-1h"));
        const double zero = 30.5 - (-120.3) * pivot / double(axis.points);
        const QString call = QString::asprintf("phase(%.17g, %.17g)", zero, -120.3);
        QVERIFY(s.app.scriptHost().runChunk(call.toStdString(), "input"));
        QVERIFY(samePoints(s.doc->matrix, scripted.matrix));
        QVERIFY(!samePoints(s.doc->matrix, before));
        QCOMPARE(documentText(*s.doc), documentText(scripted));
    }

    void cancellingLeavesTheDocumentAsItWas() {
        PhasingSetup s;
        QVERIFY(s.doc);
        const SpectrumMatrix before = s.doc->matrix;
        const std::string text = documentText(*s.doc);
        PhaseDialog dialog(s.app, *s.view);
        dialog.show();
        dialog.findChild<QSlider*>("firstOrder")->setValue(450);
        dialog.findChild<QPushButton*>("turn180")->click();
        QCOMPARE(dialog.trial().zeroDegrees, 180.0);
        dialog.findChild<QPushButton*>("automatic")->click();
        QVERIFY(dialog.trial().firstDegrees != 45.0);
        dialog.findChild<QPushButton*>("removeAll")->click();
        QSignalSpy modified(s.view.get(), &PlotView::modified);
        dialog.reject();
        QCOMPARE(modified.count(), 0);
        QVERIFY(samePoints(s.doc->matrix, before));
        QCOMPARE(documentText(*s.doc), text);
        QCOMPARE(&s.view->shownDocument(), s.doc.get());
        // The view's clicks belong to its tool again.
        QTest::mouseClick(s.view.get(), Qt::LeftButton, {}, s.pixelOf(2.29));
        QCOMPARE(dialog.trial().pivot, 0.0);
    }
};

QTEST_MAIN(PhaseDialogTest)
#include "phase_dialog_test.moc"

// The plot view draws the document it shows and turns drags and tool keys into operations.
#include "gui/plot_view.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>

#include "app/application.h"
#include "app/headless_platform.h"
#include "gui/plot_tools.h"
#include "operations/display_operations.h"
#include "operations/document_axes.h"
#include "plot/page_renderer.h"
#include "test_data.h"

using namespace zolt;

namespace {

// Aspirin in a view of 800 x 500 pixels, with what a test needs to aim at its tallest line.
struct AspirinView {
    std::unique_ptr<SpectrumDocument> doc = testdata::openTransformed("aspirin-1h");
    HeadlessPlatform platform;
    Application app{platform};
    std::unique_ptr<PlotView> view;
    SegmentMap axis;
    double tallestPpm = 0.0;

    AspirinView() {
        if (!doc) return;
        view = std::make_unique<PlotView>(app, *doc);
        view->resize(800, 500);
        view->show();
        const DimensionRecord& d = doc->matrix.dims[horizontalAxis(*doc)];
        const auto top =
            std::max_element(doc->matrix.re.begin(), doc->matrix.re.begin() + d.points);
        tallestPpm = ppmOfPoint(d, double(top - doc->matrix.re.begin()));
        axis = drawnMainPlot(*doc, view->size())->frame.x.front();
    }
    QPoint at(double ppm) const { return QPoint(int(std::lround(axis.pixel(ppm))), 250); }
    double ppmPerPixel() const { return std::fabs(axis.ppm(1.0) - axis.ppm(0.0)); }
    void drag(double fromPpm, double toPpm) {
        QTest::mousePress(view.get(), Qt::LeftButton, {}, at(fromPpm));
        QTest::mouseMove(view.get(), at((fromPpm + toPpm) / 2));
        QTest::mouseMove(view.get(), at(toPpm));
        QTest::mouseRelease(view.get(), Qt::LeftButton, {}, at(toPpm));
    }
};

}  // namespace

class PlotViewTest : public QObject {
    Q_OBJECT
private slots:
    void drawsTheTransformedTrace() {
        auto doc = testdata::openTransformed("aspirin-1h");
        QVERIFY(doc);
        HeadlessPlatform platform;
        Application app(platform);
        PlotView view(app, *doc);
        view.resize(800, 500);
        QImage image = view.grab().toImage();
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qGray(image.pixel(x, y)) < 128) ++dark;
        QVERIFY(dark > 800);  // at least a trace across the width
    }

    void toolKeysSelectTheirToolsAndOtherKeysDoNot() {
        AspirinView v;
        QVERIFY(v.doc);
        QSignalSpy changed(v.view.get(), &PlotView::toolChanged);
        const std::pair<char, int> keys[] = {{'z', 851}, {'c', 852}, {'x', 861}, {'i', 856},
                                             {'v', 854}, {'j', 855}, {'m', 853}, {'w', 860},
                                             {'a', 859}, {'f', 858}, {'d', 857}};
        for (auto [key, tool] : keys) {
            QTest::keyClick(v.view.get(), key);
            QCOMPARE(v.view->tool(), tool);
        }
        QTest::keyClick(v.view.get(), Qt::Key_Escape);
        QCOMPARE(v.view->tool(), tools::kPointer);
        QTest::keyClick(v.view.get(), 'q');
        v.view->setTool(42);
        QCOMPARE(v.view->tool(), tools::kPointer);
        QCOMPARE(changed.count(), 12);
    }

    void statusNamesThePpmUnderTheCursor() {
        AspirinView v;
        QVERIFY(v.doc);
        QSignalSpy status(v.view.get(), &PlotView::statusChanged);
        QTest::mouseMove(v.view.get(), v.at(v.tallestPpm));
        QVERIFY(!status.isEmpty());
        const QStringList words = status.last().at(0).toString().split(' ', Qt::SkipEmptyParts);
        QCOMPARE(words.size(), 6);
        QCOMPARE(words[1], QString("ppm"));
        QCOMPARE(words[3], QString("Hz"));
        QCOMPARE(words[4], QString("intensity"));
        QVERIFY(std::fabs(words[0].toDouble() - v.tallestPpm) <= v.ppmPerPixel());
    }

    void zoomDragShowsTheDraggedRangeAndKeepsTheVerticalScale() {
        AspirinView v;
        QVERIFY(v.doc);
        const double pixel = v.ppmPerPixel();
        const float threshold = v.doc->page.plots[0].threshold;
        v.view->setTool(tools::kZoom);
        v.drag(8.2, 6.8);
        const std::vector<float>& ppm = v.doc->page.plots[0].horizontal.ppm;
        QCOMPARE(ppm.size(), size_t(2));
        QVERIFY(std::fabs(ppm[0] - 6.8) <= pixel && std::fabs(ppm[1] - 8.2) <= pixel);
        QCOMPARE(v.doc->page.plots[0].threshold, threshold);
    }

    void peakPickerDragFindsTheTallestLine() {
        AspirinView v;
        QVERIFY(v.doc);
        v.doc->peaks.oneD.clear();
        amplifyScale(*v.doc, 0.5);  // the line inside the plot: a line beyond its top is not picked
        QSignalSpy modified(v.view.get(), &PlotView::modified);
        v.view->setTool(tools::kPeakPicker);
        v.drag(v.tallestPpm + 0.05, v.tallestPpm - 0.05);
        QCOMPARE(modified.count(), 1);
        const std::vector<float>& peaks = v.doc->peaks.oneD;
        QVERIFY(std::any_of(peaks.begin(), peaks.end(),
                            [&](float p) { return std::fabs(p - v.tallestPpm) < 0.002; }));
        QVERIFY(std::all_of(peaks.begin(), peaks.end(), [&](float p) {
            return std::fabs(p - v.tallestPpm) < 0.05 + v.ppmPerPixel();
        }));
    }

    void integratorDragAddsOneRegionWithTheDraggedLimits() {
        AspirinView v;
        QVERIFY(v.doc);
        const size_t before = v.doc->integrals.size();
        QSignalSpy modified(v.view.get(), &PlotView::modified);
        v.view->setTool(tools::kIntegrator);
        v.drag(7.0, 7.5);
        QCOMPARE(v.doc->integrals.size(), before + 1);
        QCOMPARE(modified.count(), 1);
        const IntegralRegion& r = v.doc->integrals.back();
        QCOMPARE(r.dimensions(), 1);
        QVERIFY(std::fabs(r.fields[0] - 7.5) <= v.ppmPerPixel());
        QVERIFY(std::fabs(r.fields[1] - 7.0) <= v.ppmPerPixel());
        v.drag(7.2, 7.2);  // a click adds nothing
        QCOMPARE(v.doc->integrals.size(), before + 1);
    }
};

QTEST_MAIN(PlotViewTest)
#include "plot_view_test.moc"

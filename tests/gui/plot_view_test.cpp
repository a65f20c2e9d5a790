// The plot view draws the document it shows.
#include "gui/plot_view.h"

#include <QImage>
#include <QTest>

#include "app/application.h"
#include "app/headless_platform.h"
#include "test_data.h"

using namespace zolt;

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
};

QTEST_MAIN(PlotViewTest)
#include "plot_view_test.moc"

// The desktop's message boxes and clipboard as the program uses them.
#include "gui/qt_platform.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QMimeData>
#include <QTest>
#include <QTimer>

using namespace zolt;

class QtPlatformTest : public QObject {
    Q_OBJECT
private slots:
    void copyHoldsTextAndPropertyList() {
        QtPlatform platform;
        // 8-bit text with its "\r\n" and a micro sign, as a table leaves the program.
        const std::string text = "1\t7.26\t\xb5V\r\n2\t2.31\t0.5\r\n";
        const std::string xml =
            "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><array/></plist>\n";
        platform.setClipboardText(text);
        platform.setClipboardPropertyList(xml);
        const QMimeData* data = QGuiApplication::clipboard()->mimeData();
        QVERIFY(data->hasText());
        QCOMPARE(data->data(kPropertyListMime).toStdString(), xml);
        QCOMPARE(platform.clipboardText(), text);
        // A copy of text alone leaves no table of an earlier copy behind.
        platform.setClipboardText("x");
        QVERIFY(!QGuiApplication::clipboard()->mimeData()->hasFormat(kPropertyListMime));
        QCOMPARE(platform.clipboardText(), "x");
    }

    void messageBoxShowsCaptionTextAndAnswers() {
        struct Case {
            MessageButtons buttons;
            QMessageBox::StandardButton pressed;
            MessageAnswer answer;
        };
        for (const Case& c :
             {Case{MessageButtons::OkCancel, QMessageBox::Cancel, MessageAnswer::Cancel},
              Case{MessageButtons::YesNo, QMessageBox::No, MessageAnswer::No},
              Case{MessageButtons::Ok, QMessageBox::Ok, MessageAnswer::Ok}}) {
            QString title, body;
            int buttons = 0;
            QTimer::singleShot(0, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!box) return;
                title = box->windowTitle();
                body = box->text();
                buttons = static_cast<int>(box->buttons().size());
                box->button(c.pressed)->click();
            });
            QtPlatform platform;
            QCOMPARE(platform.messageBox("there is an unsaved document", "quit anyway?", c.buttons),
                     c.answer);
            QCOMPARE(title, "there is an unsaved document");
            QCOMPARE(body, "quit anyway?");
            QCOMPARE(buttons, c.buttons == MessageButtons::Ok ? 1 : 2);
        }
    }
};

QTEST_MAIN(QtPlatformTest)
#include "qt_platform_test.moc"

// A second start of the program hands its files to the first and ends.
#include "gui/single_instance.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include "test_data.h"

using namespace zolt;

namespace {

// A name of the test's own: a user's running program is never disturbed.
QString privateName(const char* tag) {
    return QStringLiteral("zolt-test-%1-%2").arg(tag).arg(QCoreApplication::applicationPid());
}

}  // namespace

class SingleInstanceTest : public QObject {
    Q_OBJECT
private slots:
    void secondProgramHandsItsFileOver() {
        const QString name = privateName("program");
        std::unique_ptr<SingleInstance> first = SingleInstance::claim({}, name);
        QVERIFY(first && first->listening());
        QSignalSpy received(first.get(), &SingleInstance::filesReceived);

        const QString folder = QString::fromStdString(testdata::bruker("aspirin-1h"));
        QProcess second;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("ZOLT_INSTANCE_NAME", name);
        second.setProcessEnvironment(env);
        second.setWorkingDirectory(folder);
        second.start(QString::fromStdString(testdata::guiPath()), {"acqus"});
        QVERIFY(received.wait(10000));
        // It ends by itself: a frame would keep it running.
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(received.first().first().toStringList(),
                 QStringList{QDir(folder).absoluteFilePath("acqus")});
    }

    void staleServerIsReplacedAndPathsArriveWhole() {
        const QString name = privateName("stale");
        // What a crashed run leaves: the server's file with nobody listening.
        QFile stale(QDir::temp().filePath(name));
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.close();
        std::unique_ptr<SingleInstance> first = SingleInstance::claim({"ignored"}, name);
        QVERIFY(first && first->listening());
        QSignalSpy received(first.get(), &SingleInstance::filesReceived);
        const QStringList paths{"/data/Spektren/ä ö/fid", "/data/b\nc", "/"};
        QVERIFY(SingleInstance::sendToFirst(paths, name));
        QVERIFY(received.wait(5000));
        QCOMPARE(received.first().first().toStringList(), paths);
        // A start without files only brings the frame forward.
        QVERIFY(SingleInstance::sendToFirst({}, name));
        QVERIFY(received.wait(5000));
        QCOMPARE(received.last().first().toStringList(), QStringList{});
    }

    void messageIsReadOnlyWhenWholeAndSane() {
        const QByteArray message = encodeHandOff({"/a", "/b c"});
        bool damaged = true;
        for (qsizetype n = 0; n < message.size(); ++n) {
            QVERIFY(!decodeHandOff(message.left(n), &damaged));
            QVERIFY(!damaged);
        }
        QCOMPARE(decodeHandOff(message, &damaged).value(), (QStringList{"/a", "/b c"}));
        // A length beyond any command line, a last path without its end.
        QVERIFY(!decodeHandOff(QByteArray("\xff\xff\xff\xff", 4), &damaged));
        QVERIFY(damaged);
        QVERIFY(!decodeHandOff(QByteArray("\0\0\0\2/a", 6), &damaged));
        QVERIFY(damaged);
    }
};

QTEST_MAIN(SingleInstanceTest)
#include "single_instance_test.moc"

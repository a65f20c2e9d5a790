// The printed page: the plot as vector paths, the header the Print preferences ask for.
#include "gui/printing.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTest>
#include <QtEndian>

#include "test_data.h"

using namespace zolt;

namespace {

struct PdfPage {
    QByteArray drawing;  // the inflated content streams
    QStringList texts;   // each text object's string, through the fonts' Unicode maps
};

// Enough of a PDF reader for what Qt writes: compressed content streams, text as glyph numbers
// that the ToUnicode maps (ranges of arrays) turn back into characters.
PdfPage readPdf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray pdf = file.readAll();
    PdfPage page;
    QMap<uint, QChar> unicode;
    static const QRegularExpression stream("stream\\n(.*?)endstream",
                                           QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression range("<([0-9A-F]+)> <[0-9A-F]+> \\[([^\\]]*)\\]");
    static const QRegularExpression hex("<([0-9A-F]+)>");
    for (const auto& s : stream.globalMatch(QString::fromLatin1(pdf))) {
        const QByteArray raw = s.captured(1).toLatin1();
        QByteArray zipped(4, '\0');
        qToBigEndian<quint32>(1 << 24, zipped.data());  // qUncompress wants a size hint
        if (raw.startsWith('\x78')) page.drawing += qUncompress(zipped + raw) + '\n';
        for (const auto& r : range.globalMatch(QString::fromLatin1(raw))) {
            uint glyph = r.captured(1).toUInt(nullptr, 16);
            for (const auto& u : hex.globalMatch(r.captured(2)))
                unicode[glyph++] = QChar(u.captured(1).toUShort(nullptr, 16));
        }
    }
    static const QRegularExpression textObject("BT(.*?)ET",
                                               QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression shown("<([0-9A-F]{4})> Tj");
    for (const auto& t : textObject.globalMatch(QString::fromLatin1(page.drawing))) {
        QString text;
        for (const auto& g : shown.globalMatch(t.captured(1)))
            text += unicode.value(g.captured(1).toUInt(nullptr, 16), '?');
        // The font maps the space's glyph to the tab that shares it, and draws "fi" as a ligature.
        page.texts << text.replace('\t', ' ').normalized(QString::NormalizationForm_KC);
    }
    return page;
}

PdfPage printed(const SpectrumDocument& doc, uint32_t printFlags) {
    Preferences prefs;
    prefs.flags |= printFlags;
    const QString path = QString::fromStdString(testdata::freshTempDir("print")) + "/page.pdf";
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    if (!printPage(doc, prefs, printer)) return {};
    return readPdf(path);
}

}  // namespace

class PrintingTest : public QObject {
    Q_OBJECT
private slots:
    void pageIsVectorPathsUnderTheHeader() {
        auto doc = testdata::openTransformed("aspirin-1h");
        QVERIFY(doc);
        const QString file = QString::fromStdString(doc->source.rawPath);
        const PdfPage plain = printed(*doc, 0);
        // The trace is a line of segments, not a picture.
        QVERIFY(plain.drawing.count(" l\n") > 1000);
        QVERIFY(!plain.drawing.contains(" Do\n"));
        // The plot shows its title once; no header, no dashes.
        QCOMPARE(plain.texts.count("1H BBI"), 1);
        QVERIFY(!plain.texts.contains(file));
        static const QRegularExpression dashes("\\[[0-9][^\\]]*\\] ?[0-9.]+ +d");
        QVERIFY(!QString::fromLatin1(plain.drawing).contains(dashes));

        const PdfPage decorated = printed(
            *doc, pref_flags::kPrintTitle | pref_flags::kPrintFileName | pref_flags::kPrintDate |
                      pref_flags::kPrintFrame | pref_flags::kPrintDashedLines);
        QCOMPARE(decorated.texts.count("1H BBI"), 2);
        QCOMPARE(decorated.texts.count(file), 1);
        static const QRegularExpression date("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d$");
        QCOMPARE(decorated.texts.filter(date).size(), 1);
        QVERIFY(QString::fromLatin1(decorated.drawing).contains(dashes));
        QVERIFY(decorated.drawing.count(" l\n") > 1000);
    }

    void withoutPrinterThePdfGoesBesideTheData() {
        SpectrumDocument doc;
        QCOMPARE(proposedPdfPath(doc), QDir::home().filePath("page.pdf"));
        doc.source.rawPath = "/data/aspirin/1/fid";
        QCOMPARE(proposedPdfPath(doc), "/data/aspirin/1/fid.pdf");
        doc.documentPath = "/data/saved/aspirin.v2.zolt";
        QCOMPARE(proposedPdfPath(doc), "/data/saved/aspirin.v2.pdf");
    }
};

QTEST_MAIN(PrintingTest)
#include "printing_test.moc"

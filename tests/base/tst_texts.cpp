#include "base/filenames.h"
#include "base/loglineclass.h"
#include "base/utctext.h"

#include <QtTest>

using LogLineClass::LineClass;
Q_DECLARE_METATYPE(LogLineClass::LineClass)

/// Times, names and the first words of log lines.
class TestTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("LC_ALL", "ar_EG.UTF-8"); // a language with digits of its own
        qputenv("TZ", "Europe/Berlin");   // local time is never UTC here
        tzset();
    }

    void timeFromText_data()
    {
        const QString noon = QStringLiteral("2024-05-01T12:00:07Z");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // empty: invalid
        QTest::newRow("white space around") << QStringLiteral(" \t%1\r\n").arg(noon) << noon;
        QTest::newRow("milliseconds") << QStringLiteral("2024-05-01T12:00:07.999Z") << noon;
        QTest::newRow("offset") << QStringLiteral("2024-05-01T14:00:07+02:00") << noon;
        QTest::newRow("no zone: local time") << QStringLiteral("2024-05-01T14:00:07") << noon;
        QTest::newRow("blank") << QStringLiteral("  ") << QString();
        QTest::newRow("no such day") << QStringLiteral("2024-02-30T12:00:07Z") << QString();
    }

    void timeFromText()
    {
        QFETCH(QString, text);
        QTEST(UtcText::toText(UtcText::fromText(text)), "expected");
    }

    void timeToText()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 30, 9, 999), Qt::OffsetFromUTC, 3600);
        QCOMPARE(UtcText::toText(time), QStringLiteral("2023-12-31T23:30:09Z"));
        QCOMPARE(UtcText::toOverlayText(time), QStringLiteral("2023-12-31 23:30:09 UTC"));
        QCOMPARE(UtcText::toDisplayText(time), QStringLiteral("2023-12-31 23:30:09"));
        QCOMPARE(FileNames::datasourceFolder(QString(), time),
                 QStringLiteral("source_20231231_233009"));
        QCOMPARE(UtcText::signedDelta(0), QStringLiteral("+0"));
        QCOMPARE(UtcText::signedDelta(-7), QStringLiteral("-7"));
    }

    void longNamesFitTheFileSystem()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
        const QString stamp = QStringLiteral("_20240101_000000");
        const QString letters(300, QLatin1Char('x'));
        QCOMPARE(FileNames::datasourceFolder(letters.left(235), time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time, QStringLiteral("_7")),
                 letters.left(233) + stamp + QStringLiteral("_7"));
        const QString sun = QString::fromUtf8("\xf0\x9f\x8c\x9e"); // four bytes, two QChars
        QCOMPARE(FileNames::shortened(sun.repeated(3), 11), sun.repeated(2));
    }

    void fileName_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("slash") << QStringLiteral(" XRT Al_poly/Open ")
                               << QStringLiteral("XRT_Al_poly_Open");
        QTest::newRow("path upwards") << QStringLiteral("../..") << QStringLiteral("_");
        QTest::newRow("runs") << QStringLiteral("a__ +_b--%1") << QStringLiteral("a_b--_1");
        QTest::newRow("any script") << QStringLiteral("H\u03b1 Sch\u00f6n \u00bd \u65e5")
                                    << QStringLiteral("H\u03b1_Sch\u00f6n_\u00bd_\u65e5");
        QTest::newRow("nothing left") << QStringLiteral(" \t") << QStringLiteral("ROI");
    }

    void fileName()
    {
        QFETCH(QString, text);
        QTEST(FileNames::roiPart(text), "expected");
    }

    void firstFittingRuleDecides_data()
    {
        QTest::addColumn<LineClass>("expected");
        const auto row = [](const char *text, LineClass expected) {
            QTest::newRow(text) << expected;
        };
        row("warning: x failed", LineClass::Warning);
        row("  ERROR: unavailable", LineClass::Error);
        row("ffmpeg error (AIA 171)", LineClass::Error);
        row("REJECT x DOWNLOAD_ERROR", LineClass::Error);
        row("rejectxDOWNLOAD_ERROR", LineClass::Warning);
        row("AIA 171 lookup_error", LineClass::Error);
        row("DUPLICATE AIA 171", LineClass::Warning);
        row("Suspicious frame", LineClass::Warning);
        row("VIDEO SKIPPED AIA 171", LineClass::Warning);
        row("SKIPPED", LineClass::Plain);
        row("probe unavailable: failed", LineClass::Warning);
        row("ffmpeg: Invalid data found", LineClass::Error);
        row("curl: (28) Operation timed out", LineClass::Info);
        row("FFMPEG: frame=12", LineClass::Info);
        row("OK AIA 171", LineClass::Success);
        row(" OK ", LineClass::Plain);
        row("Video completed: x.mp4", LineClass::Success);
        row("  session completed. ", LineClass::Success);
        row("Session completed. 3 videos", LineClass::Plain);
        row("Helioviewer datasource catalog updated.", LineClass::Success);
        row("ROI definitions saved: x", LineClass::Success);
        row("", LineClass::Plain);
    }

    void firstFittingRuleDecides()
    {
        const QString text = QString::fromLatin1(QTest::currentDataTag());
        QTEST(LogLineClass::classify(text), "expected");
    }
};

QTEST_APPLESS_MAIN(TestTexts)
#include "tst_texts.moc"

#include "base/filenames.h"
#include "base/loglineclass.h"
#include "base/utctext.h"
#include "tests/support/literals.h"

#include <QtTest>

using LogLineClass::LineClass;

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

    void timeFromText()
    {
        const QString noon = "2024-05-01T12:00:07Z"_s;
        for (const char *text : {" \t2024-05-01T12:00:07Z\r\n", "2024-05-01T12:00:07.999Z",
                                 "2024-05-01T14:00:07+02:00", "2024-05-01T14:00:07"})
            QCOMPARE(UtcText::toText(UtcText::fromText(QLatin1String(text))), noon);
        for (const char *text : {"  ", "2024-02-30T12:00:07Z"}) // there is no such day
            QVERIFY(!UtcText::fromText(QLatin1String(text)).isValid());
    }

    void timeToText()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 30, 9, 999), Qt::OffsetFromUTC, 3600);
        QCOMPARE(UtcText::toText(time), "2023-12-31T23:30:09Z"_s);
        QCOMPARE(UtcText::toText({}), QString());
        QCOMPARE(UtcText::toOverlayText(time), "2023-12-31 23:30:09 UTC"_s);
        QCOMPARE(UtcText::toDisplayText(time), "2023-12-31 23:30:09"_s);
        QCOMPARE(FileNames::datasourceFolder(QString(), time), "source_20231231_233009"_s);
        QCOMPARE(UtcText::signedDelta(0), "+0"_s);
        QCOMPARE(UtcText::signedDelta(-7), "-7"_s);
    }

    void longNamesFitTheFileSystem()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
        const QString stamp = "_20240101_000000"_s;
        const QString letters(300, QLatin1Char('x'));
        QCOMPARE(FileNames::datasourceFolder(letters.left(235), time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time, "_7"_s),
                 letters.left(233) + stamp + "_7"_s);
        const QString sun = QString::fromUtf8("\xf0\x9f\x8c\x9e"); // four bytes, two QChars
        QCOMPARE(FileNames::shortened(sun.repeated(3), 11), sun.repeated(2));
    }

    void namesBecomeFileNames()
    {
        for (const auto &[name, expected] :
             {std::pair(" XRT Al_poly/Open ", "XRT_Al_poly_Open"), std::pair("../..", "_"),
              std::pair("a__ +_b--%1", "a_b--_1"), std::pair(" \t", "ROI"),
              std::pair("H\u03b1 Sch\u00f6n \u00bd \u65e5", "H\u03b1_Sch\u00f6n_\u00bd_\u65e5")})
            QCOMPARE(FileNames::roiPart(QString::fromUtf8(name)), QString::fromUtf8(expected));
    }

    void firstFittingRuleDecides()
    {
        const QVector<std::pair<LineClass, QVector<const char *>>> lines = {
            {LineClass::Error,
             {"  ERROR: unavailable", "ffmpeg error (AIA 171)", "REJECT x DOWNLOAD_ERROR",
              "AIA 171 lookup_error", "ffmpeg: Invalid data found"}},
            {LineClass::Warning,
             {"warning: x failed", "rejectxDOWNLOAD_ERROR", "DUPLICATE AIA 171", "Suspicious frame",
              "VIDEO SKIPPED AIA 171", "probe unavailable: failed"}},
            {LineClass::Success,
             {"OK AIA 171", "Video completed: x.mp4", "  session completed. ",
              "Helioviewer datasource catalog updated.", "ROI definitions saved: x"}},
            {LineClass::Info, {"curl: (28) Operation timed out", "FFMPEG: frame=12"}},
            {LineClass::Plain, {"SKIPPED", " OK ", "Session completed. 3 videos", ""}}};
        for (const auto &[lineClass, texts] : lines) {
            for (const char *text : texts)
                QVERIFY2(LogLineClass::classify(QLatin1String(text)) == lineClass, text);
        }
    }
};

QTEST_APPLESS_MAIN(TestTexts)
#include "tst_texts.moc"

#include "base/loglineclass.h"

#include <QtTest>

using LogLineClass::LineClass;
Q_DECLARE_METATYPE(LogLineClass::LineClass)

class TestLogLineClass : public QObject
{
    Q_OBJECT

private slots:
    void firstFittingRuleDecides_data();
    void firstFittingRuleDecides();
};

void TestLogLineClass::firstFittingRuleDecides_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<LineClass>("expected");
    const auto row = [](const char *situation, const char *text, LineClass expected) {
        QTest::newRow(situation) << QString::fromUtf8(text) << expected;
    };
    row("a warning about a failure", "warning: x failed", LineClass::Warning);
    row("an error about a warning", "  ERROR: unavailable", LineClass::Error);
    row("encoder's own error", "ffmpeg error (AIA 171)", LineClass::Error);
    row("status word in a rejected line", "REJECT x DOWNLOAD_ERROR", LineClass::Error);
    row("status word without its blank", "rejectxDOWNLOAD_ERROR", LineClass::Warning);
    row("lookup status", "AIA 171 lookup_error", LineClass::Error);
    row("longer word with the same start", "Rejected frame 12", LineClass::Warning);
    row("repeat", "DUPLICATE AIA 171", LineClass::Warning);
    row("renderer block", "Suspicious frame", LineClass::Warning);
    row("skipped film", "VIDEO SKIPPED AIA 171", LineClass::Warning);
    row("skipped as first word", "SKIPPED", LineClass::Plain);
    row("service away", "probe unavailable: failed", LineClass::Warning);
    row("curl failing late", "ffmpeg: Invalid data found", LineClass::Error);
    row("curl's own words", "curl: (28) Operation timed out", LineClass::Info);
    row("encoder's chatter", "FFMPEG: frame=12", LineClass::Info);
    row("success", "OK AIA 171", LineClass::Success);
    row("success without text", " OK ", LineClass::Plain);
    row("film", "Video completed: x.mp4", LineClass::Success);
    row("session", "  session completed. ", LineClass::Success);
    row("session with more words", "Session completed. 3 videos", LineClass::Plain);
    row("catalog", "Helioviewer datasource catalog updated.", LineClass::Success);
    row("regions", "ROI definitions saved: x", LineClass::Success);
    row("empty", "", LineClass::Plain);
    row("other script", "太陽 Ήλιος", LineClass::Plain);
}

void TestLogLineClass::firstFittingRuleDecides()
{
    QFETCH(QString, text);
    QFETCH(LineClass, expected);
    QCOMPARE(LogLineClass::classify(text), expected);
}

QTEST_GUILESS_MAIN(TestLogLineClass)
#include "tst_loglineclass.moc"

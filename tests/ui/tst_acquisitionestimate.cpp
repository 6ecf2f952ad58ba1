#include "ui/acquisitionestimate.h"

#include <QDateTime>
#include <QtTest>

using AcquisitionEstimate::formatDuration;
using AcquisitionEstimate::formatVideoDuration;

class TestAcquisitionEstimate : public QObject
{
    Q_OBJECT

private slots:
    void texts_data();
    void texts();
};

void TestAcquisitionEstimate::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *situation, const QString &text, const char *expected) {
        QTest::newRow(situation) << text << QString::fromLatin1(expected);
    };
    row("negative", formatDuration(-5), "n/a");
    row("no time", formatDuration(0), "n/a");
    row("seconds", formatDuration(59), "59 s");
    row("a minute", formatDuration(60), "1 min");
    row("minutes and seconds", formatDuration(3599), "59 min 59 s");
    row("whole minutes beyond an hour", formatDuration(5400), "90 min");
    row("hours", formatDuration(7200), "2 h");
    row("odd second dropped", formatDuration(3661), "1 h 1 min");

    row("no frame", formatVideoDuration(0, 25), "--");
    row("no rate", formatVideoDuration(1, 0), "--");
    row("half a millisecond rounds up", formatVideoDuration(1, 16), "00:00:00.063");
    row("rounds into the next second", formatVideoDuration(119, 119), "00:00:01.000");
    row("more than 99 hours", formatVideoDuration(360'000, 1), "100:00:00.000");
    row("beyond 32 bits", formatVideoDuration(5'000'000'000, 120), "11574:04:26.667");

    const auto estimate = [](int seconds, int cadence) {
        const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
        return AcquisitionEstimate::text(start, start.addSecs(seconds), cadence, 25);
    };
    row("both ends count", estimate(3600, 60),
        "Nominal estimate: 61 frame(s) per datasource  |  video 00:00:02.440 @ 25 fps");
    row("an instant", estimate(0, 60),
        "Nominal estimate: 1 frame(s) per datasource  |  video 00:00:00.040 @ 25 fps");
    row("a rest shorter than a step", estimate(119, 60),
        "Nominal estimate: 2 frame(s) per datasource  |  video 00:00:00.080 @ 25 fps");
    row("end before start", estimate(-1, 60),
        "Estimated acquisition: invalid interval or parameters");
    row("no cadence", estimate(3600, 0), "Estimated acquisition: invalid interval or parameters");
}

void TestAcquisitionEstimate::texts()
{
    QFETCH(QString, text);
    QTEST(text, "expected");
}

QTEST_GUILESS_MAIN(TestAcquisitionEstimate)
#include "tst_acquisitionestimate.moc"

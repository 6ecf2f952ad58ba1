#include "ui/acquisitionestimate.h"

#include <QDateTime>
#include <QtTest>

class TestAcquisitionEstimate : public QObject
{
    Q_OBJECT

private slots:
    void durationTakesTheLargestUnit_data();
    void durationTakesTheLargestUnit();
    void videoDuration_data();
    void videoDuration();
    void bothEndsOfTheIntervalCount_data();
    void bothEndsOfTheIntervalCount();
};

void TestAcquisitionEstimate::durationTakesTheLargestUnit_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("negative") << qint64(-5) << QStringLiteral("n/a");
    QTest::newRow("nothing") << qint64(0) << QStringLiteral("n/a");
    QTest::newRow("seconds") << qint64(59) << QStringLiteral("59 s");
    QTest::newRow("a minute") << qint64(60) << QStringLiteral("1 min");
    QTest::newRow("minutes and seconds") << qint64(3599) << QStringLiteral("59 min 59 s");
    QTest::newRow("whole minutes beyond an hour") << qint64(5400) << QStringLiteral("90 min");
    QTest::newRow("hours") << qint64(7200) << QStringLiteral("2 h");
    QTest::newRow("odd second dropped") << qint64(3661) << QStringLiteral("1 h 1 min");
}

void TestAcquisitionEstimate::durationTakesTheLargestUnit()
{
    QFETCH(qint64, seconds);
    QTEST(AcquisitionEstimate::formatDuration(seconds), "text");
}

void TestAcquisitionEstimate::videoDuration_data()
{
    QTest::addColumn<qint64>("frames");
    QTest::addColumn<int>("fps");
    QTest::addColumn<QString>("text");
    QTest::newRow("no frame") << qint64(0) << 25 << QStringLiteral("--");
    QTest::newRow("no rate") << qint64(1) << 0 << QStringLiteral("--");
    QTest::newRow("one frame") << qint64(1) << 25 << QStringLiteral("00:00:00.040");
    QTest::newRow("half a millisecond rounds up")
        << qint64(1) << 16 << QStringLiteral("00:00:00.063");
    QTest::newRow("rounds into the next second")
        << qint64(119) << 119 << QStringLiteral("00:00:01.000");
    QTest::newRow("more than 99 hours") << qint64(360'000) << 1 << QStringLiteral("100:00:00.000");
    QTest::newRow("beyond 32 bits")
        << qint64(5'000'000'000) << 120 << QStringLiteral("11574:04:26.667");
}

void TestAcquisitionEstimate::videoDuration()
{
    QFETCH(qint64, frames);
    QFETCH(int, fps);
    QTEST(AcquisitionEstimate::formatVideoDuration(frames, fps), "text");
}

void TestAcquisitionEstimate::bothEndsOfTheIntervalCount_data()
{
    const auto estimate = [](const char *frames, const char *video, const char *fps) {
        return QStringLiteral("Nominal estimate: %1 frame(s) per datasource  |  video %2 @ %3 fps")
            .arg(QLatin1String(frames), QLatin1String(video), QLatin1String(fps));
    };
    const QString invalid = QStringLiteral("Estimated acquisition: invalid interval or parameters");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("cadence");
    QTest::addColumn<QString>("text");
    QTest::newRow("an hour") << 3600 << 60 << estimate("61", "00:00:02.440", "25");
    QTest::newRow("an instant") << 0 << 60 << estimate("1", "00:00:00.040", "25");
    QTest::newRow("a rest shorter than a step") << 119 << 60 << estimate("2", "00:00:00.080", "25");
    QTest::newRow("end before start") << -1 << 60 << invalid;
    QTest::newRow("no cadence") << 3600 << 0 << invalid;
}

void TestAcquisitionEstimate::bothEndsOfTheIntervalCount()
{
    QFETCH(int, seconds);
    QFETCH(int, cadence);
    const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
    QTEST(AcquisitionEstimate::text(start, start.addSecs(seconds), cadence, 25), "text");
}

QTEST_GUILESS_MAIN(TestAcquisitionEstimate)
#include "tst_acquisitionestimate.moc"

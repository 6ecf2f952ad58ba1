#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"
#include "tests/support/fakeprogram.h"

#include <QtTest>

#include <ctime>

/// Requests that fail before they return, as many as the longest session has.
class TestFailuresInARow : public QObject
{
    Q_OBJECT

private slots:
    void aHundredThousand();
};

/// The stack stays flat, the event loop alive, and the last request costs as much as the first.
void TestFailuresInARow::aHundredThousand()
{
    constexpr int requests = 100'000;
    constexpr int limitMs = 180'000;
    TestFolder::clearKeys();
    AcquisitionRoad road;
    const QString curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
    TestFolder::setKey(QStringLiteral("paths/curl"), curl);
    AcquisitionSettings settings = AcquisitionRoad::settings(0, {AcquisitionRoad::aia()});
    settings.endUtc = settings.startUtc.addSecs(requests - 1);
    settings.cadenceSeconds = 1;
    settings.createVideos = false;

    quintptr lowest = std::numeric_limits<quintptr>::max();
    quintptr highest = 0;
    int failures = 0;
    QVector<double> seconds; // of the processor, at each quarter
    road.onEvent = [&](const QString &event) {
        if (event == QLatin1String("[state] Downloading frames"))
            QFile::remove(curl);
        if (!event.startsWith(QLatin1String("ERROR ")))
            return;
        const auto here = quintptr(__builtin_frame_address(0));
        lowest = qMin(lowest, here);
        highest = qMax(highest, here);
        if (failures++ % (requests / 4) == 0)
            seconds += double(std::clock()) / CLOCKS_PER_SEC;
        road.events.clear(); // a log of its own would be measured, too
    };
    int heartbeats = 0;
    QTimer heart;
    connect(&heart, &QTimer::timeout, &heart, [&heartbeats] { ++heartbeats; });
    heart.start(0);
    QSignalSpy finished(road.controller.get(), &AcquisitionController::finished);
    QVERIFY(road.controller->start(settings));
    QVERIFY(finished.wait(limitMs));
    seconds += double(std::clock()) / CLOCKS_PER_SEC;

    QCOMPARE(failures, requests);
    QVERIFY(highest - lowest < 4096);
    QVERIFY(heartbeats > requests / 2);
    const double first = seconds.at(1) - seconds.at(0);
    const double last = seconds.at(4) - seconds.at(3);
    qInfo("%.1f s, the first quarter %.2f s, the last %.2f s", seconds.at(4) - seconds.at(0), first,
          last);
    QVERIFY(last < 1.5 * first);
    QCOMPARE(
        SessionCheck::of(road.sessionDirectory()).statuses.count(QStringLiteral("LOOKUP_ERROR")),
        requests);
}

QTEST_GUILESS_MAIN(TestFailuresInARow)
#include "tst_failuresinarow.moc"

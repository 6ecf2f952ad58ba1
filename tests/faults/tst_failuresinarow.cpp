#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"
#include "tests/support/fakeprogram.h"

#include <QtTest>

#include <algorithm>
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
    constexpr int slices = 20;
    QVector<double> seconds; // of the processor, at the beginning of each slice and at the end
    road.onEvent = [&](const QString &event) {
        if (event == QLatin1String("[state] Downloading frames"))
            QFile::remove(curl);
        if (!event.startsWith(QLatin1String("ERROR ")))
            return;
        const auto here = quintptr(__builtin_frame_address(0));
        lowest = qMin(lowest, here);
        highest = qMax(highest, here);
        if (failures++ % (requests / slices) == 0)
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
    // The cheapest of the first five slices and of the last five: a machine that is busy for a
    // while does not count. Where a request costs a + b n, with n of N requests before it, they are
    // slices 1 and 16, in which it costs a + bN / 40 and a + 31 bN / 40. With b alone the second is
    // 31 times the first; it is beyond 1.5 times as soon as bN > 0.7 a, that is when the last
    // request costs 1.7 times the first.
    QVector<double> costs;
    for (int slice = 0; slice < slices; ++slice)
        costs += seconds.at(slice + 1) - seconds.at(slice);
    const double first = *std::min_element(costs.cbegin(), costs.cbegin() + 5);
    const double last = *std::min_element(costs.cend() - 5, costs.cend());
    qInfo("%.1f s, a slice at first %.2f s, at last %.2f s", seconds.last() - seconds.first(),
          first, last);
    QVERIFY(last < 1.5 * first);
    QCOMPARE(
        SessionCheck::of(road.sessionDirectory()).statuses.count(QStringLiteral("LOOKUP_ERROR")),
        requests);
}

QTEST_GUILESS_MAIN(TestFailuresInARow)
#include "tst_failuresinarow.moc"

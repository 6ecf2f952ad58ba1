#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/jpxframes.h"

#include <QScopeGuard>
#include <QTest>

#include <algorithm>

using namespace Simulator;

namespace {

qint64 at(const char *time)
{
    return *parseArchiveTime(QString::fromLatin1(time));
}

ArchiveSource every(int spacingSeconds, const char *start, const char *end)
{
    ArchiveSource source;
    source.nickname = QStringLiteral("HMI Mag");
    source.path = QStringLiteral("SDO/HMI/magnetogram");
    source.sourceId = 19;
    source.spacingSeconds = spacingSeconds;
    source.start = QString::fromLatin1(start);
    source.end = QString::fromLatin1(end);
    return source;
}

QVector<qint64> sortedSpacings(const QVector<qint64> &times)
{
    QVector<qint64> spacings;
    for (int i = 1; i < times.size(); ++i)
        spacings.append(times.at(i) - times.at(i - 1));
    std::sort(spacings.begin(), spacings.end());
    return spacings;
}

} // namespace

class TestSimulatorArchive : public QObject
{
    Q_OBJECT

private slots:
    void framesAreResampled_data();
    void framesAreResampled();
    void windowsWithoutFramesSayWhy();
    void stepsEndAtTheCap();
    void clocksThatSkipAnHourSkipNoPicture();
};

void TestSimulatorArchive::framesAreResampled_data()
{
    QTest::addColumn<int>("archiveSpacing");
    QTest::addColumn<int>("cadence");
    QTest::addColumn<qint64>("smallest");
    QTest::addColumn<qint64>("median");
    QTest::addColumn<qint64>("largest");

    QTest::newRow("denser than asked: multiples around it") << 45 << 60 << 45LL << 45LL << 90LL;
    QTest::newRow("denser, a little more is asked") << 45 << 68 << 45LL << 90LL << 90LL;
    QTest::newRow("the archive's own spacing") << 45 << 45 << 45LL << 45LL << 45LL;
    QTest::newRow("sparser than asked: every image once") << 240 << 60 << 240LL << 240LL << 240LL;
}

void TestSimulatorArchive::framesAreResampled()
{
    QFETCH(int, archiveSpacing);
    QFETCH(int, cadence);
    const Archive archive({every(archiveSpacing, "2024-05-01 00:00:00", "2024-05-02 00:00:00")});
    const qint64 start = at("2024-05-01 03:00:01");
    const qint64 end = at("2024-05-01 05:00:00");
    const JpxFrames frames = jpxFrames(archive, 19, start, end, cadence);

    QCOMPARE(frames.error, QString());
    QCOMPARE(frames.unixTimes.constFirst(), archive.atOrAfter(19, start)->unixTime);
    QCOMPARE(frames.unixTimes.constLast(), archive.atOrBefore(19, end)->unixTime);
    const QVector<qint64> spacings = sortedSpacings(frames.unixTimes);
    QTEST(spacings.constFirst(), "smallest");
    QTEST(spacings.at(spacings.size() / 2), "median");
    QTEST(spacings.constLast(), "largest");
}

void TestSimulatorArchive::windowsWithoutFramesSayWhy()
{
    ArchiveSource group;
    group.nickname = QStringLiteral("XRT Any/Any");
    group.sourceId = 10001;
    group.groupedSourceId = 19;
    const Archive archive({every(3600, "2024-05-01 00:00:00", "2024-05-02 00:00:00"), group});
    const auto errorIn = [&archive](int sourceId, const char *start, const char *end) {
        const JpxFrames frames = jpxFrames(archive, sourceId, at(start), at(end), 60);
        return frames.unixTimes.isEmpty() ? frames.error : QString();
    };
    const QString none = QStringLiteral("Error encountered during JPX creation: No images were "
                                        "found for the requested time range.");
    QCOMPARE(errorIn(19, "2024-05-01 01:00:01", "2024-05-01 01:59:59"), none);
    QCOMPARE(errorIn(19, "2024-05-01 01:30:00", "2024-05-01 02:30:00"), none); // one image only
    QCOMPARE(errorIn(19, "2024-04-03 00:00:00", "2024-04-03 02:00:00"),
             QStringLiteral("No HMI Mag data is available on or before 2024-04-03T02:00:00Z."));
    QCOMPARE(errorIn(77, "2024-05-01 00:00:00", "2024-05-01 05:00:00"), // a name that is not known
             QStringLiteral("No  data is available on or after 2024-05-01T00:00:00Z."));
    QCOMPARE(errorIn(10001, "2024-05-01 00:00:00", "2024-05-01 05:00:00"), // a group has none
             QStringLiteral("No XRT Any/Any data is available on or after 2024-05-01T00:00:00Z."));
}

void TestSimulatorArchive::stepsEndAtTheCap()
{
    const Archive archive({every(5, "2024-05-01 00:00:00", "2024-05-02 00:00:00")});
    const JpxFrames frames =
        jpxFrames(archive, 19, at("2024-05-01 00:00:00"), at("2024-05-01 02:00:00"), 5);
    // 7200 s in 1000 steps are 7 s each: they end 200 s after the window's first image.
    QCOMPARE(frames.message,
             QStringLiteral("Movie cadence has been changed to one image every 7 seconds between "
                            "your requested start and end dates in order to avoid exceeding the "
                            "maximum of 1000 frames allowed per request."));
    QCOMPARE(sortedSpacings(frames.unixTimes).constLast(), 205LL);
    QCOMPARE(frames.unixTimes.constFirst(), at("2024-05-01 00:00:00"));
    QVERIFY(jpxFrames(archive, 19, at("2024-05-01 00:00:00"), at("2024-05-01 02:00:00"), 8)
                .message.isEmpty());
}

/// Where this machine's clocks go from 2 to 3 o'clock, the archive's go on.
void TestSimulatorArchive::clocksThatSkipAnHourSkipNoPicture()
{
    qputenv("TZ",
            "CET-1CEST,M3.5.0,M10.5.0/3"); // Europe/Berlin, known without a time zone database
    const auto restore = qScopeGuard([] { qunsetenv("TZ"); });
    const Archive archive({every(3600, "2024-03-31 02:30:00", "2024-03-31 05:30:00")});
    const qint64 first = parseRequestTime(QStringLiteral("2024-03-31T02:30:00Z")).value_or(0);
    QCOMPARE(archiveTimeText(first), QStringLiteral("2024-03-31 02:30:00"));
    QCOMPARE(jpxFrames(archive, 19, first, first + 3 * 3600, 3600).unixTimes.size(), 4);
}

QTEST_GUILESS_MAIN(TestSimulatorArchive)
#include "tst_simulatorarchive.moc"

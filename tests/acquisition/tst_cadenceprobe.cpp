#include "acquisition/acquisitionsettings.h"
#include "acquisition/probequeue.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"

#include <QtTest>

namespace {

const QDateTime startUtc(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);

QVector<qint64> framesAt(const QVector<int> &offsets)
{
    QVector<qint64> seconds;
    for (const int offset : offsets)
        seconds.append(startUtc.toSecsSinceEpoch() + offset);
    return seconds;
}

ProbeWindow window(int sourceId)
{
    return {{sourceId, QStringLiteral("LASCO C2"), QString()}, startUtc, startUtc.addSecs(7200)};
}

} // namespace

/// From the answers of the archive to the sampling of a datasource.
class TestCadenceProbe : public QObject
{
    Q_OBJECT

private slots:
    void samplingFollowsTheArchive_data();
    void samplingFollowsTheArchive();
    void samplingWithoutProbeIsRegular();
    void answersAreToldByTheirWorker();
    void frameTimesFoldTogether();
    void answerMatchesOnlyItsOwnWindow();
};

void TestCadenceProbe::samplingFollowsTheArchive_data()
{
    QTest::addColumn<QVector<int>>("frameOffsets");
    QTest::addColumn<QVector<int>>("medianMinMax");
    QTest::addColumn<int>("stepSeconds");
    QTest::addColumn<int>("firstOffset");
    QTest::addColumn<QString>("logLine");

    QTest::newRow("sparse: in phase with the instrument")
        << QVector<int>{7, 607, 1207, 1507} << QVector<int>{600, 300, 600} << 600 << 7
        << "Quick probe EIT 171: 4 frame(s), observed median 600 s (min 300, max 600); "
           "acquisition step=600 s.";
    QTest::newRow("even count: the upper of the middle two")
        << QVector<int>{0, 300, 900} << QVector<int>{600, 300, 600} << 600 << 0
        << "Quick probe EIT 171: 3 frame(s), observed median 600 s (min 300, max 600); "
           "acquisition step=600 s.";
    QTest::newRow("denser than asked for: the cadence and the start stay")
        << QVector<int>{5, 50, 95} << QVector<int>{45, 45, 45} << 60 << 0
        << "Quick probe EIT 171: 3 frame(s), observed median 45 s (min 45, max 45); "
           "acquisition step=60 s.";
    QTest::newRow("just the cadence: the start stays")
        << QVector<int>{5, 65} << QVector<int>{60, 60, 60} << 60 << 0
        << "Quick probe EIT 171: 2 frame(s), observed median 60 s (min 60, max 60); "
           "acquisition step=60 s.";
    QTest::newRow("first frame before the interval: the start stays")
        << QVector<int>{-1, 719} << QVector<int>{720, 720, 720} << 720 << 0
        << "Quick probe EIT 171: 2 frame(s), observed median 720 s (min 720, max 720); "
           "acquisition step=720 s.";
    QTest::newRow("first frame at the very end of the interval")
        << QVector<int>{3600, 7200} << QVector<int>{3600, 3600, 3600} << 3600 << 3600
        << "Quick probe EIT 171: 2 frame(s), observed median 3600 s (min 3600, max 3600); "
           "acquisition step=3600 s.";
    QTest::newRow("first frame after the interval: the start stays")
        << QVector<int>{3601, 7201} << QVector<int>{3600, 3600, 3600} << 3600 << 0
        << "Quick probe EIT 171: 2 frame(s), observed median 3600 s (min 3600, max 3600); "
           "acquisition step=3600 s.";
    QTest::newRow("a single frame tells no spacing")
        << QVector<int>{30} << QVector<int>{0, 0, 0} << 60 << 0
        << "Quick probe EIT 171: 1 frame(s); acquisition step=60 s.";
    QTest::newRow("an empty archive")
        << QVector<int>() << QVector<int>{0, 0, 0} << 60 << 0
        << "Quick probe EIT 171: no frames returned; scheduling every 60 s with normal "
           "validation.";
}

void TestCadenceProbe::samplingFollowsTheArchive()
{
    QFETCH(QVector<int>, frameOffsets);
    QFETCH(int, stepSeconds);
    QFETCH(int, firstOffset);

    AcquisitionSettings settings;
    settings.startUtc = startUtc;
    settings.endUtc = startUtc.addSecs(3600);
    const SourcePlan plan =
        SourcePlanning::plan({0, QStringLiteral("EIT 171"), QString()}, PreflightMode::QuickProbe,
                             framesAt(frameOffsets), settings);
    const CadenceStatistics found = plan.statistics;
    QCOMPARE(found.uniqueFrames, frameOffsets.size());
    QTEST((QVector<int>{found.medianSeconds, found.minSeconds, found.maxSeconds}), "medianMinMax");
    QCOMPARE(plan.schedule.stepMs, qint64(stepSeconds) * 1000);
    QCOMPARE(plan.schedule.firstMs, startUtc.addSecs(firstOffset).toMSecsSinceEpoch());
    QCOMPARE(plan.schedule.lastMs, settings.endUtc.toMSecsSinceEpoch());
    QTEST(plan.logLine, "logLine");
}

void TestCadenceProbe::samplingWithoutProbeIsRegular()
{
    AcquisitionSettings settings;
    settings.startUtc = startUtc.addMSecs(250);
    settings.endUtc = startUtc.addSecs(150);
    for (const PreflightMode mode : {PreflightMode::DirectDenseSource, PreflightMode::Fallback}) {
        const SourcePlan plan = SourcePlanning::plan({10, QStringLiteral("AIA 171"), QString()},
                                                     mode, framesAt({40, 640}), settings);
        QCOMPARE(plan.schedule.firstMs, settings.startUtc.toMSecsSinceEpoch());
        QCOMPARE(plan.schedule.requestCount(), qint64(3));
    }
}

void TestCadenceProbe::answersAreToldByTheirWorker()
{
    ProbeQueue queue({window(4), window(5), window(0)});
    QCOMPARE(queue.take(0).source.sourceId, 4);
    QCOMPARE(queue.take(1).source.sourceId, 5);
    QVERIFY(queue.isBusy(0) && queue.isBusy(1) && !queue.isBusy(2));

    QCOMPARE(queue.release(1)->source.sourceId, 5); // the second answers first
    QVERIFY(!queue.release(1));                     // nothing is asked of it any more
    QVERIFY(!queue.release(-1));                    // a sender that is no worker
    QCOMPARE(queue.take(1).source.sourceId, 0);
    QCOMPARE(queue.taken(), 3);
    QVERIFY(!queue.hasNext() && !queue.isDone());

    QCOMPARE(queue.release(0)->source.sourceId, 4);
    QCOMPARE(queue.release(1)->source.sourceId, 0);
    QVERIFY(queue.isDone());
    QVERIFY(ProbeQueue().isDone());
}

void TestCadenceProbe::frameTimesFoldTogether()
{
    ProbeQueue queue;
    queue.addFrames(4, {startUtc.addSecs(720), QDateTime(), startUtc, startUtc.addMSecs(300)});
    queue.addFrames(5, {startUtc.addSecs(60)});
    queue.addFrames(4, {startUtc.addSecs(360), startUtc.addSecs(720)});
    QCOMPARE(queue.frameSeconds(4), framesAt({0, 360, 720}));
    QCOMPARE(queue.frameSeconds(5), framesAt({60}));
    QVERIFY(queue.frameSeconds(6).isEmpty());
}

void TestCadenceProbe::answerMatchesOnlyItsOwnWindow()
{
    const ProbeWindow asked = window(4);
    const QDateTime sameStart = asked.startUtc.toOffsetFromUtc(7200);
    QVERIFY(asked.matches(4, sameStart, asked.endUtc));
    QVERIFY(!asked.matches(5, asked.startUtc, asked.endUtc));
    QVERIFY(!asked.matches(4, asked.startUtc.addSecs(1), asked.endUtc));
    QVERIFY(!asked.matches(4, asked.startUtc, asked.endUtc.addSecs(-1)));
}

QTEST_GUILESS_MAIN(TestCadenceProbe)
#include "tst_cadenceprobe.moc"

#include "acquisition/acquisitionsettings.h"
#include "acquisition/probequeue.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"

#include <QtTest>

namespace {

const QDateTime startUtc(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);

/// Seconds since the epoch of times given as "0 300 900" after the start.
QVector<qint64> framesAt(const QString &offsets)
{
    QVector<qint64> seconds;
    const QStringList texts = offsets.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &text : texts)
        seconds.append(startUtc.toSecsSinceEpoch() + text.toInt());
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
    void answersAreToldByTheirWorker();
    void frameTimesFoldTogether();
    void answerMatchesOnlyItsOwnWindow();
};

void TestCadenceProbe::samplingFollowsTheArchive_data()
{
    QTest::addColumn<QString>("frames");
    QTest::addColumn<int>("stepSeconds");
    QTest::addColumn<int>("firstOffset");
    QTest::addColumn<QString>("found"); // as the log tells it

    QTest::newRow("sparse: in phase with the instrument")
        << "7 607 1207 1507" << 600 << 7 << "4 frame(s), observed median 600 s (min 300, max 600)";
    QTest::newRow("even count: the upper of the middle two")
        << "0 300 900" << 600 << 0 << "3 frame(s), observed median 600 s (min 300, max 600)";
    QTest::newRow("denser than asked for: the cadence and the start stay")
        << "5 50 95" << 60 << 0 << "3 frame(s), observed median 45 s (min 45, max 45)";
    QTest::newRow("just the cadence: the start stays")
        << "5 65" << 60 << 0 << "2 frame(s), observed median 60 s (min 60, max 60)";
    QTest::newRow("first frame before the interval: the start stays")
        << "-1 719" << 720 << 0 << "2 frame(s), observed median 720 s (min 720, max 720)";
    QTest::newRow("first frame at the very end of the interval")
        << "3600 7200" << 3600 << 3600 << "2 frame(s), observed median 3600 s (min 3600, max 3600)";
    QTest::newRow("a single frame tells no spacing") << "30" << 60 << 0 << "1 frame(s)";
    QTest::newRow("an empty archive")
        << "" << 60 << 0 << "no frames returned; scheduling every 60 s with normal validation.";
}

void TestCadenceProbe::samplingFollowsTheArchive()
{
    QFETCH(QString, frames);
    QFETCH(int, stepSeconds);
    QFETCH(int, firstOffset);
    QFETCH(QString, found);

    AcquisitionSettings settings;
    settings.startUtc = startUtc;
    settings.endUtc = startUtc.addSecs(3600);
    const DataSource source = {0, QStringLiteral("EIT 171"), QString()};
    const SourcePlan plan =
        SourcePlanning::plan(source, PreflightMode::QuickProbe, framesAt(frames), settings);
    QCOMPARE(plan.schedule.stepMs, qint64(stepSeconds) * 1000);
    QCOMPARE(plan.schedule.firstMs, startUtc.addSecs(firstOffset).toMSecsSinceEpoch());
    QCOMPARE(plan.schedule.lastMs, settings.endUtc.toMSecsSinceEpoch());
    if (!found.endsWith(QLatin1Char('.')))
        found += QStringLiteral("; acquisition step=%1 s.").arg(stepSeconds);
    QCOMPARE(plan.logLine, QStringLiteral("Quick probe EIT 171: ") + found);
}

void TestCadenceProbe::answersAreToldByTheirWorker()
{
    ProbeQueue queue({window(4), window(5), window(0)});
    QCOMPARE(queue.take(0).source.sourceId, 4);
    QCOMPARE(queue.take(1).source.sourceId, 5);
    QCOMPARE(queue.release(1)->source.sourceId, 5); // the second answers first
    QVERIFY(!queue.release(1));                     // nothing is asked of it any more
    QVERIFY(!queue.release(-1));                    // a sender that is no worker
    QCOMPARE(queue.take(1).source.sourceId, 0);
    QVERIFY(queue.isBusy(0) && queue.isBusy(1) && !queue.isBusy(2) && !queue.hasNext());

    QCOMPARE(queue.release(0)->source.sourceId, 4);
    QCOMPARE(queue.release(1)->source.sourceId, 0);
    queue.complete();
    queue.complete();
    QVERIFY(!queue.isDone()); // the last answer is still being read
    queue.complete();
    QVERIFY(queue.isDone());
    QVERIFY(ProbeQueue().isDone());
}

void TestCadenceProbe::frameTimesFoldTogether()
{
    ProbeQueue queue;
    queue.addFrames(4, {startUtc.addSecs(720), QDateTime(), startUtc, startUtc.addMSecs(300)});
    queue.addFrames(5, {startUtc.addSecs(60)});
    queue.addFrames(4, {startUtc.addSecs(360), startUtc.addSecs(720)});
    QCOMPARE(queue.frameSeconds(4), framesAt(QStringLiteral("0 360 720")));
    QCOMPARE(queue.frameSeconds(5), framesAt(QStringLiteral("60")));
}

void TestCadenceProbe::answerMatchesOnlyItsOwnWindow()
{
    const ProbeWindow asked = window(4);
    QVERIFY(asked.matches(4, asked.startUtc.toOffsetFromUtc(7200), asked.endUtc));
    QVERIFY(!asked.matches(5, asked.startUtc, asked.endUtc));
    QVERIFY(!asked.matches(4, asked.startUtc.addSecs(1), asked.endUtc));
    QVERIFY(!asked.matches(4, asked.startUtc, asked.endUtc.addSecs(-1)));
}

QTEST_GUILESS_MAIN(TestCadenceProbe)
#include "tst_cadenceprobe.moc"

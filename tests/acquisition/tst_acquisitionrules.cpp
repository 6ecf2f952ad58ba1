#include "acquisition/acquisitionplan.h"
#include "acquisition/probequeue.h"
#include "acquisition/sessionlayout.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"
#include "acquisition/sourcetiming.h"
#include "session/acquisitionsettings.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QtTest>

Q_DECLARE_METATYPE(RequestSchedule)

namespace {

QDateTime startUtc()
{
    return {QDate(2024, 5, 1), QTime(0, 0), Qt::UTC};
}

RequestSchedule schedule(int sourceId, qint64 firstMs, qint64 lastMs, qint64 stepMs)
{
    return {{sourceId, "SUVI 195"_s, "GOES/SUVI/195"_s}, firstMs, lastMs, stepMs};
}

} // namespace

/// From settings and the archive's answers to folders, tolerances and the plan.
class TestAcquisitionRules final : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void requestsAreInterleavedByTime_data()
    {
        using Schedules = QVector<RequestSchedule>;
        QTest::addColumn<Schedules>("schedules");
        const auto row = [](const char *requests, const Schedules &schedules) {
            QTest::newRow(requests) << schedules; // as "time:sourceId", in milliseconds
        };
        row("", {});
        row("5:0", {schedule(0, 5, 5, 10)}); // start equals end
        row("0:1 10:1 20:1", {schedule(1, 0, 20, 10)});
        row("3:1 13:1", {schedule(1, 3, 19, 10)});
        row("0:1 4:2 10:1 20:1 29:2 30:1", {schedule(1, 0, 30, 10), schedule(2, 4, 30, 25)});
        // At the same instant the lower sourceId comes first, however listed.
        row("0:0 0:9 10:9 20:0 20:9", {schedule(9, 0, 20, 10), schedule(0, 0, 20, 20)});
        row("0:3 0:3 10:3 10:3", {schedule(3, 0, 10, 10), schedule(3, 0, 10, 10)});
    }

    void requestsAreInterleavedByTime()
    {
        QFETCH(QVector<RequestSchedule>, schedules);
        const QString requests = QLatin1String(QTest::currentDataTag());
        AcquisitionPlan plan(schedules);
        QCOMPARE(plan.size(), static_cast<qint64>(requests.count(QLatin1Char(':'))));
        QStringList walked;
        for (; !plan.atEnd(); plan.advance()) {
            const FrameRequest request = plan.current();
            QCOMPARE(request.requestIndex, walked.size());
            walked += QString::number(request.requestedUtc.toMSecsSinceEpoch()) + QLatin1Char(':') +
                      QString::number(request.sourceId);
        }
        QCOMPARE(walked.join(QLatin1Char(' ')), requests);
    }

    void samplingFollowsTheArchive_data()
    {
        QTest::addColumn<QVector<qint64>>("frames"); // seconds after the start
        QTest::addColumn<int>("stepSeconds");
        QTest::addColumn<int>("firstOffset");
        QTest::addColumn<QString>("found"); // as the log tells it
        const auto row = [](const char *name, const QVector<qint64> &frames, int stepSeconds,
                            int firstOffset, const char *found) {
            QTest::newRow(name) << frames << stepSeconds << firstOffset << found;
        };
        row("sparse: in phase with the instrument", {7, 607, 1207, 1507}, 600, 7,
            "4 frame(s), observed median 600 s (min 300, max 600)");
        row("even count: the upper of the middle two", {0, 300, 900}, 600, 0,
            "3 frame(s), observed median 600 s (min 300, max 600)");
        row("first frame before the interval: the start stays", {-1, 719}, 720, 0,
            "2 frame(s), observed median 720 s (min 720, max 720)");
        row("first frame at the very end", {3600, 7200}, 3600, 3600,
            "2 frame(s), observed median 3600 s (min 3600, max 3600)");
        row("the longest spacing", {7, 2'147'483'654}, 2'147'483'647, 7,
            "2 frame(s), observed median 2147483647 s (min 2147483647, max 2147483647)");
        row("a century between frames is no spacing", {0, 60, 3'000'000'060}, 60, 0,
            "3 frame(s), observed median 60 s (min 60, max 60)");
        row("every second", {0, 1}, 60, 0, "2 frame(s), observed median 1 s (min 1, max 1)");
        row("a single frame tells no spacing", {30}, 60, 0, "1 frame(s)");
        row("an empty archive", {}, 60, 0,
            "no frames returned; scheduling every 60 s with normal validation.");
    }

    void samplingFollowsTheArchive()
    {
        QFETCH(QVector<qint64>, frames);
        QFETCH(int, stepSeconds);
        QFETCH(int, firstOffset);
        QFETCH(QString, found);
        AcquisitionSettings settings;
        settings.startUtc = startUtc();
        settings.endUtc = startUtc().addSecs(3600);
        for (qint64 &seconds : frames)
            seconds += startUtc().toSecsSinceEpoch();
        const SourcePlan plan =
            SourcePlanning::plan({0, "EIT 171"_s, {}}, PreflightMode::QuickProbe, frames, settings);
        QCOMPARE(plan.schedule.stepMs, static_cast<qint64>(stepSeconds) * 1000);
        QCOMPARE(plan.schedule.firstMs, startUtc().addSecs(firstOffset).toMSecsSinceEpoch());
        QCOMPARE(plan.schedule.lastMs, settings.endUtc.toMSecsSinceEpoch());
        if (!found.endsWith(QLatin1Char('.')))
            found += "; acquisition step=%1 s."_s.arg(stepSeconds);
        QCOMPARE(plan.logLine, "Quick probe EIT 171: "_s + found);
    }

    void probesAreHandedOut()
    {
        const QDateTime end = startUtc().addSecs(60);
        const ProbeWindow first{{1, {}, {}}, startUtc(), end};
        ProbeQueue queue({first, {{2, {}, {}}, startUtc(), end}});
        QVERIFY(queue.take(7).source.sourceId == 1 && queue.take(5).source.sourceId == 2);
        QCOMPARE(queue.release(7)->source.sourceId, 1);
        QVERIFY(!queue.isBusy(7) && !queue.release(7) && queue.isBusy(5));
        QVERIFY(first.matches(1, startUtc(), end) && !first.matches(2, startUtc(), end) &&
                !first.matches(1, end, end) && !first.matches(1, startUtc(), startUtc()));
        queue.addFrames(1, {end, {}, startUtc(), end});
        queue.addFrames(1, {startUtc().addSecs(-1), end});
        const qint64 start = startUtc().toSecsSinceEpoch();
        QCOMPARE(queue.frameSeconds(1), QVector<qint64>({start - 1, start, start + 60}));
    }

    void everyDatasourceHasItsOwnFolder()
    {
        const QTemporaryDir root;
        AcquisitionSettings settings;
        settings.startUtc = settings.endUtc = startUtc();
        settings.sources = {{0, "RHESSI"_s, {}},
                            {1, "Rhessi "_s, {}},
                            {2, " SUVI  195 / x"_s, {}},
                            {3, " "_s, {}},
                            {0, "RHESSI"_s, {}}}; // listed twice
        const auto session = SessionLayout::create(root.path(), settings, nullptr);
        QVERIFY(session);
        QStringList names;
        for (int sourceId = 0; sourceId < session->sources.size(); ++sourceId)
            names += session->sources.value(sourceId).name;
        QCOMPARE(names.join(QLatin1Char('|')),
                 "RHESSI_20240501_000000|Rhessi_20240501_000000_1|SUVI_195_x_20240501_000000|"
                 "source_20240501_000000"_s);
        QCOMPARE(QDir(session->directory).entryList(names).size(), 4);
        QVERIFY(QFile::link(root.path() + "/nowhere"_s, session->directory + "_2"_s));
        QCOMPARE(SessionLayout::create(root.path(), settings, nullptr)->directory,
                 session->directory + "_3"_s);
    }

    void profileAndTolerance()
    {
        TestFolder::setKey("timing/aiaMaxTimeErrorSeconds"_s, -5); // reads as 0
        TestFolder::setKey("timing/suviMaxTimeErrorSeconds"_s, 12);
        AcquisitionSettings settings;
        settings.maxTimeErrorSeconds = 77;
        for (const char *row :
             {"aia,,AIA,0", "band,sdo/aia,AIA,0", "AIA171,,DEFAULT,77",
              "SUVI 304,SDO/AIA/304,SUVI,12", "suvi,,SUVI,12", "AIA 304,GOES/SUVI,SUVI,12",
              "x,AIA/171,DEFAULT,77", "x,SDO/AIAX/171,DEFAULT,77"}) {
            const QStringList fields = QString::fromLatin1(row).split(QLatin1Char(','));
            const DataSource source{1, fields.at(0), fields.at(1)};
            QCOMPARE(SourceTiming::toText(SourceTiming::profileOf(source)), fields.at(2));
            settings.useSourceTimingProfiles = true;
            QCOMPARE(SourceTiming::toleranceSeconds(source, settings), fields.at(3).toInt());
            settings.useSourceTimingProfiles = false;
            QCOMPARE(SourceTiming::toleranceSeconds(source, settings), 77);
        }
    }
};

QTEST_GUILESS_MAIN(TestAcquisitionRules)
#include "tst_acquisitionrules.moc"

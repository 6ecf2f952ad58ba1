#include "acquisition/acquisitionplan.h"
#include "acquisition/sessionlayout.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"
#include "acquisition/sourcetiming.h"
#include "session/acquisitionsettings.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QtTest>

Q_DECLARE_METATYPE(RequestSchedule)

namespace {

QDateTime startUtc()
{
    return {QDate(2024, 5, 1), QTime(0, 0), Qt::UTC};
}

RequestSchedule schedule(int sourceId, qint64 firstMs, qint64 lastMs, qint64 stepMs)
{
    return {{sourceId, QStringLiteral("SUVI 195"), QStringLiteral("GOES/SUVI/195")},
            firstMs,
            lastMs,
            stepMs};
}

} // namespace

/// From settings and the archive's answers to folders, tolerances and the plan.
class TestAcquisitionRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void requestsAreInterleavedByTime_data()
    {
        using Schedules = QVector<RequestSchedule>;
        QTest::addColumn<Schedules>("schedules");
        QTest::addColumn<QString>("requests"); // as "time:sourceId", in milliseconds
        QTest::newRow("nothing planned") << Schedules() << "";
        QTest::newRow("start equals end") << Schedules{schedule(0, 5, 5, 10)} << "5:0";
        QTest::newRow("the end is an instant to ask for")
            << Schedules{schedule(1, 0, 20, 10)} << "0:1 10:1 20:1";
        QTest::newRow("the last step passes the end")
            << Schedules{schedule(1, 3, 19, 10)} << "3:1 13:1";
        QTest::newRow("different steps and anchors")
            << Schedules{schedule(1, 0, 30, 10), schedule(2, 4, 30, 25)}
            << "0:1 4:2 10:1 20:1 29:2 30:1";
        QTest::newRow("the same instant: the lower sourceId first, however listed")
            << Schedules{schedule(9, 0, 20, 10), schedule(0, 0, 20, 20)}
            << "0:0 0:9 10:9 20:0 20:9";
        QTest::newRow("a datasource listed twice is asked twice")
            << Schedules{schedule(3, 0, 10, 10), schedule(3, 0, 10, 10)} << "0:3 0:3 10:3 10:3";
    }

    void requestsAreInterleavedByTime()
    {
        QFETCH(QVector<RequestSchedule>, schedules);
        QFETCH(QString, requests);
        AcquisitionPlan plan(schedules);
        QCOMPARE(plan.size(), qint64(requests.count(QLatin1Char(':'))));
        QStringList walked;
        for (; !plan.atEnd(); plan.advance()) {
            const FrameRequest request = plan.current();
            QCOMPARE(request.requestIndex, walked.size());
            walked += QStringLiteral("%1:%2")
                          .arg(request.requestedUtc.toMSecsSinceEpoch())
                          .arg(request.sourceId);
        }
        QCOMPARE(walked.join(QLatin1Char(' ')), requests);
    }

    void tenYearsAtOneSecondAreCountedButNotStored()
    {
        constexpr qint64 tenYearsMs = 3652LL * 86400 * 1000;
        AcquisitionPlan plan(QVector<RequestSchedule>(36, schedule(1, 500, tenYearsMs, 1000)));
        QCOMPARE(plan.size(), 36 * tenYearsMs / 1000);
        for (int i = 0; i < 36; ++i)
            plan.advance();
        QCOMPARE(plan.current().requestedUtc.toMSecsSinceEpoch(), 1500);
    }

    void samplingFollowsTheArchive_data()
    {
        QTest::addColumn<QVector<qint64>>("frames"); // seconds after the start
        QTest::addColumn<int>("stepSeconds");
        QTest::addColumn<int>("firstOffset");
        QTest::addColumn<QString>("found"); // as the log tells it
        using Frames = QVector<qint64>;
        QTest::newRow("sparse: in phase with the instrument")
            << Frames{7, 607, 1207, 1507} << 600 << 7
            << "4 frame(s), observed median 600 s (min 300, max 600)";
        QTest::newRow("even count: the upper of the middle two")
            << Frames{0, 300, 900} << 600 << 0
            << "3 frame(s), observed median 600 s (min 300, max 600)";
        QTest::newRow("just the cadence: the start stays")
            << Frames{5, 65} << 60 << 0 << "2 frame(s), observed median 60 s (min 60, max 60)";
        QTest::newRow("first frame before the interval: the start stays")
            << Frames{-1, 719} << 720 << 0
            << "2 frame(s), observed median 720 s (min 720, max 720)";
        QTest::newRow("first frame at the very end of the interval")
            << Frames{3600, 7200} << 3600 << 3600
            << "2 frame(s), observed median 3600 s (min 3600, max 3600)";
        QTest::newRow("a single frame tells no spacing") << Frames{30} << 60 << 0 << "1 frame(s)";
        QTest::newRow("an empty archive")
            << Frames{} << 60 << 0
            << "no frames returned; scheduling every 60 s with normal validation.";
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
        const SourcePlan plan = SourcePlanning::plan({0, QStringLiteral("EIT 171"), {}},
                                                     PreflightMode::QuickProbe, frames, settings);
        QCOMPARE(plan.schedule.stepMs, qint64(stepSeconds) * 1000);
        QCOMPARE(plan.schedule.firstMs, startUtc().addSecs(firstOffset).toMSecsSinceEpoch());
        QCOMPARE(plan.schedule.lastMs, settings.endUtc.toMSecsSinceEpoch());
        if (!found.endsWith(QLatin1Char('.')))
            found += QStringLiteral("; acquisition step=%1 s.").arg(stepSeconds);
        QCOMPARE(plan.logLine, QStringLiteral("Quick probe EIT 171: ") + found);
    }

    void everyDatasourceHasItsOwnFolder()
    {
        const QTemporaryDir root;
        AcquisitionSettings settings;
        settings.startUtc = settings.endUtc = startUtc();
        const QStringList nicknames = {QStringLiteral("RHESSI"), QStringLiteral("Rhessi "),
                                       QStringLiteral(" SUVI  195 / x"), QStringLiteral(" ")};
        for (int sourceId = 0; sourceId < nicknames.size(); ++sourceId)
            settings.sources.append({sourceId, nicknames.at(sourceId), QString()});
        settings.sources.append(settings.sources.first()); // listed twice, it keeps its folder

        const auto session = SessionLayout::create(root.path(), settings, nullptr);
        QVERIFY(session);
        const QStringList names = {
            QStringLiteral("RHESSI_20240501_000000"), QStringLiteral("Rhessi_20240501_000000_1"),
            QStringLiteral("SUVI_195_x_20240501_000000"), QStringLiteral("source_20240501_000000")};
        QCOMPARE(session->sources.size(), names.size());
        for (int sourceId = 0; sourceId < names.size(); ++sourceId) {
            const SourceFolder folder = session->sources.value(sourceId);
            QCOMPARE(folder.directory, session->directory + QLatin1Char('/') + names.at(sourceId));
            QCOMPARE(folder.name, names.at(sourceId));
            QVERIFY(QDir(folder.directory + QStringLiteral("/video_frames")).exists());
        }
        QVERIFY(QFile::link(root.path() + QStringLiteral("/nowhere"),
                            session->directory + QStringLiteral("_2")));
        QCOMPARE(SessionLayout::create(root.path(), settings, nullptr)->directory,
                 session->directory + QStringLiteral("_3"));
    }

    void profileIsReadFromNicknameAndPath_data()
    {
        QTest::addColumn<QString>("nickname");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("profile");
        const auto row = [](const char *name, const char *nickname, const char *path,
                            const char *profile) {
            QTest::newRow(name) << nickname << path << profile;
        };
        row("nickname alone, in small letters", "aia", "", "AIA");
        row("path that ends there", "band", "sdo/aia", "AIA");
        row("no blank after the instrument", "AIA171", "", "DEFAULT");
        row("SUVI goes before AIA", "SUVI 304", "SDO/AIA/304", "SUVI");
        row("SUVI by its path goes before AIA", "AIA 304", "GOES/SUVI", "SUVI");
        row("path that begins there", "x", "AIA/171", "DEFAULT");
        row("part of a longer step", "x", "SDO/AIAX/171", "DEFAULT");
    }

    void profileIsReadFromNicknameAndPath()
    {
        QFETCH(QString, nickname);
        QFETCH(QString, path);
        QFETCH(QString, profile);
        const DataSource source{1, nickname, path};
        QCOMPARE(SourceTiming::toText(SourceTiming::profileOf(source)), profile);

        TestFolder::setKey(QStringLiteral("timing/aiaMaxTimeErrorSeconds"), -5); // reads as 0
        TestFolder::setKey(QStringLiteral("timing/suviMaxTimeErrorSeconds"), 12);
        const QMap<QString, int> tolerances = {{QStringLiteral("AIA"), 0},
                                               {QStringLiteral("SUVI"), 12}};
        AcquisitionSettings settings;
        settings.maxTimeErrorSeconds = 77;
        QCOMPARE(SourceTiming::toleranceSeconds(source, settings), tolerances.value(profile, 77));
        settings.useSourceTimingProfiles = false;
        QCOMPARE(SourceTiming::toleranceSeconds(source, settings), 77);
    }
};

QTEST_GUILESS_MAIN(TestAcquisitionRules)
#include "tst_acquisitionrules.moc"

#include "acquisition/acquisitionplan.h"
#include "acquisition/acquisitionsettings.h"

#include <QtTest>

Q_DECLARE_METATYPE(RequestSchedule)

namespace {

DataSource source(int sourceId)
{
    return {sourceId, QStringLiteral("source %1").arg(sourceId), QString()};
}

/// Requests as "time:sourceId", times in milliseconds.
QStringList walk(AcquisitionPlan plan)
{
    QStringList requests;
    for (; !plan.atEnd(); plan.advance()) {
        const FrameRequest request = plan.current();
        if (request.requestIndex != requests.size() || plan.position() != requests.size())
            return {QStringLiteral("numbered wrongly at %1").arg(requests.size())};
        requests += QStringLiteral("%1:%2")
                        .arg(request.requestedUtc.toMSecsSinceEpoch())
                        .arg(request.sourceId);
    }
    return requests;
}

} // namespace

class TestAcquisitionPlan : public QObject
{
    Q_OBJECT

private slots:
    void requestsAreInterleavedByTime_data();
    void requestsAreInterleavedByTime();
    void requestCarriesItsDatasource();
    void tenYearsAtOneSecondAreCountedButNotStored();
    void nominalCountIsWholeStepsAndTheStartOfEachDatasource_data();
    void nominalCountIsWholeStepsAndTheStartOfEachDatasource();
};

void TestAcquisitionPlan::requestsAreInterleavedByTime_data()
{
    QTest::addColumn<QVector<RequestSchedule>>("schedules");
    QTest::addColumn<QString>("requests");

    QTest::newRow("nothing planned") << QVector<RequestSchedule>() << QString();
    QTest::newRow("the end is an instant to ask for")
        << QVector<RequestSchedule>{{source(1), 0, 20, 10}} << "0:1 10:1 20:1";
    QTest::newRow("start equals end") << QVector<RequestSchedule>{{source(0), 5, 5, 10}} << "5:0";
    QTest::newRow("the last step passes the end")
        << QVector<RequestSchedule>{{source(1), 3, 19, 10}} << "3:1 13:1";
    QTest::newRow("different steps and anchors")
        << QVector<RequestSchedule>{{source(1), 0, 30, 10}, {source(2), 4, 30, 25}}
        << "0:1 4:2 10:1 20:1 29:2 30:1";
    QTest::newRow("the same instant: the lower sourceId first, however listed")
        << QVector<RequestSchedule>{{source(9), 0, 20, 10}, {source(0), 0, 20, 20}}
        << "0:0 0:9 10:9 20:0 20:9";
    QTest::newRow("a datasource listed twice is asked twice")
        << QVector<RequestSchedule>{{source(3), 0, 10, 10}, {source(3), 0, 10, 10}}
        << "0:3 0:3 10:3 10:3";
}

void TestAcquisitionPlan::requestsAreInterleavedByTime()
{
    QFETCH(QVector<RequestSchedule>, schedules);
    QFETCH(QString, requests);

    const AcquisitionPlan plan(schedules);
    QCOMPARE(walk(plan).join(QLatin1Char(' ')), requests);
    QCOMPARE(plan.size(), qint64(walk(plan).size()));
}

void TestAcquisitionPlan::requestCarriesItsDatasource()
{
    const DataSource suvi = {2003, QStringLiteral("GOES-R SUVI 195"),
                             QStringLiteral("GOES/SUVI/195")};
    const FrameRequest request = AcquisitionPlan({{suvi, 1500, 1500, 1000}}).current();
    QCOMPARE(request.sourceId, suvi.sourceId);
    QCOMPARE(request.nickname, suvi.nickname);
    QCOMPARE(request.path, suvi.path);
    QCOMPARE(request.requestedUtc.timeSpec(), Qt::UTC);
    QCOMPARE(request.requestedUtc.time(), QTime(0, 0, 1, 500));
}

void TestAcquisitionPlan::tenYearsAtOneSecondAreCountedButNotStored()
{
    constexpr qint64 tenYearsMs = 3652LL * 86400 * 1000;
    QVector<RequestSchedule> schedules;
    for (int sourceId = 0; sourceId < 36; ++sourceId)
        schedules.append({source(sourceId), 0, tenYearsMs, 1000});
    AcquisitionPlan plan(schedules);
    QCOMPARE(plan.size(), qint64(36) * (tenYearsMs / 1000 + 1));
    for (int i = 0; i < 36; ++i)
        plan.advance();
    QCOMPARE(plan.current().requestedUtc.toMSecsSinceEpoch(), qint64(1000));
}

void TestAcquisitionPlan::nominalCountIsWholeStepsAndTheStartOfEachDatasource_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<int>("cadenceSeconds");
    QTest::addColumn<int>("sources");
    QTest::addColumn<qint64>("count");

    QTest::newRow("start equals end") << qint64(0) << 60 << 1 << qint64(1);
    QTest::newRow("a step that does not fit") << qint64(119) << 60 << 2 << qint64(4);
    QTest::newRow("a step that just fits") << qint64(120) << 60 << 2 << qint64(6);
    QTest::newRow("more than 32 bits") << qint64(4000000000) << 1 << 3 << qint64(12000000003);
    QTest::newRow("end before start") << qint64(-1) << 60 << 1 << qint64(0);
}

void TestAcquisitionPlan::nominalCountIsWholeStepsAndTheStartOfEachDatasource()
{
    QFETCH(qint64, seconds);
    QFETCH(int, cadenceSeconds);
    QFETCH(int, sources);

    AcquisitionSettings settings;
    settings.startUtc = QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(seconds);
    settings.cadenceSeconds = cadenceSeconds;
    settings.sources.resize(sources);
    QTEST(AcquisitionPlanning::nominalCount(settings), "count");
}

QTEST_GUILESS_MAIN(TestAcquisitionPlan)
#include "tst_acquisitionplan.moc"

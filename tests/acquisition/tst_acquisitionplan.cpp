#include "acquisition/acquisitionplan.h"

#include <QtTest>

Q_DECLARE_METATYPE(RequestSchedule)

namespace {

RequestSchedule schedule(int sourceId, qint64 firstMs, qint64 lastMs, qint64 stepMs)
{
    return {{sourceId, QStringLiteral("SUVI 195"), QStringLiteral("GOES/SUVI/195")},
            firstMs,
            lastMs,
            stepMs};
}

/// Requests as "time:sourceId", times in milliseconds; less when they are numbered wrongly.
QString walk(AcquisitionPlan plan)
{
    QStringList requests;
    for (; !plan.atEnd() && plan.position() == requests.size(); plan.advance()) {
        const FrameRequest request = plan.current();
        if (request.requestIndex == requests.size())
            requests += QStringLiteral("%1:%2")
                            .arg(request.requestedUtc.toMSecsSinceEpoch())
                            .arg(request.sourceId);
    }
    return requests.join(QLatin1Char(' '));
}

} // namespace

class TestAcquisitionPlan : public QObject
{
    Q_OBJECT

private slots:
    void requestsAreInterleavedByTime_data();
    void requestsAreInterleavedByTime();
    void tenYearsAtOneSecondAreCountedButNotStored();
};

void TestAcquisitionPlan::requestsAreInterleavedByTime_data()
{
    using Schedules = QVector<RequestSchedule>;
    QTest::addColumn<Schedules>("schedules");
    QTest::addColumn<QString>("requests");

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
        << Schedules{schedule(9, 0, 20, 10), schedule(0, 0, 20, 20)} << "0:0 0:9 10:9 20:0 20:9";
    QTest::newRow("a datasource listed twice is asked twice")
        << Schedules{schedule(3, 0, 10, 10), schedule(3, 0, 10, 10)} << "0:3 0:3 10:3 10:3";
}

void TestAcquisitionPlan::requestsAreInterleavedByTime()
{
    QFETCH(QVector<RequestSchedule>, schedules);
    QFETCH(QString, requests);

    const AcquisitionPlan plan(schedules);
    QCOMPARE(walk(plan), requests);
    QCOMPARE(plan.size(), qint64(requests.count(QLatin1Char(':'))));
}

void TestAcquisitionPlan::tenYearsAtOneSecondAreCountedButNotStored()
{
    constexpr qint64 tenYearsMs = 3652LL * 86400 * 1000;
    QVector<RequestSchedule> schedules;
    for (int sourceId = 0; sourceId < 36; ++sourceId)
        schedules.append(schedule(sourceId, 500, tenYearsMs, 1000));
    AcquisitionPlan plan(schedules);
    QCOMPARE(plan.size(), 36 * tenYearsMs / 1000);
    for (int i = 0; i < 36; ++i)
        plan.advance();
    const FrameRequest request = plan.current();
    QCOMPARE(request.requestedUtc, QDateTime(QDate(1970, 1, 1), QTime(0, 0, 1, 500), Qt::UTC));
    QCOMPARE(request.nickname, QStringLiteral("SUVI 195"));
    QCOMPARE(request.path, QStringLiteral("GOES/SUVI/195"));
}

QTEST_GUILESS_MAIN(TestAcquisitionPlan)
#include "tst_acquisitionplan.moc"

#include "simulator/archive/archive.h"
#include "simulator/service/server.h"

#include <httplib.h>

#include <QElapsedTimer>
#include <QTest>

using namespace Simulator;

namespace {

constexpr const char *closestPath =
    "/v2/getClosestImage/?date=2024-05-01T00%3A00%3A00Z&sourceId=2003";

} // namespace

/// What other tests do not show: they let the real curl run into each fault.
class TestSimulatorServer : public QObject
{
    Q_OBJECT

private slots:
    void faultsConcernTheirRequestsOnly();
};

void TestSimulatorServer::faultsConcernTheirRequestsOnly()
{
    Server server(Archive::sample());
    QVERIFY(server.start());
    server.addFault({Operation::GetClosestImage, FaultKind::Status, 503, 2, 2});
    httplib::Client client("127.0.0.1", server.port());
    QVector<int> statuses;
    for (int request = 0; request < 4; ++request)
        statuses.append(client.Get(closestPath)->status);
    QCOMPARE(statuses, (QVector<int>{200, 503, 503, 200}));
    QCOMPARE(client.Get("/v2/getDataSources/")->status, 200);
    server.addFault({Operation::GetClosestImage, FaultKind::Status, 504});
    server.clearFaults();
    QCOMPARE(client.Get(closestPath)->status, 200);
    server.addFault({Operation::GetClosestImage, FaultKind::Delay, 30});
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(client.Get(closestPath)->status, 200);
    QVERIFY(timer.elapsed() >= 30);
}

QTEST_GUILESS_MAIN(TestSimulatorServer)
#include "tst_simulatorserver.moc"

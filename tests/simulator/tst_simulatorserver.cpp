#include "simulator/archive.h"
#include "simulator/server.h"

#include <httplib.h>

#include <QElapsedTimer>
#include <QTest>

#include <thread>

using namespace Simulator;

Q_DECLARE_METATYPE(Simulator::Fault)

namespace {

constexpr const char *closestPath =
    "/v2/getClosestImage/?date=2024-05-01T00%3A00%3A00Z&sourceId=2003";

std::string downloadPath()
{
    const auto archive = Archive::sample();
    return "/v2/downloadImage/?id=" +
           std::to_string(archive->idOf(*archive->nearest(2003, 1714521600))) +
           "&width=96&type=png";
}

} // namespace

class TestSimulatorServer : public QObject
{
    Q_OBJECT

private slots:
    void faultsReachTheWire_data();
    void faultsReachTheWire();
    void faultsConcernTheirRequestsOnly();
    void stopEndsHangingClients();
};

void TestSimulatorServer::faultsReachTheWire_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("status"); // 0: no answer arrives
    QTest::addColumn<QByteArray>("start");

    const Operation closest = Operation::GetClosestImage;
    const Operation download = Operation::DownloadImage;
    const QByteArray object = "{\"error\":";
    QTest::newRow("bad gateway") << Fault{closest, FaultKind::Status, 502} << 502
                                 << QByteArray("<html>");
    QTest::newRow("exception") << Fault{closest, FaultKind::Status, 500} << 500 << object;
    QTest::newRow("late") << Fault{closest, FaultKind::Delay, 30} << 200 << QByteArray("{\"id\":");
    QTest::newRow("refused") << Fault{closest, FaultKind::Refuse} << 0 << QByteArray();
    QTest::newRow("reset in the body")
        << Fault{closest, FaultKind::ResetInBody} << 0 << QByteArray();
    QTest::newRow("closed in the body")
        << Fault{download, FaultKind::ResetInBody, 1} << 0 << QByteArray();
    QTest::newRow("web page") << Fault{closest, FaultKind::HtmlBody} << 200
                              << QByteArray("<!DOCTYPE html>");
    QTest::newRow("error object") << Fault{closest, FaultKind::JsonErrorBody} << 200 << object;
    QTest::newRow("nothing") << Fault{closest, FaultKind::EmptyBody} << 200 << QByteArray();
    QTest::newRow("array") << Fault{closest, FaultKind::JsonArray} << 200 << QByteArray("[]");
    QTest::newRow("object for a picture")
        << Fault{download, FaultKind::JsonErrorBody} << 200 << object;
    QTest::newRow("half a picture")
        << Fault{download, FaultKind::TruncatedPng} << 200 << QByteArray("\x89PNG");
}

void TestSimulatorServer::faultsReachTheWire()
{
    QFETCH(Fault, fault);
    Server server(Archive::sample());
    QVERIFY(server.start());
    httplib::Client client("127.0.0.1", server.port());
    client.set_keep_alive(true); // a broken connection must end although more could follow
    const std::string path =
        fault.operation == Operation::DownloadImage ? downloadPath() : closestPath;
    const std::string whole = client.Get(path)->body;
    server.addFault(fault);
    QElapsedTimer timer;
    timer.start();
    const httplib::Result result = client.Get(path);
    QVERIFY(timer.elapsed() >= (fault.kind == FaultKind::Delay ? fault.value : 0));
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    QTEST(result ? result->status : 0, "status");
    QFETCH(QByteArray, start);
    if (!result)
        return;
    QVERIFY(QByteArray::fromStdString(result->body).startsWith(start));
    if (fault.kind == FaultKind::TruncatedPng)
        QCOMPARE(result->body, whole.substr(0, whole.size() / 2));
}

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
}

void TestSimulatorServer::stopEndsHangingClients()
{
    Server server(Archive::sample());
    QVERIFY(server.start());
    server.addFault({Operation::GetClosestImage, FaultKind::Hang});
    bool answered = true;
    std::thread hanging([&server, &answered] {
        httplib::Client client("127.0.0.1", server.port());
        answered = bool(client.Get(closestPath));
    });
    httplib::Client idle("127.0.0.1", server.port());
    idle.set_keep_alive(true);
    QVERIFY(idle.Get("/v2/getDataSources/"));
    QTRY_COMPARE(server.requestCount(Operation::GetClosestImage), 1);
    QElapsedTimer timer;
    timer.start();
    server.stop();
    QVERIFY2(timer.elapsed() < 800, qPrintable(QString::number(timer.elapsed())));
    hanging.join();
    QVERIFY(!answered);
}

QTEST_GUILESS_MAIN(TestSimulatorServer)
#include "tst_simulatorserver.moc"

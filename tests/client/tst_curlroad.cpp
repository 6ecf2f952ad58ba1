#include "client/helioviewerclient.h"

#include "simulator/archive.h"
#include "simulator/server.h"
#include "tests/support/testfolder.h"

#include <QtTest>

using Simulator::Transport;
Q_DECLARE_METATYPE(Transport)

/// The client through the real curl to a service on loopback.
class TestCurlRoad : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("no_proxy", "*"); }
    void init() { TestFolder::clearKeys(); }

    void fourRequests()
    {
        Simulator::Server server(Simulator::Archive::sample());
        startServer(server);
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);

        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        client.getDataSources();
        QVERIFY(catalogs.wait());
        QVERIFY(catalogs.first().first().toJsonObject().contains(QStringLiteral("SDO")));

        QSignalSpy indexes(&client, &HelioviewerClient::frameIndexReceived);
        client.getJPX(4, m_noon, m_noon.addSecs(7200), 60);
        QVERIFY(indexes.wait());
        const auto frames = indexes.first().at(3).value<QVector<QDateTime>>();
        QVERIFY2(frames.size() > 5, "LASCO C2 takes a picture every twelve minutes");
        QVERIFY(frames.first() >= m_noon && frames.last() <= m_noon.addSecs(7200));
        QCOMPARE(indexes.first().at(4).toString(), QString()); // "message" is null

        QSignalSpy images(&client, &HelioviewerClient::closestImageReceived);
        client.getClosestImage(4, frames.at(2));
        QVERIFY(images.wait());
        QCOMPARE(images.first().at(3).toDateTime(), frames.at(2));

        QSignalSpy pictures(&client, &HelioviewerClient::renderedImageDownloaded);
        const QString png = TestFolder::path(QStringLiteral("frame.png"));
        client.downloadImage(images.first().at(2).toLongLong(), 4, frames.at(2), frames.at(2), png,
                             512);
        QVERIFY(pictures.wait());
        QCOMPARE(QImage(png).size(), QSize(512, 512));
        QVERIFY2(errors.isEmpty(), qPrintable(errors.value(0).value(1).toString()));
    }

    void brokenTransferLeavesNoFile()
    {
        Simulator::Server server(Simulator::Archive::sample());
        startServer(server);
        server.addFault({Simulator::Operation::DownloadImage, Simulator::FaultKind::ResetInBody});
        HelioviewerClient client;
        QSignalSpy images(&client, &HelioviewerClient::closestImageReceived);
        client.getClosestImage(0, m_noon);
        QVERIFY(images.wait());
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        const QString png = TestFolder::path(QStringLiteral("half.png"));
        client.downloadImage(images.first().at(2).toLongLong(), 0, m_noon, m_noon, png, 512);
        QVERIFY(errors.wait(20'000));
        QCOMPARE(errors.first().at(0).toString(), QStringLiteral("downloadImage"));
        QVERIFY(errors.first().at(1).toString().startsWith(QLatin1String("curl: (")));
        QVERIFY(!QFile::exists(png));
    }

    void certificates_data()
    {
        QTest::addColumn<Transport>("transport");
        QTest::addColumn<bool>("bundle");
        QTest::addColumn<bool>("fallback");
        QTest::addColumn<QString>("outcome");
        const QString refused = QStringLiteral("curl: (60)");
        QTest::newRow("self-signed") << Transport::HttpsSelfSigned << false << false << refused;
        QTest::newRow("other host") << Transport::HttpsForeignHost << true << false << refused;
        QTest::newRow("unknown authority") << Transport::HttpsTrusted << false << false << refused;
        QTest::newRow("authority in the bundle")
            << Transport::HttpsTrusted << true << false << QString();
        // From here on the run is in insecure mode.
        QTest::newRow("self-signed with fallback")
            << Transport::HttpsSelfSigned << false << true << QString();
    }

    void certificates()
    {
        QFETCH(Transport, transport);
        QFETCH(bool, bundle);
        QFETCH(bool, fallback);
        QFETCH(QString, outcome);
        Simulator::Server server(Simulator::Archive::sample(), transport);
        startServer(server);
        TestFolder::setKey(QStringLiteral("network/allowInsecureFallback"), fallback);
        if (bundle)
            TestFolder::setKey(QStringLiteral("network/caBundle"), server.caCertificateFile());
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        client.getDataSources();
        QTRY_COMPARE(errors.size() + catalogs.size(), 1);
        QCOMPARE(errors.value(0).value(1).toString().left(10), outcome);
    }

private:
    static void startServer(Simulator::Server &server)
    {
        QString errorText;
        QVERIFY2(server.start(&errorText), qPrintable(errorText));
        TestFolder::setKey(QStringLiteral("network/apiBase"), server.baseUrl());
    }

    const QDateTime m_noon{QDate(2024, 5, 1), QTime(12, 0), Qt::UTC};
};

QTEST_GUILESS_MAIN(TestCurlRoad)
#include "tst_curlroad.moc"

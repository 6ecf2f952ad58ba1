#include "client/helioviewerclient.h"

#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/testfolder.h"

#include <QtTest>

using Simulator::Transport;
Q_DECLARE_METATYPE(Transport)

/// Whom the real curl trusts.
class TestCurlRoad : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("no_proxy", "*"); }
    void init() { TestFolder::clearKeys(); }

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
};

QTEST_GUILESS_MAIN(TestCurlRoad)
#include "tst_curlroad.moc"

#include "client/helioviewerclient.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QtTest>

using Simulator::Transport;

namespace {

FakeProgram::Reply badCertificate()
{
    FakeProgram::Reply reply;
    reply.exitCode = 60;
    reply.standardError = "curl: (60) self-signed certificate\n";
    return reply;
}

} // namespace

/// Whom the real curl trusts, and the switch to unverified HTTPS. That lasts for the whole run: no
/// other program may hold these tests, and theirs is the order in which they stand.
class TestCertificates final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("no_proxy", "*"); }
    void init() { TestFolder::clearKeys(); }

    void curlDecides()
    {
        TestFolder::setKey("network/allowInsecureFallback"_s, false);
        const QString refused = "curl: (60)"_s;
        QCOMPARE(answerOf(Transport::HttpsSelfSigned, false), refused);
        QCOMPARE(answerOf(Transport::HttpsTrusted, false), refused); // an unknown authority
        QCOMPARE(answerOf(Transport::HttpsForeignHost, true), refused);
        QCOMPARE(answerOf(Transport::HttpsTrusted, true), QString());
    }

    void noSwitchWhileCanceling()
    {
        const QString curl = FakeProgram::replace("curl"_s, {badCertificate(), {}});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        client.getDataSources();
        QByteArray state; // without events: the client must not notice its end before
        while (!state.contains(") Z ")) { // a zombie: not waited for yet
            QFile file("/proc/%1/stat"_s.arg(FakeProgram::runs(curl).value(0).processId));
            state = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        client.cancel();
        QCOMPARE(errors.size(), 1);
        QVERIFY(!client.isBusy());
        QCOMPARE(FakeProgram::runs(curl).size(), 1);
    }

    void switchedOnceForAllClients()
    {
        FakeProgram::Reply partial = badCertificate();
        partial.files.insert("$-o"_s, "half");
        const QString curl = FakeProgram::replace("curl"_s, {partial, {}, badCertificate()});
        HelioviewerClient first;
        HelioviewerClient second;
        QSignalSpy firstLog(&first, &HelioviewerClient::logMessage);
        QSignalSpy secondLog(&second, &HelioviewerClient::logMessage);
        QSignalSpy firstErrors(&first, &HelioviewerClient::requestError);
        QSignalSpy secondErrors(&second, &HelioviewerClient::requestError);

        first.downloadImage(77, 10, {}, {}, TestFolder::path("frame.png"_s), 64);
        QVERIFY(firstErrors.wait());
        // The restart brought no file; that of the first attempt would have looked like success.
        QCOMPARE(firstErrors.first().at(1).toString(), "Downloaded file is missing or empty."_s);
        second.getDataSources(); // its own restart fails as the first attempt did
        QVERIFY(secondErrors.wait());
        QCOMPARE(firstErrors.size() + secondErrors.size(), 2);

        const auto runs = FakeProgram::runs(curl);
        const QString insecure = "--insecure"_s;
        QCOMPARE(runs.size(), 4);
        QCOMPARE(runs.at(0).arguments.first(), "-f"_s);
        QCOMPARE(runs.at(1).arguments, QStringList{insecure} + runs.at(0).arguments);
        QCOMPARE(runs.at(2).arguments.mid(0, 2), (QStringList{insecure, "-f"_s}));
        QCOMPARE(firstLog.size(), 2); // the URL of the request, not of its restart, and
        QCOMPARE(firstLog.at(1).at(0).toString(),
                 "WARNING: curl SSL certificate validation failed (error 60). "
                 "Insecure HTTPS fallback enabled for this Orvik session."_s);
        QCOMPARE(secondLog.size(), 1);

        TestFolder::setKey("network/allowInsecureFallback"_s, false);
        second.getDataSources();
        QVERIFY(secondErrors.wait());
        QCOMPARE(FakeProgram::runs(curl).constLast().arguments.first(), "-f"_s);
    }

    void switchIsOn() { QCOMPARE(answerOf(Transport::HttpsSelfSigned, false), QString()); }

private:
    /// The beginning of the error that the real curl has with a service; empty without one.
    static QString answerOf(Transport transport, bool bundle)
    {
        Simulator::Server server(Simulator::Archive::sample(), transport);
        if (!server.start())
            return "no service"_s;
        TestFolder::setKey("network/apiBase"_s, server.baseUrl());
        TestFolder::setKey("network/caBundle"_s, bundle ? server.caCertificateFile() : "none"_s);
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        client.getDataSources();
        if (!QTest::qWaitFor([&] { return errors.size() + catalogs.size() == 1; }, 20'000))
            return "no answer"_s;
        return errors.value(0).value(1).toString().left(10);
    }
};

QTEST_GUILESS_MAIN(TestCertificates)
#include "tst_certificates.moc"

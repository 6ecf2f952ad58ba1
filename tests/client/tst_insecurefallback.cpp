#include "client/helioviewerclient.h"

#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QThread>
#include <QtTest>

namespace {

const QString &insecure()
{
    static const QString option = QStringLiteral("--insecure");
    return option;
}

FakeProgram::Reply badCertificate()
{
    FakeProgram::Reply reply;
    reply.exitCode = 60;
    reply.standardError = "curl: (60) self-signed certificate\n";
    return reply;
}

/// A child that nobody has waited for yet is a zombie: "Z" behind its name.
bool hasEnded(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(processId));
    return status.open(QIODevice::ReadOnly) && status.readAll().contains(") Z ");
}

} // namespace

/// The switch to unverified HTTPS. It lasts for the whole run, hence a program of its own.
class TestInsecureFallback : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        TestFolder::clearKeys();
        m_curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("paths/curl"), m_curl);
    }

    void forbidden()
    {
        TestFolder::setKey(QStringLiteral("network/allowInsecureFallback"), false);
        FakeProgram::setScript(m_curl, {badCertificate()});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        client.getDataSources();
        QVERIFY(errors.wait());
        QCOMPARE(errors.first().at(1).toString(),
                 QStringLiteral("curl: (60) self-signed certificate"));
        QCOMPARE(FakeProgram::runs(m_curl).size(), 1);
        QVERIFY(!FakeProgram::argumentLists(m_curl).constFirst().contains(insecure()));
    }

    void notWhileCanceling()
    {
        FakeProgram::setScript(m_curl, {badCertificate(), {}});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        client.getDataSources();
        while (!hasEnded(FakeProgram::runs(m_curl).value(0).processId))
            QThread::msleep(1); // without events: the client must not notice its end before
        client.cancel();
        QCOMPARE(errors.size(), 1);
        QVERIFY(!client.isBusy());
        QCOMPARE(FakeProgram::runs(m_curl).size(), 1);
    }

    void switchedOnceForAllClients()
    {
        const QString png = TestFolder::path(QStringLiteral("frame.png"));
        FakeProgram::Reply partial = badCertificate();
        partial.files.insert(QStringLiteral("$-o"), "half");
        FakeProgram::setScript(m_curl, {partial, {}, badCertificate()});

        HelioviewerClient first;
        HelioviewerClient second;
        QSignalSpy firstLog(&first, &HelioviewerClient::logMessage);
        QSignalSpy secondLog(&second, &HelioviewerClient::logMessage);
        QSignalSpy firstErrors(&first, &HelioviewerClient::requestError);
        QSignalSpy secondErrors(&second, &HelioviewerClient::requestError);

        first.downloadImage(77, 10, {}, {}, png, 64);
        QVERIFY(firstErrors.wait());
        // The restart brought no file; that of the first attempt would have looked like success.
        QCOMPARE(firstErrors.first().at(1).toString(),
                 QStringLiteral("Downloaded file is missing or empty."));
        second.getDataSources(); // its own restart fails as the first attempt did
        QVERIFY(secondErrors.wait());
        QCOMPARE(firstErrors.size() + secondErrors.size(), 2);

        const QVector<QStringList> runs = FakeProgram::argumentLists(m_curl);
        QCOMPARE(runs.size(), 4);
        QCOMPARE(runs.at(0).first(), QStringLiteral("-f"));
        QCOMPARE(runs.at(1), QStringList{insecure()} + runs.at(0));
        QCOMPARE(runs.at(2).mid(0, 2), (QStringList{insecure(), QStringLiteral("-f")}));
        QCOMPARE(firstLog.size(), 2); // the URL of the request, not of its restart, and
        QCOMPARE(firstLog.at(1).at(0).toString(),
                 QStringLiteral("WARNING: curl SSL certificate validation failed (error 60). "
                                "Insecure HTTPS fallback enabled for this Orvik session."));
        QCOMPARE(secondLog.size(), 1);

        TestFolder::setKey(QStringLiteral("network/allowInsecureFallback"), false);
        second.getDataSources();
        QVERIFY(secondErrors.wait());
        QCOMPARE(FakeProgram::argumentLists(m_curl).constLast().first(), QStringLiteral("-f"));
    }

private:
    QString m_curl;
};

QTEST_GUILESS_MAIN(TestInsecureFallback)
#include "tst_insecurefallback.moc"

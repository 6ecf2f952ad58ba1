#include "client/helioviewerclient.h"

#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QtTest>

#include <csignal>

namespace {

const QDateTime &noon()
{
    static const QDateTime time(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);
    return time;
}

QList<QVariant> error(const QString &operation, const QString &message)
{
    return {operation, message};
}

FakeProgram::Reply answering(const QByteArray &answer)
{
    FakeProgram::Reply reply;
    reply.standardOutput = answer;
    return reply;
}

FakeProgram::Reply failing(int exitCode, const QByteArray &text)
{
    FakeProgram::Reply reply;
    reply.exitCode = exitCode;
    reply.standardError = text;
    return reply;
}

FakeProgram::Reply crashing(const QByteArray &text)
{
    FakeProgram::Reply reply = failing(0, text);
    reply.crash = true;
    return reply;
}

FakeProgram::Reply downloading(const QByteArray &content)
{
    FakeProgram::Reply reply;
    reply.files.insert(QStringLiteral("$-o"), content);
    return reply;
}

FakeProgram::Reply hangingAfter(const QByteArray &partialContent)
{
    FakeProgram::Reply reply = downloading(partialContent);
    reply.hang = true;
    return reply;
}

} // namespace

/// The client against a stand-in for curl: what it is asked, and every way in which it can fail.
class TestHelioviewerClient : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        TestFolder::clearKeys();
        m_curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("paths/curl"), QStringLiteral("bin/../bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("network/apiBase"), QStringLiteral("http://[::1]/v2//"));
        m_png = TestFolder::path(QStringLiteral("frame one.png"));
        QFile::remove(m_png);
    }

    void commandLines()
    {
        TestFolder::setKey(QStringLiteral("network/connectTimeoutSeconds"), 5);
        const QString bundle = TestFolder::path(QStringLiteral("ca.pem"));
        FakeProgram::setScript(m_curl, {answering("{}"), downloading("png")});
        HelioviewerClient client;
        QSignalSpy log(&client, &HelioviewerClient::logMessage);
        QSignalSpy frames(&client, &HelioviewerClient::frameIndexReceived);
        client.getJPX(0, noon(), noon().addSecs(60), 45);
        QVERIFY(frames.wait());
        QCOMPARE(frames.first().mid(0, 3), (QList<QVariant>{0, noon(), noon().addSecs(60)}));

        QFile(bundle).open(QIODevice::WriteOnly);
        TestFolder::setKey(QStringLiteral("network/caBundle"), QStringLiteral("ca.pem"));
        QSignalSpy downloaded(&client, &HelioviewerClient::renderedImageDownloaded);
        client.downloadImage(77, 10, noon(), noon().addSecs(7), m_png, 1024);
        QVERIFY(downloaded.wait());
        QCOMPARE(downloaded.first(),
                 (QList<QVariant>{10, noon(), noon().addSecs(7), Q_INT64_C(77), m_png}));

        const QString frameUrl = QStringLiteral(
            "http://[::1]/v2/getJPX/?startTime=2024-05-01T12:00:00Z&endTime=2024-05-01T12:01:00Z"
            "&sourceId=0&linked=true&jpip=true&verbose=true&cadence=45");
        const QString imageUrl =
            QStringLiteral("http://[::1]/v2/downloadImage/?id=77&width=1024&type=png");
        const QStringList common = QStringLiteral("-f -sS -L --retry 2 --connect-timeout 5 "
                                                  "--max-time 180")
                                       .split(QLatin1Char(' '));
        const QVector<QStringList> expected{
            common + QStringList{frameUrl},
            common + QStringList{QStringLiteral("--cacert"), bundle, QStringLiteral("-o"), m_png,
                                 imageUrl},
        };
        QCOMPARE(FakeProgram::argumentLists(m_curl), expected);
        QCOMPARE(log, (QList<QList<QVariant>>{{QStringLiteral("curl: ") + frameUrl},
                                              {QStringLiteral("curl: ") + imageUrl}}));
    }

    void failedRequestReportsOneError_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QString>("message");
        QTest::newRow("server down: curl's own words")
            << failing(7, " curl: (7) Failed to connect\n")
            << QStringLiteral("curl: (7) Failed to connect");
        QTest::newRow("silent failure: the exit code speaks")
            << failing(22, "\n") << QStringLiteral("curl failed with exit code 22");
        QTest::newRow("crash") << crashing("") << QStringLiteral("Process crashed");
        QTest::newRow("crash with last words")
            << crashing("out of memory\n") << QStringLiteral("out of memory");
        QTest::newRow("login page in place of JSON")
            << answering("<html>") << QStringLiteral("Invalid JSON: illegal value");
        QTest::newRow("no such image")
            << answering("{\"error\":\"none\",\"errno\":10}")
            << QStringLiteral("Response does not contain a valid image id/date.");
    }

    void failedRequestReportsOneError()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QString, message);
        FakeProgram::setScript(m_curl, {reply, answering("{\"SDO\":{}}")});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy images(&client, &HelioviewerClient::closestImageReceived);
        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        connect(&client, &HelioviewerClient::requestError, &client,
                &HelioviewerClient::getDataSources); // at once, from within the error
        client.getClosestImage(10, noon());
        QVERIFY(catalogs.wait());
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors.first(), error(QStringLiteral("getClosestImage"), message));
        QCOMPARE(images.size(), 0);
        QVERIFY(!client.isBusy());
    }

    void programThatCannotBeRun_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<QString>("message");
        const QString path = TestFolder::path(QStringLiteral("bin/no-curl"));
        QTest::newRow("missing") << false << QStringLiteral("curl.exe not found: ") + path;
        QTest::newRow("not executable") << true << QStringLiteral("execvp: Permission denied");
    }

    void programThatCannotBeRun()
    {
        QFETCH(bool, exists);
        QFETCH(QString, message);
        QFile program(TestFolder::path(QStringLiteral("bin/no-curl")));
        program.remove();
        QVERIFY(!exists || program.open(QIODevice::WriteOnly));
        TestFolder::setKey(QStringLiteral("paths/curl"), program.fileName());
        FakeProgram::setScript(m_curl, {answering("{}")});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        connect(&client, &HelioviewerClient::requestError, &client, [this, &client] {
            TestFolder::setKey(QStringLiteral("paths/curl"), m_curl);
            client.getDataSources();
        });
        client.getJPX(10, noon(), noon().addSecs(60), 60);
        QVERIFY(catalogs.wait());
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors.first(), error(QStringLiteral("getJPX"), message));
    }

    void secondRequestIsRefused()
    {
        FakeProgram::setScript(
            m_curl, {answering("{\"id\":\"5\",\"date\":\"2024-05-01 12:00:07\",\"rsun\":1.5}")});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy images(&client, &HelioviewerClient::closestImageReceived);
        client.getClosestImage(10, noon());
        client.downloadImage(1, 99, {}, {}, m_png, 64);
        QCOMPARE(errors, (QList<QList<QVariant>>{
                             error(QStringLiteral("downloadImage"),
                                   QStringLiteral("HelioviewerClient is already busy."))}));
        QVERIFY(images.wait());
        QCOMPARE(images.first().mid(0, 4),
                 (QList<QVariant>{10, noon(), Q_INT64_C(5), noon().addSecs(7)}));
        QCOMPARE(images.first().at(4).toJsonObject().size(), 3);
        QCOMPARE(FakeProgram::runs(m_curl).size(), 1);
    }

    void downloadThatFailsLeavesNoFile_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QString>("message");
        FakeProgram::Reply cutOff = downloading("half a pict");
        cutOff.exitCode = 18;
        const QString missing = QStringLiteral("Downloaded file is missing or empty.");
        QTest::newRow("cut off") << cutOff << QStringLiteral("curl failed with exit code 18");
        QTest::newRow("empty") << downloading({}) << missing;
        QTest::newRow("missing") << FakeProgram::Reply() << missing;
    }

    void downloadThatFailsLeavesNoFile()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QString, message);
        FakeProgram::setScript(m_curl, {reply});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        client.downloadImage(77, 10, noon(), noon(), m_png, 1024);
        QVERIFY(errors.wait());
        QCOMPARE(errors.first(), error(QStringLiteral("downloadImage"), message));
        QVERIFY(!QFile::exists(m_png));
    }

    void cancelEndsTheRequest()
    {
        FakeProgram::setScript(m_curl, {hangingAfter("half"), answering("{}")});
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        client.cancel(); // idle: nothing to do
        client.downloadImage(77, 10, noon(), noon(), m_png, 1024);
        QTRY_COMPARE(QFileInfo(m_png).size(), 4);

        connect(&client, &HelioviewerClient::requestError, &client, &HelioviewerClient::cancel);
        client.cancel();
        QVERIFY(!client.isBusy());
        QVERIFY(!QFile::exists(m_png));
        QCOMPARE(errors, (QList<QList<QVariant>>{error(QStringLiteral("downloadImage"),
                                                       QStringLiteral("Process crashed"))}));

        QSignalSpy catalogs(&client, &HelioviewerClient::catalogReceived);
        client.getDataSources();
        QVERIFY(catalogs.wait());
        QCOMPARE(errors.size(), 1);
    }

    void cancelFromTheLogLineStartsNothing()
    {
        HelioviewerClient client;
        connect(&client, &HelioviewerClient::logMessage, &client, &HelioviewerClient::cancel);
        client.getDataSources();
        QVERIFY(!client.isBusy());
        QVERIFY(FakeProgram::runs(m_curl).isEmpty());
    }

    void destroyedClientLeavesNothingBehind()
    {
        FakeProgram::setScript(m_curl, {hangingAfter("half")});
        auto client = std::make_unique<HelioviewerClient>();
        QSignalSpy errors(client.get(), &HelioviewerClient::requestError);
        client->downloadImage(77, 10, noon(), noon(), m_png, 1024);
        QTRY_COMPARE(QFileInfo(m_png).size(), 4);
        client.reset();
        QCOMPARE(errors.size(), 0);
        QVERIFY(!QFile::exists(m_png));
        const auto child = static_cast<pid_t>(FakeProgram::runs(m_curl).constFirst().processId);
        QVERIFY(kill(child, 0) != 0); // ended and reaped
    }

private:
    QString m_curl;
    QString m_png;
};

QTEST_GUILESS_MAIN(TestHelioviewerClient)
#include "tst_helioviewerclient.moc"

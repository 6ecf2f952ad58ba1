#include "client/helioviewerclient.h"

#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QtTest>

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

FakeProgram::Reply downloading(const QByteArray &content)
{
    FakeProgram::Reply reply;
    reply.files.insert(QStringLiteral("$-o"), content);
    return reply;
}

} // namespace

/// The client against a stand-in for curl: what it is asked, and when it is not.
class TestHelioviewerClient : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        TestFolder::clearKeys();
        m_curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("paths/curl"), QStringLiteral("bin/../bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("network/apiBase"),
                           QStringLiteral("http://[::1]/my s\u00fcn//"));
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
        client.getJPX(0, noon().toOffsetFromUtc(7200), noon().addSecs(60), 45);
        QVERIFY(frames.wait());
        QCOMPARE(frames.first().mid(0, 3), (QList<QVariant>{0, noon(), noon().addSecs(60)}));

        QFile(bundle).open(QIODevice::WriteOnly);
        TestFolder::setKey(QStringLiteral("network/caBundle"), QStringLiteral("ca.pem"));
        QSignalSpy downloaded(&client, &HelioviewerClient::renderedImageDownloaded);
        client.downloadImage(9007199254740993, 10, noon(), noon().addSecs(7), m_png, 1024);
        QVERIFY(downloaded.wait());
        QCOMPARE(downloaded.first(), (QList<QVariant>{10, noon(), noon().addSecs(7),
                                                      Q_INT64_C(9007199254740993), m_png}));

        const QString frameUrl =
            QStringLiteral("http://[::1]/my%20s%C3%BCn/getJPX/"
                           "?startTime=2024-05-01T12:00:00Z&endTime=2024-05-01T12:01:00Z"
                           "&sourceId=0&linked=true&jpip=true&verbose=true&cadence=45");
        const QString imageUrl = QStringLiteral(
            "http://[::1]/my%20s%C3%BCn/downloadImage/?id=9007199254740993&width=1024&type=png");
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

    void endlessAnswerIsEnded_data()
    {
        QTest::addColumn<QByteArray>("curl");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("message");

        QTest::newRow("catalog") << QByteArray("exec yes '{'") << QStringLiteral("getDataSources")
                                 << QStringLiteral("The answer is larger than 64 MB. Check "
                                                   "network/apiBase.");
        QTest::newRow("picture") << QByteArray("truncate -s 1025M \"${11}\"; exec sleep 120")
                                 << QStringLiteral("downloadImage")
                                 << QStringLiteral("The download is larger than 1 GB. Check "
                                                   "network/apiBase.");
    }

    void endlessAnswerIsEnded()
    {
        QFETCH(QByteArray, curl);
        QFETCH(QString, operation);
        QFETCH(QString, message);

        TestFolder::setKey(QStringLiteral("paths/curl"),
                           TestFolder::writeScript(QStringLiteral("endless-curl"), curl));
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        if (operation == QLatin1String("downloadImage"))
            client.downloadImage(1, 10, noon(), noon(), m_png, 64);
        else
            client.getDataSources();
        QVERIFY(errors.wait(20'000));
        QCOMPARE(errors, (QList<QList<QVariant>>{error(operation, message)}));
        QVERIFY(!client.isBusy());
        QVERIFY(!QFile::exists(m_png));
    }

private:
    QString m_curl;
    QString m_png;
};

QTEST_GUILESS_MAIN(TestHelioviewerClient)
#include "tst_helioviewerclient.moc"

#include "client/helioviewerclient.h"
#include "client/helioviewerresponses.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QtTest>

#include <memory>

#include <sys/wait.h>

namespace {

constexpr char strangeIndex[] =
    R"({"frames":[1715299211.9,"1715299451",0,-3,0.9,1,"1",null,true,[9],"12s","",1e300,
        "9223372036854775807","9223372036854775",9223372036854776],"message":"thinned"})";

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

/// Answers as values, and the client against a stand-in for curl: what it is asked, and when not.
class TestHelioviewerClient final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin"); // a zone with daylight saving time
        tzset();
    }

    void init()
    {
        TestFolder::clearKeys();
        m_curl = FakeProgram::install("bin/fake-curl"_s);
        TestFolder::setKey("paths/curl"_s, "bin/../bin/fake-curl"_s);
        TestFolder::setKey("network/apiBase"_s, "http://[::1]/my s\u00fcn//"_s);
        m_png = TestFolder::path("frame one.png"_s);
        QFile::remove(m_png);
    }

    void frameIndex()
    {
        const auto index = HelioviewerResponses::frameIndex(object(strangeIndex));
        QVector<qint64> seconds;
        for (const QDateTime &frame : index.framesUtc)
            seconds.append(frame.timeSpec() == Qt::UTC ? frame.toSecsSinceEpoch() : -1);
        QCOMPARE(seconds, (QVector<qint64>{1715299211, 1715299451, 1, 1}));
        QCOMPARE(index.message, "thinned"_s);
        QCOMPARE(HelioviewerResponses::frameIndex(object("{\"message\":null}")).message, QString());
    }

    void closestImage()
    {
        const auto read = [](const QByteArray &date, const QByteArray &id) {
            const auto image = HelioviewerResponses::closestImage(
                object("{\"date\":\"" + date + "\",\"id\":" + id + "}"));
            return image ? image->actualUtc.toString(Qt::ISODateWithMs) + QLatin1Char(' ') +
                               QString::number(image->imageId)
                         : QString();
        };
        QCOMPARE(read("2024-05-01", "\"1\""), "2024-05-01T00:00:00.000Z 1"_s);
        for (const char *date : {"2024-05-01 12:00:07", "2024-05-01T12:00:07.000Z",
                                 "2024-05-01T14:00:07+02:00", "2024-05-01T10:00:07-02:00"})
            QCOMPARE(read(date, "5"), "2024-05-01T12:00:07.000Z 5"_s);
        for (const char *date : {"2024-03-31 02:30:00", "2024-03-31T02:30:00.000"}) // no such hour
            QCOMPARE(read(date, "5"), "2024-03-31T02:30:00.000Z 5"_s);
        for (const char *date : {"2024-02-30 12:00:00", ""})
            QCOMPARE(read(date, "5"), QString());
        for (const char *id : {"0", "-4", "\"\"", "\"12a\"", "null", "true", "[12]"})
            QCOMPARE(read("2024-05-01 12:00:07", id), QString());
    }

    void strangePathsAndNumbers()
    {
        const QString bundle = TestFolder::path("ca.pem"_s);
        QVERIFY(QFile(bundle).open(QIODevice::WriteOnly));
        TestFolder::setKey("network/caBundle"_s, "ca.pem"_s);
        FakeProgram::Reply picture;
        picture.files.insert("$-o"_s, "p");
        FakeProgram::setScript(m_curl, {{}, picture});
        HelioviewerClient client;
        client.getJPX(0, m_noon.toOffsetFromUtc(7200), m_noon.addSecs(60), 0);
        QTRY_VERIFY(!client.isBusy());
        QSignalSpy downloaded(&client, &HelioviewerClient::renderedImageDownloaded);
        client.downloadImage(9007199254740993, 10, m_noon, m_noon.addSecs(7), m_png, 1024);
        QVERIFY(downloaded.wait());
        QCOMPARE(downloaded.first(), (QList<QVariant>{10, m_noon, m_noon.addSecs(7),
                                                      Q_INT64_C(9007199254740993), m_png}));

        const QString options =
            "-f -sS -L --retry 2 --connect-timeout 20 --max-time 180 --cacert"_s;
        const QStringList common = options.split(QLatin1Char(' ')) << bundle;
        const QString base = "http://[::1]/my%20s%C3%BCn/"_s;
        const QString index = "getJPX/?startTime=2024-05-01T12:00:00Z&endTime=2024-05-01T12:01:00Z"
                              "&sourceId=0&linked=true&jpip=true&verbose=true&cadence=1"_s;
        const QString image = "downloadImage/?id=9007199254740993&width=1024&type=png"_s;
        const auto runs = FakeProgram::runs(m_curl);
        QCOMPARE(runs.first().arguments, common + QStringList(base + index));
        QCOMPARE(runs.last().arguments, (common + QStringList{"-o"_s, m_png, base + image}));
    }

    void failedDownloadsInWords()
    {
        FakeProgram::Reply crash;
        crash.crash = true;
        crash.files.insert("$-o"_s, "half");
        FakeProgram::Reply lament = crash;
        lament.standardError = "curl: oh\n";
        HelioviewerClient client;
        for (const auto &[words, reply] :
             {std::pair("curl failed with exit code 22", FakeProgram::Reply{22, {}, {}, {}}),
              std::pair("curl: (22) x", FakeProgram::Reply{22, {}, " curl: (22) x\n", {}}),
              std::pair("Downloaded file is missing or empty.", FakeProgram::Reply()),
              std::pair("Downloaded file is missing or empty.",
                        FakeProgram::Reply{0, {}, {}, {{"$-o"_s, {}}}}),
              std::pair("Process crashed", crash), std::pair("curl: oh", lament)}) {
            FakeProgram::install("bin/fake-curl"_s);
            FakeProgram::setScript(m_curl, {reply});
            QSignalSpy errors(&client, &HelioviewerClient::requestError);
            client.downloadImage(1, 10, m_noon, m_noon, m_png, 64);
            QVERIFY(client.isBusy() && errors.wait());
            QCOMPARE(errors, QList<QVariantList>({{"downloadImage"_s, QLatin1String(words)}}));
            QVERIFY(!QFile::exists(m_png) && !client.isBusy());
        }
    }

    void inFlightIsCanceledOrDestroyed()
    {
        FakeProgram::Reply half;
        half.files.insert("$-o"_s, "half");
        half.hang = true;
        FakeProgram::setScript(m_curl, {half});
        auto client = std::make_unique<HelioviewerClient>();
        QStringList errors;
        connect(client.get(), &HelioviewerClient::requestError, this,
                [&](const QString &operation, const QString &message) {
                    errors += operation + ": "_s + message;
                    if (errors.size() == 2) // the other is being canceled
                        client->getDataSources();
                });
        for (const bool destroys : {false, true}) {
            client->downloadImage(1, 10, m_noon, m_noon, m_png, 64);
            QTRY_COMPARE(QFileInfo(m_png).size(), 4);
            client->getClosestImage(10, m_noon); // refused
            if (destroys)
                client.reset();
            else
                client->cancel();
            QVERIFY(!QFile::exists(m_png));
            QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1); // there is no child
        }
        const QString busy = ": HelioviewerClient is already busy."_s;
        QCOMPARE(errors,
                 (QStringList{"getClosestImage"_s + busy, "downloadImage: Process crashed"_s,
                              "getDataSources"_s + busy, "getClosestImage"_s + busy}));
    }

    void endlessAnswerIsEnded()
    {
        const QString answer = "The answer is larger than 64 MB. Check network/apiBase."_s;
        const QString download = "The download is larger than 1 GB. Check network/apiBase."_s;
        HelioviewerClient client;
        QSignalSpy errors(&client, &HelioviewerClient::requestError);
        QSignalSpy pictures(&client, &HelioviewerClient::renderedImageDownloaded);
        for (const auto &[commands, message] :
             {std::pair("exec yes '{'", answer),
              {"truncate -s 1025M \"${11}\"; exec sleep 120", download},
              {"truncate -s 1025M \"${11}\"", download},
              {"truncate -s 1024M \"${11}\"", QString()}}) {
            TestFolder::setKey("paths/curl"_s, TestFolder::writeScript("endless-curl"_s, commands));
            if (message == answer)
                client.getDataSources();
            else
                client.downloadImage(1, 10, m_noon, m_noon, m_png, 64);
            QTRY_VERIFY_WITH_TIMEOUT(!client.isBusy(), 20'000);
            QCOMPARE(errors.value(0).value(1).toString(), message);
            QCOMPARE(errors.size() + pictures.size(), 1);
            QCOMPARE(QFile::exists(m_png), message.isEmpty());
            errors.clear();
        }
    }

private:
    const QDateTime m_noon{{2024, 5, 1}, {12, 0}, Qt::UTC};
    QString m_curl;
    QString m_png;
};

QTEST_GUILESS_MAIN(TestHelioviewerClient)
#include "tst_helioviewerclient.moc"

#include "roi/scalelookup.h"

#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QTimer>
#include <QtTest>

namespace {

const QDateTime &noon()
{
    static const QDateTime time(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);
    return time;
}

QJsonObject metadata(const QJsonValue &rsun, const QJsonValue &width)
{
    return {{QStringLiteral("rsun"), rsun}, {QStringLiteral("width"), width}};
}

RoiSource sourceWith(const QVector<RoiSourceFrame> &frames)
{
    return {10, QStringLiteral("AIA 171"), QStringLiteral("a"), QStringLiteral("/session/a"),
            frames};
}

} // namespace

/// Where the length of a pixel comes from.
class TestScaleLookup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_curl = FakeProgram::install(QStringLiteral("bin/fake-curl")); }
    void init()
    {
        TestFolder::clearKeys();
        TestFolder::setKey(QStringLiteral("paths/curl"), m_curl);
        FakeProgram::clearJournal(m_curl);
    }

    void line_data()
    {
        QTest::addColumn<int>("frameWidth");
        QTest::addColumn<QJsonObject>("metadata");
        QTest::addColumn<QString>("line");
        const QString notStored =
            QStringLiteral("Scale: metadata not stored in this session; Orvik will query "
                           "Helioviewer once per datasource when needed.");
        QTest::newRow("no frame") << 0 << metadata(1600, 4096) << QStringLiteral("Scale: --");
        QTest::newRow("nothing stored") << 1024 << QJsonObject() << notStored;
        QTest::newRow("no radius") << 1024 << metadata(0, 4096) << notStored;
        QTest::newRow("a radius that is no number")
            << 1024 << metadata(QStringLiteral("large"), 4096) << notStored;
        QTest::newRow("numbers as text")
            << 1024 << metadata(QStringLiteral("1600"), QStringLiteral("4096"))
            << QStringLiteral("Projected scale: 1739.3 km/pixel at the captured PNG resolution.");
        QTest::newRow("lost in rounding")
            << 1024 << metadata(1e300, 1e-300) << QStringLiteral("Scale: unavailable.");
    }
    void line()
    {
        QFETCH(int, frameWidth);
        QFETCH(QJsonObject, metadata);
        QTEST(ScaleLookup::lineText(frameWidth, metadata), "line");
    }

    void theSessionIsAskedFirst()
    {
        const RoiSource source = sourceWith({{{}, noon(), {}},
                                             {{}, noon(), metadata(0, 4096)},
                                             {{}, noon(), metadata(1500, 4096)}});
        QCOMPARE(ScaleLookup().ensure(source, noon()), metadata(1500, 4096));
        QVERIFY(FakeProgram::runs(m_curl).isEmpty());
    }

    void theServiceIsAskedOnce_data()
    {
        QTest::addColumn<QVector<QDateTime>>("frameTimes");
        QTest::addColumn<QString>("asked");
        QTest::newRow("at the first time known")
            << QVector<QDateTime>{QDateTime(), noon().addSecs(7), noon()}
            << QStringLiteral("12:00:07");
        QTest::newRow("at the session's start")
            << QVector<QDateTime>{QDateTime()} << QStringLiteral("11:00:00");
    }
    void theServiceIsAskedOnce()
    {
        QFETCH(QVector<QDateTime>, frameTimes);
        QFETCH(QString, asked);
        QVector<RoiSourceFrame> frames;
        for (const QDateTime &time : qAsConst(frameTimes))
            frames.append({{}, time, {}});
        FakeProgram::Reply reply;
        reply.standardOutput =
            R"({"id":"7","date":"2024-05-01 12:00:07","rsun":1600,"width":"4096"})";
        FakeProgram::setScript(m_curl, {reply});
        ScaleLookup lookup;
        QSignalSpy status(&lookup, &ScaleLookup::statusChanged);
        for (int round = 0; round < 2; ++round)
            QCOMPARE(lookup.ensure(sourceWith(frames), noon().addSecs(-3600))
                         .value(QStringLiteral("rsun"))
                         .toInt(),
                     1600);
        QCOMPARE(FakeProgram::runs(m_curl).size(), 1);
        const QString url = FakeProgram::argumentLists(m_curl).first().last();
        QVERIFY2(QUrl::fromPercentEncoding(url.toUtf8()).contains(asked), qPrintable(url));
        QVERIFY(url.endsWith(QLatin1String("sourceId=10")));
        QCOMPARE(status.takeFirst().first().toString(),
                 QStringLiteral("Looking up scale metadata for AIA 171..."));
        QVERIFY(status.isEmpty());
        QVERIFY(!lookup.known(sourceWith(frames)).isEmpty());
    }

    void noAnswerMeansNoScale_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QDateTime>("startUtc");
        QTest::addColumn<QString>("reason");
        FakeProgram::Reply reply;
        QTest::newRow("no time to ask for")
            << reply << QDateTime()
            << QStringLiteral("No valid source/time is available for scale lookup.");
        reply.standardOutput = R"({"id":7,"date":"2024-05-01 12:00:00","width":4096})";
        QTest::newRow("an older server")
            << reply << noon()
            << QStringLiteral("Helioviewer did not return usable rsun/width metadata.");
        reply.exitCode = 22;
        QTest::newRow("a failure") << reply << noon()
                                   << QStringLiteral("getClosestImage: curl failed with exit code "
                                                     "22");
    }
    void noAnswerMeansNoScale()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QDateTime, startUtc);
        QFETCH(QString, reason);
        FakeProgram::setScript(m_curl, {reply});
        ScaleLookup lookup;
        QSignalSpy log(&lookup, &ScaleLookup::logMessage);
        QVERIFY(!ScaleLookup::isUsable(lookup.ensure(sourceWith({}), startUtc)));
        QCOMPARE(log.last().first().toString(),
                 QStringLiteral("WARNING scale metadata AIA 171: %1").arg(reason));
    }

    void waitingCanBeEnded()
    {
        FakeProgram::Reply reply;
        reply.hang = true;
        FakeProgram::setScript(m_curl, {reply});
        ScaleLookup lookup;
        QTimer::singleShot(0, &lookup, &ScaleLookup::abort);
        QVERIFY(lookup.ensure(sourceWith({}), noon()).isEmpty());
    }

private:
    QString m_curl;
};

QTEST_GUILESS_MAIN(TestScaleLookup)
#include "tst_scalelookup.moc"

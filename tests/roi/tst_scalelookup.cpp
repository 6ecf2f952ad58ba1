#include "roi/scalelookup.h"

#include "tests/roi/testsession.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QTimer>
#include <QtTest>

namespace {

QDateTime noon()
{
    return {{2024, 5, 1}, {12, 0}, Qt::UTC};
}

QJsonObject metadata(const QJsonValue &rsun, const QJsonValue &width)
{
    return {{u"rsun"_s, rsun}, {u"width"_s, width}};
}

RoiSource sourceWith(const QVector<RoiSourceFrame> &frames)
{
    return {10, u"AIA 171"_s, u"a"_s, u"/session/a"_s, frames};
}

} // namespace

/// Where the length of a pixel comes from.
class TestScaleLookup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_curl = FakeProgram::install(u"bin/fake-curl"_s);
        TestFolder::clearKeys();
        TestFolder::setKey(u"paths/curl"_s, m_curl);
    }
    void init() { FakeProgram::clearJournal(m_curl); }

    void line()
    {
        const QString notStored = u"Scale: metadata not stored in this session; Orvik will query "
                                  "Helioviewer once per datasource when needed."_s;
        QCOMPARE(ScaleLookup::lineText(0, metadata(1600, 4096)), u"Scale: --"_s);
        QCOMPARE(ScaleLookup::lineText(1024, {}), notStored);
        QCOMPARE(ScaleLookup::lineText(1024, metadata(u"large"_s, 4096)), notStored);
        QCOMPARE(ScaleLookup::lineText(1024, metadata(u"1600"_s, u"4096"_s)),
                 u"Projected scale: 1739.3 km/pixel at the captured PNG resolution."_s);
        QCOMPARE(ScaleLookup::lineText(1024, metadata(1e300, 1e-300)), u"Scale: unavailable."_s);
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
        QTest::addColumn<QDateTime>("frameUtc");
        QTest::addColumn<QString>("asked");
        QTest::newRow("at a frame's time") << noon().addSecs(7) << u"12:00:07"_s;
        QTest::newRow("at the session's start") << QDateTime() << u"11:00:00"_s;
    }
    void theServiceIsAskedOnce()
    {
        QFETCH(QDateTime, frameUtc);
        QFETCH(QString, asked);
        FakeProgram::Reply reply;
        reply.standardOutput =
            R"({"id":"7","date":"2024-05-01 12:00:07","rsun":1600,"width":"4096"})";
        FakeProgram::setScript(m_curl, {reply});
        const RoiSource source = sourceWith({{{}, {}, {}}, {{}, frameUtc, {}}});
        ScaleLookup lookup;
        QSignalSpy status(&lookup, &ScaleLookup::statusChanged);
        for (int round = 0; round < 2; ++round)
            QVERIFY(ScaleLookup::isUsable(lookup.ensure(source, noon().addSecs(-3600))));
        QCOMPARE(FakeProgram::runs(m_curl).size(), 1);
        const QString url = FakeProgram::argumentLists(m_curl).first().last();
        QVERIFY2(QUrl::fromPercentEncoding(url.toUtf8()).contains(asked), qPrintable(url));
        QVERIFY(url.endsWith(u"sourceId=10"_s));
        QCOMPARE(status.size(), 1);
        QCOMPARE(status.first().first().toString(), u"Looking up scale metadata for AIA 171..."_s);
    }

    void noAnswerMeansNoScale_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QDateTime>("startUtc");
        QTest::addColumn<QString>("reason");
        FakeProgram::Reply reply;
        QTest::newRow("no time to ask for")
            << reply << QDateTime() << u"No valid source/time is available for scale lookup."_s;
        reply.standardOutput = R"({"id":7,"date":"2024-05-01 12:00:00","width":4096})";
        QTest::newRow("an older server")
            << reply << noon() << u"Helioviewer did not return usable rsun/width metadata."_s;
        reply.exitCode = 22;
        QTest::newRow("a failure")
            << reply << noon() << u"getClosestImage: curl failed with exit code 22"_s;
        reply.hang = true;
        QTest::newRow("ended by the user") << reply << noon() << u"The lookup was canceled."_s;
    }
    void noAnswerMeansNoScale()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QDateTime, startUtc);
        QFETCH(QString, reason);
        FakeProgram::setScript(m_curl, {reply});
        ScaleLookup lookup;
        QSignalSpy log(&lookup, &ScaleLookup::logMessage);
        if (reply.hang)
            QTimer::singleShot(0, &lookup, &ScaleLookup::abort);
        QVERIFY(!ScaleLookup::isUsable(lookup.ensure(sourceWith({}), startUtc)));
        QCOMPARE(log.last().first().toString(),
                 u"WARNING scale metadata AIA 171: %1"_s.arg(reason));
    }

private:
    QString m_curl;
};

QTEST_GUILESS_MAIN(TestScaleLookup)
#include "tst_scalelookup.moc"

#include "roi/scalelookup.h"

#include "tests/roi/testsession.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QtTest>

namespace {

QDateTime noon()
{
    return {{2024, 5, 1}, {12, 0}, Qt::UTC};
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
    void initTestCase() { TestFolder::clearKeys(); }

    void line()
    {
        const QString notStored =
            QStringLiteral("Scale: metadata not stored in this session; Orvik will query "
                           "Helioviewer once per datasource when needed.");
        QCOMPARE(ScaleLookup::lineText(0, metadata(1600, 4096)), QStringLiteral("Scale: --"));
        QCOMPARE(ScaleLookup::lineText(1024, metadata(QStringLiteral("large"), 4096)), notStored);
        QCOMPARE(
            ScaleLookup::lineText(1024, metadata(QStringLiteral("1600"), QStringLiteral("4096"))),
            QStringLiteral("Projected scale: 1739.3 km/pixel at the captured PNG resolution."));
        QCOMPARE(ScaleLookup::lineText(1024, metadata(1e300, 1e-300)),
                 QStringLiteral("Scale: unavailable."));
    }

    void firstTheSessionThenOnceTheService()
    {
        const QString curl = FakeProgram::install(QStringLiteral("bin/fake-curl"));
        TestFolder::setKey(QStringLiteral("paths/curl"), curl);
        const RoiSource source =
            sourceWith({{{}, noon(), metadata(0, 4096)}, {{}, noon(), metadata(1500, 4096)}});
        QCOMPARE(ScaleLookup().ensure(source, noon()), metadata(1500, 4096));
        QVERIFY(FakeProgram::runs(curl).isEmpty());

        FakeProgram::Reply reply;
        reply.standardOutput = R"({"id":"7","date":"2024-05-01 12:00:07","rsun":1,"width":"4"})";
        FakeProgram::setScript(curl, {reply});
        ScaleLookup lookup;
        QSignalSpy status(&lookup, &ScaleLookup::statusChanged);
        const RoiSource bare = sourceWith({{{}, {}, {}}, {{}, noon().addSecs(7), {}}});
        for (int round = 0; round < 2; ++round)
            QVERIFY(ScaleLookup::isUsable(lookup.ensure(bare, noon())));
        QVERIFY(ScaleLookup::isUsable(ScaleLookup().ensure(sourceWith({}), noon())));
        QCOMPARE(status.size(), 1);
        QCOMPARE(status.first().first().toString(),
                 QStringLiteral("Looking up scale metadata for AIA 171..."));
        const auto runs = FakeProgram::argumentLists(curl);
        QCOMPARE(runs.size(), 2);
        QVERIFY(runs.first().last().contains(QLatin1String("00:07Z"))); // the first that is known
        QVERIFY(
            runs.last().last().contains(QLatin1String("00:00Z"))); // none is: the session's start
    }
};

QTEST_GUILESS_MAIN(TestScaleLookup)
#include "tst_scalelookup.moc"

#include "acquisition/sourcetiming.h"
#include "session/acquisitionsettings.h"
#include "tests/support/testfolder.h"

#include <QtTest>

class TestSourceTiming : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void profileIsReadFromNicknameAndPath_data();
    void profileIsReadFromNicknameAndPath();
};

void TestSourceTiming::profileIsReadFromNicknameAndPath_data()
{
    QTest::addColumn<QString>("nickname");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("profile");

    const auto row = [](const char *name, const char *nickname, const char *path,
                        const char *profile) {
        QTest::newRow(name) << nickname << path << profile;
    };
    row("nickname alone, in small letters", "aia", "", "AIA");
    row("path that ends there", "band", "sdo/aia", "AIA");
    row("no blank after the instrument", "AIA171", "", "DEFAULT");
    row("SUVI goes before AIA", "SUVI 304", "SDO/AIA/304", "SUVI");
    row("SUVI by its path goes before AIA", "AIA 304", "GOES/SUVI", "SUVI");
    row("path that begins there", "x", "AIA/171", "DEFAULT");
    row("part of a longer step", "x", "SDO/AIAX/171", "DEFAULT");
}

void TestSourceTiming::profileIsReadFromNicknameAndPath()
{
    QFETCH(QString, nickname);
    QFETCH(QString, path);
    QFETCH(QString, profile);
    const DataSource source{1, nickname, path};
    QCOMPARE(SourceTiming::toText(SourceTiming::profileOf(source)), profile);

    TestFolder::setKey(QStringLiteral("timing/aiaMaxTimeErrorSeconds"), -5); // below zero is zero
    TestFolder::setKey(QStringLiteral("timing/suviMaxTimeErrorSeconds"), 12);
    const QMap<QString, int> tolerances = {{QStringLiteral("AIA"), 0},
                                           {QStringLiteral("SUVI"), 12}};
    AcquisitionSettings settings;
    settings.maxTimeErrorSeconds = 77;
    QCOMPARE(SourceTiming::toleranceSeconds(source, settings), tolerances.value(profile, 77));
    settings.useSourceTimingProfiles = false;
    QCOMPARE(SourceTiming::toleranceSeconds(source, settings), 77);
}

QTEST_GUILESS_MAIN(TestSourceTiming)
#include "tst_sourcetiming.moc"

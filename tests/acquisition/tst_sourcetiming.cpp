#include "acquisition/acquisitionsettings.h"
#include "acquisition/framerequest.h"
#include "acquisition/framerules.h"
#include "acquisition/sourcetiming.h"
#include "tests/support/testfolder.h"

#include <QtTest>

Q_DECLARE_METATYPE(FrameVerdict)

class TestSourceTiming : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void profileIsReadFromNicknameAndPath_data();
    void profileIsReadFromNicknameAndPath();
    void toleranceFollowsTheProfile_data();
    void toleranceFollowsTheProfile();
    void imageIsJudgedByTimeThenById_data();
    void imageIsJudgedByTimeThenById();
};

void TestSourceTiming::profileIsReadFromNicknameAndPath_data()
{
    QTest::addColumn<QString>("nickname");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("profile");

    QTest::newRow("the service's SUVI") << "GOES-R SUVI 195"
                                        << "GOES/SUVI/195"
                                        << "SUVI";
    QTest::newRow("nickname alone, in small letters") << "aia"
                                                      << ""
                                                      << "AIA";
    QTest::newRow("path that ends there") << "band"
                                          << "sdo/aia"
                                          << "AIA";
    QTest::newRow("no blank after the instrument") << "AIA171"
                                                   << ""
                                                   << "DEFAULT";
    QTest::newRow("no blank, but the path says it") << "AIA171"
                                                    << "SDO/AIA/171"
                                                    << "AIA";
    QTest::newRow("SUVI goes before AIA") << "SUVI 304"
                                          << "SDO/AIA/304"
                                          << "SUVI";
    QTest::newRow("SUVI by its path goes before AIA") << "AIA 304"
                                                      << "GOES/SUVI"
                                                      << "SUVI";
    QTest::newRow("path that begins there") << "x"
                                            << "AIA/171"
                                            << "DEFAULT";
    QTest::newRow("part of a longer step") << "x"
                                           << "SDO/AIAX/171"
                                           << "DEFAULT";
}

void TestSourceTiming::profileIsReadFromNicknameAndPath()
{
    QFETCH(QString, nickname);
    QFETCH(QString, path);

    QTEST(toText(SourceTiming::profileOf({1, nickname, path})), "profile");
}

void TestSourceTiming::toleranceFollowsTheProfile_data()
{
    QTest::addColumn<QString>("nickname");
    QTest::addColumn<bool>("profilesOn");
    QTest::addColumn<int>("configured");
    QTest::addColumn<int>("toleranceSeconds");

    QTest::newRow("others have the user's") << "LASCO C2" << true << 12 << 77;
    QTest::newRow("AIA configured") << "AIA 171" << true << 12 << 12;
    QTest::newRow("SUVI configured") << "SUVI 195" << true << 12 << 12;
    QTest::newRow("below zero is zero") << "AIA 171" << true << -5 << 0;
    QTest::newRow("profiles off") << "AIA 171" << false << 12 << 77;
}

void TestSourceTiming::toleranceFollowsTheProfile()
{
    QFETCH(QString, nickname);
    QFETCH(bool, profilesOn);
    QFETCH(int, configured);

    TestFolder::setKey(QStringLiteral("timing/aiaMaxTimeErrorSeconds"), configured);
    TestFolder::setKey(QStringLiteral("timing/suviMaxTimeErrorSeconds"), configured);
    AcquisitionSettings settings;
    settings.maxTimeErrorSeconds = 77;
    settings.useSourceTimingProfiles = profilesOn;
    FrameRequest request;
    request.nickname = nickname;
    QTEST(SourceTiming::toleranceSeconds(request, settings), "toleranceSeconds");
}

void TestSourceTiming::imageIsJudgedByTimeThenById_data()
{
    QTest::addColumn<int>("deltaSeconds");
    QTest::addColumn<int>("toleranceSeconds");
    QTest::addColumn<int>("imageId");
    QTest::addColumn<FrameVerdict>("verdict");

    QTest::newRow("exactly the tolerance late") << 30 << 30 << 1 << FrameVerdict::Accepted;
    QTest::newRow("exactly the tolerance early") << -30 << 30 << 1 << FrameVerdict::Accepted;
    QTest::newRow("a second more") << -31 << 30 << 1 << FrameVerdict::RejectedTime;
    QTest::newRow("no tolerance, exact") << 0 << 0 << 1 << FrameVerdict::Accepted;
    QTest::newRow("taken before") << 0 << 30 << 7 << FrameVerdict::Duplicate;
    QTest::newRow("taken before and too far") << 31 << 30 << 7 << FrameVerdict::RejectedTime;
}

void TestSourceTiming::imageIsJudgedByTimeThenById()
{
    QFETCH(int, deltaSeconds);
    QFETCH(int, toleranceSeconds);
    QFETCH(int, imageId);

    QTEST(FrameRules::judge(deltaSeconds, toleranceSeconds, imageId, {7, 8}), "verdict");
}

QTEST_GUILESS_MAIN(TestSourceTiming)
#include "tst_sourcetiming.moc"

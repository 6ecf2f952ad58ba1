#include "tests/acquisition/acquisitionroad.h"
#include "tests/support/fakeprogram.h"

#include <QDir>
#include <QImage>
#include <QJsonObject>
#include <QtTest>

Q_DECLARE_METATYPE(Simulator::Fault)

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

const QString aiaFolder = QStringLiteral("AIA_171_20240501_000000");

/// Frames that ffprobe decodes.
int framesOf(const QString &film)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  QStringLiteral("-v error -count_frames -show_entries stream=nb_read_frames -of "
                                 "csv=p=0")
                          .split(QLatin1Char(' '))
                      << film);
    ffprobe.waitForFinished();
    return ffprobe.readAllStandardOutput().trimmed().toInt();
}

/// The events with what differs from run to run made equal.
QString transcript(const AcquisitionRoad &road, const QStringList &events)
{
    static const QRegularExpression imageId(QStringLiteral("(?<=imageId )\\d+"));
    static const QRegularExpression encoderOutput(
        QStringLiteral("(?<=\\.mp4\n)(?!Video|FFMPEG).*?(?=Video completed|FFMPEG ERROR)"),
        QRegularExpression::DotMatchesEverythingOption);
    QString text = events.join(QLatin1Char('\n')) + QLatin1Char('\n');
    text.replace(road.sessionDirectory(), QStringLiteral("SESSION"));
    text.replace(imageId, QStringLiteral("ID"));
    return text.remove(encoderOutput);
}

QString installEncoder(const QVector<FakeProgram::Reply> &replies)
{
    QString ffmpeg = FakeProgram::install(QStringLiteral("bin/fake-ffmpeg"));
    FakeProgram::setScript(ffmpeg, replies);
    TestFolder::setKey(QStringLiteral("paths/ffmpeg"), ffmpeg);
    return ffmpeg;
}

} // namespace

/// Sessions through the real curl and, but where it has to fail, the real ffmpeg.
class TestAcquisitionRoad : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void wholeSession();
    void refusedStart_data();
    void refusedStart();
    void runningSessionIsLeftAlone();
    void requestEndsInOneOutcome_data();
    void requestEndsInOneOutcome();
    void failedProbeFallsBackToTheCadence();
    void framesGoOnlyWhenEveryFilmIsWhole_data();
    void framesGoOnlyWhenEveryFilmIsWhole();
    void encoderThatIsGoneIsToldOncePerFilm();
    void gapInTheVideoFramesSkipsTheFilm();
};

void TestAcquisitionRoad::wholeSession()
{
    AcquisitionRoad road;
    AcquisitionSettings settings = AcquisitionRoad::settings(
        60, {AcquisitionRoad::aia(), AcquisitionRoad::suvi(), AcquisitionRoad::lasco()});
    settings.startUtc = settings.startUtc.toOffsetFromUtc(3600); // any zone will do
    settings.endUtc = settings.endUtc.addSecs(70);
    QVERIFY(road.run(settings));

    QCOMPARE(road.sessionDirectory(),
             road.output.path() + QStringLiteral("/20240501_000000__20240501_000210"));
    QFile recorded(QFINDTESTDATA("wholesession.txt"));
    QVERIFY(recorded.open(QIODevice::ReadOnly));
    QCOMPARE(transcript(road, road.events), QString::fromUtf8(recorded.readAll()));
    QCOMPARE(road.column("RequestIndex"), QStringLiteral("0 1 2 3 4 5 6"));
    const QStringList frames = road.column("VideoFrame").split(QLatin1Char(' '));
    for (const QString &frame : frames)
        QCOMPARE(QImage(road.sessionFile(frame)).size(), QSize(256, 256));
    QCOMPARE(framesOf(road.sessionFile(aiaFolder + QLatin1Char('/') + aiaFolder +
                                       QStringLiteral(".mp4"))),
             3);
    const QJsonObject suvi = road.describedSource(1);
    QCOMPARE(suvi.value(QLatin1String("preflightMode")), QStringLiteral("quick-probe"));
    QCOMPARE(suvi.value(QLatin1String("preflightUniqueFrames")), 2);
    QCOMPARE(suvi.value(QLatin1String("effectiveCadenceMedianSeconds")), 120);
    QCOMPARE(suvi.value(QLatin1String("acceptedFrames")), 2);
    QCOMPARE(road.describedSource(0).value(QLatin1String("preflightUniqueFrames")), 0);
}

void TestAcquisitionRoad::refusedStart_data()
{
    QTest::addColumn<int>("sources");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("cadenceSeconds");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("message");

    QTest::newRow("nothing selected, and nothing else right")
        << 0 << -1 << 0 << "curl"
        << "none"
        << "Select at least one Helioviewer datasource.";
    QTest::newRow("end a second before start") << 1 << -1 << 0 << "curl"
                                               << "none"
                                               << "Invalid UTC time interval.";
    QTest::newRow("no cadence") << 1 << 0 << 0 << "curl"
                                << "none"
                                << "Cadence must be greater than zero.";
    QTest::newRow("a folder in place of curl") << 1 << 0 << 60 << "curl"
                                               << "bin"
                                               << "./bin/curl.exe was not found.";
    QTest::newRow("no ffmpeg") << 1 << 0 << 60 << "ffmpeg"
                               << "none"
                               << "./bin/ffmpeg.exe was not found.";
    QTest::newRow("a file in place of the output root") << 1 << 0 << 60 << "output"
                                                        << "sys/orvik.ini"
                                                        << "Cannot create output root directory.";
    QTest::newRow("an output root where nothing can be created, not even by root")
        << 1 << 0 << 60 << "output"
        << "/proc/self"
        << "Cannot create session directory.";
}

void TestAcquisitionRoad::refusedStart()
{
    QFETCH(int, sources);
    QFETCH(int, seconds);
    QFETCH(int, cadenceSeconds);
    QFETCH(QString, key);
    QFETCH(QString, value);

    AcquisitionRoad road;
    TestFolder::setKey(QStringLiteral("paths/") + key, value);
    AcquisitionSettings settings = AcquisitionRoad::settings(seconds, {});
    settings.sources.fill(AcquisitionRoad::aia(), sources);
    settings.cadenceSeconds = cadenceSeconds;
    QString error;
    QVERIFY(!road.controller->start(settings, &error));
    QTEST(error, "message");
    QVERIFY(!road.controller->start(settings)); // nobody asks why
    QVERIFY(!road.controller->isRunning());
    QVERIFY(road.events.isEmpty());
}

void TestAcquisitionRoad::runningSessionIsLeftAlone()
{
    AcquisitionRoad road;
    TestFolder::setKey(QStringLiteral("paths/ffmpeg"), QStringLiteral("none"));
    AcquisitionSettings settings = AcquisitionRoad::settings(0, {AcquisitionRoad::aia()});
    settings.createVideos = false; // nobody looks for the encoder then
    QVERIFY(road.controller->start(settings));
    QString error;
    QVERIFY(!road.controller->start({}, &error));
    QCOMPARE(error, QStringLiteral("An acquisition is already running."));
    QVERIFY(road.waitForEnd());
    QCOMPARE(road.column("Status"), QStringLiteral("OK"));
    QCOMPARE(
        transcript(road, road.events.mid(3, 5)),
        QStringLiteral(R"(No JPX cadence probe required; starting frame acquisition immediately.
Source timing profiles enabled: AIA and SUVI use ./sys/orvik.ini tolerances; other sources use the UI default.
Timing AIA 171: profile=AIA, tolerance=30 s
[progress] 0/1
[state] Preparing frame requests
)"));
    QCOMPARE(transcript(road, road.events.mid(road.events.size() - 5)),
             QStringLiteral(R"([progress] 1/1
[progress] 1/1
[state] Completed
Session completed.
[finished] completed
)"));
}

void TestAcquisitionRoad::requestEndsInOneOutcome_data()
{
    using Faults = QVector<Simulator::Fault>;
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<int>("cadenceSeconds");
    QTest::addColumn<QString>("statuses");
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("lines");

    const char *oneFile = "frame_000000.png";
    const char *twoFiles = "frame_000000.png frame_000001.png";

    QTest::newRow("too far off") << Faults{{Operation::GetClosestImage, FaultKind::StaleDate, 60, 1,
                                            1}}
                                 << 60 << "REJECTED_TIME OK" << oneFile << R"(
REJECT AIA 171: requested 2024-05-01T00:00:00Z, actual 2024-05-01T00:01:00Z, delta +60 s, tolerance 30 s
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
)";
    QTest::newRow("asked more often than there are images")
        << Faults() << 20 << "OK DUPLICATE OK DUPLICATE" << twoFiles << R"(
OK AIA 171  2024-05-01T00:00:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
DUPLICATE AIA 171: imageId ID already accepted; requested 2024-05-01T00:00:20Z, actual 2024-05-01T00:00:00Z, delta -20 s
OK AIA 171  2024-05-01T00:01:00Z  delta +20 s  -> AIA_171_20240501_000000/frame_000001.png
DUPLICATE AIA 171: imageId ID already accepted; requested 2024-05-01T00:01:00Z, actual 2024-05-01T00:01:00Z, delta +0 s
)";
    QTest::newRow("cut off twice, then whole")
        << Faults{{Operation::DownloadImage, FaultKind::TruncatedPng, 0, 1, 2}} << 60 << "OK OK"
        << twoFiles << R"(
WARNING AIA 171: downloaded PNG cannot be decoded; retry 1/2 for imageId ID.
WARNING AIA 171: downloaded PNG cannot be decoded; retry 2/2 for imageId ID.
OK AIA 171  2024-05-01T00:00:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000001.png
)";
    QTest::newRow("a web page three times: its number is used by the next")
        << Faults{{Operation::DownloadImage, FaultKind::HtmlBody, 0, 1, 3}} << 60
        << "CORRUPT_IMAGE OK" << oneFile << R"(
WARNING AIA 171: downloaded PNG cannot be decoded; retry 1/2 for imageId ID.
WARNING AIA 171: downloaded PNG cannot be decoded; retry 2/2 for imageId ID.
ERROR AIA 171: downloaded PNG is corrupt or incomplete after 2 retries (imageId ID). Frame rejected.
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
)";
    QTest::newRow("lookup refused")
        << Faults{{Operation::GetClosestImage, FaultKind::Status, 400, 1, 1}} << 60
        << "LOOKUP_ERROR OK" << oneFile << R"(
ERROR AIA 171 [getClosestImage]: curl: (22) The requested URL returned error: 400
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
)";
    QTest::newRow("download refused")
        << Faults{{Operation::DownloadImage, FaultKind::Status, 400, 1, 1}} << 60
        << "DOWNLOAD_ERROR OK" << oneFile << R"(
ERROR AIA 171 [downloadImage]: curl: (22) The requested URL returned error: 400
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
)";
    QTest::newRow("a block left black")
        << Faults{{Operation::DownloadImage, FaultKind::BlackBlock, 0, 1, 1}} << 60 << "OK OK"
        << twoFiles << R"(
WARNING AIA 171: possible blank renderer block at x=128 y=192, approx. 64x64 px. PNG decoding is valid, but the rendered image may be incomplete; original frame kept for inspection.
OK AIA 171  2024-05-01T00:00:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000000.png
OK AIA 171  2024-05-01T00:01:00Z  delta +0 s  -> AIA_171_20240501_000000/frame_000001.png
)";
}

void TestAcquisitionRoad::requestEndsInOneOutcome()
{
    QFETCH(QVector<Simulator::Fault>, faults);
    QFETCH(int, cadenceSeconds);
    QFETCH(QString, statuses);

    AcquisitionRoad road;
    for (const Simulator::Fault &fault : qAsConst(faults))
        road.server.addFault(fault);
    AcquisitionSettings settings = AcquisitionRoad::settings(60, {AcquisitionRoad::aia()});
    settings.cadenceSeconds = cadenceSeconds;
    settings.imageWidth = 512;
    settings.createVideos = false;
    QVERIFY(road.run(settings));

    QCOMPARE(road.column("Status"), statuses);
    const QStringList log = road.logLines();
    constexpr int opening = 8;
    QTEST(QLatin1Char('\n') + transcript(road, log.mid(opening, log.size() - opening - 1)),
          "lines");
    QTEST(road.filesIn(aiaFolder + QStringLiteral("/video_frames")), "files");
    QTEST(road.filesIn(aiaFolder).remove(QStringLiteral(" video_frames")), "files");
    QCOMPARE(road.count("[progress] "), statuses.count(QLatin1Char(' ')) + 1 + 3);
}

void TestAcquisitionRoad::failedProbeFallsBackToTheCadence()
{
    AcquisitionRoad road;
    TestFolder::setKey(QStringLiteral("network/preflightParallelRequests"), 1);
    road.server.addFault({Operation::GetJPX, FaultKind::HtmlBody, 0, 1, 1});
    AcquisitionSettings settings =
        AcquisitionRoad::settings(120, {AcquisitionRoad::suvi(), AcquisitionRoad::lasco()});
    settings.createVideos = false;
    settings.useSourceTimingProfiles = false;
    settings.maxTimeErrorSeconds = 50;
    QVERIFY(road.run(settings));

    QCOMPARE(
        transcript(road, road.logLines().mid(2, 6)),
        QStringLiteral(
            R"(Quick cadence probe: 2 datasource(s), one window up to 7200 per source, up to 1 request(s) in parallel.
Source timing profiles disabled: tolerance=50 s for all sources.
WARNING preflight GOES-R SUVI 195: Invalid JSON: illegal value
Cadence probe unavailable for GOES-R SUVI 195: using regular 60 s sampling.
Quick probe LASCO C2: 2 frame(s), observed median 90 s (min 90, max 90); acquisition step=90 s.
Acquisition plan ready: 5 image lookup(s) (6 nominal at uniform requested cadence).
)"));
    QCOMPARE(road.count("[timing] 2003: 0, 0 0-0"), 1);
    QCOMPARE(road.describedSource(0).value(QLatin1String("preflightMode")),
             QStringLiteral("fallback"));
    QCOMPARE(road.describedSource(0).value(QLatin1String("duplicateRequests")), 1);
}

void TestAcquisitionRoad::framesGoOnlyWhenEveryFilmIsWhole_data()
{
    QTest::addColumn<bool>("crash");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("files");

    const char *all = "AIA_171_20240501_000000.mp4 frame_000000.png video_frames";
    QTest::newRow("both films whole") << false << 0 << "Video completed: AIA 171"
                                      << "AIA_171_20240501_000000.mp4";
    QTest::newRow("the first fails")
        << false << 3 << "FFMPEG ERROR for AIA 171 (exit code 3). Frames are preserved." << all;
    QTest::newRow("the first crashes")
        << true << 0 << "FFMPEG ERROR for AIA 171 (exit code " << all;
}

void TestAcquisitionRoad::framesGoOnlyWhenEveryFilmIsWhole()
{
    QFETCH(bool, crash);
    QFETCH(int, exitCode);
    QFETCH(QString, line);
    QFETCH(QString, files);

    AcquisitionRoad road;
    FakeProgram::Reply whole;
    whole.files = {{QStringLiteral("$last"), "film"}};
    FakeProgram::Reply first = whole;
    first.crash = crash;
    first.exitCode = exitCode;
    first.standardError = "  two lines of\nits own \n";
    const QString ffmpeg = installEncoder({first, whole});
    AcquisitionSettings settings =
        AcquisitionRoad::settings(30, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()});
    settings.keepFrames = false;
    QVERIFY(road.run(settings));

    QCOMPARE(road.count("two lines of\nits own"), 1);
    QCOMPARE(road.count(qPrintable(line)), 1);
    QCOMPARE(road.count("Video completed: GOES-R SUVI 195"), 1);
    QCOMPARE(road.filesIn(aiaFolder), files);
    QCOMPARE(road.count("Original and timestamped PNG frames removed after successful video "
                        "encoding."),
             files.contains(QLatin1String("frame")) ? 0 : 1);
    QCOMPARE(road.events.last(), QStringLiteral("[finished] completed"));

    const FakeProgram::Run run = FakeProgram::runs(ffmpeg).constFirst();
    QCOMPARE(run.workingDirectory, road.sessionFile(aiaFolder));
    QCOMPARE(run.arguments.join(QLatin1Char(' ')),
             QStringLiteral("-y -framerate 25 -start_number 0 -i video_frames/frame_%06d.png -c:v "
                            "libx264 -crf 18 -pix_fmt yuv420p ") +
                 road.sessionFile(aiaFolder) + QStringLiteral("/AIA_171_20240501_000000.mp4"));
}

void TestAcquisitionRoad::encoderThatIsGoneIsToldOncePerFilm()
{
    AcquisitionRoad road;
    const QString ffmpeg = installEncoder({});
    road.onEvent = [&ffmpeg](const QString &event) {
        if (event == QLatin1String("[state] Encoding videos"))
            QFile::remove(ffmpeg);
    };
    // Two datasources of one name; the third is the second once more.
    DataSource namesake = AcquisitionRoad::suvi();
    namesake.nickname = AcquisitionRoad::aia().nickname;
    AcquisitionSettings settings =
        AcquisitionRoad::settings(30, {AcquisitionRoad::aia(), namesake, namesake});
    settings.keepFrames = false;
    QVERIFY(road.run(settings));
    QCOMPARE(road.count("FFMPEG ERROR for AIA 171: execvp: No such file or directory. Frames are "
                        "preserved."),
             3);
    QCOMPARE(road.count("[progress] 4/6") + road.count("[progress] 5/6"), 2);
    QCOMPARE(road.events.last(), QStringLiteral("[finished] completed"));
    QCOMPARE(road.column("File").trimmed(),
             QStringLiteral("AIA_171_20240501_000000/frame_000000.png "
                            "AIA_171_20240501_000000_2003/frame_000000.png"));
    QCOMPARE(road.column("Status"), QStringLiteral("OK OK DUPLICATE"));
    QCOMPARE(road.filesIn(aiaFolder), QStringLiteral("frame_000000.png video_frames"));
}

void TestAcquisitionRoad::gapInTheVideoFramesSkipsTheFilm()
{
    AcquisitionRoad road;
    road.onEvent = [](const QString &event) {
        if (!event.startsWith(QLatin1String("Session: ")))
            return;
        const QDir folder(event.mid(9) + QLatin1Char('/') + aiaFolder);
        QFile inTheWay(folder.filePath(QStringLiteral("video_frames")));
        QVERIFY(folder.rmdir(QStringLiteral("video_frames")));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    };
    AcquisitionSettings settings =
        AcquisitionRoad::settings(30, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()});
    settings.keepFrames = false;
    QVERIFY(road.run(settings));
    QCOMPARE(road.count("ERROR AIA 171: cannot create video frame: cannot create timestamped frame "
                        "directory"),
             1);
    QCOMPARE(road.count("VIDEO SKIPPED AIA 171: 1 accepted frame(s) but only 0 timestamped video "
                        "frame(s). Originals are preserved."),
             1);
    QCOMPARE(road.count("Video completed: GOES-R SUVI 195"), 1);
    QCOMPARE(road.count("Original and timestamped"), 0);
    QCOMPARE(road.column("Status"), QStringLiteral("OK OK"));
    QCOMPARE(road.column("VideoFrame"),
             QStringLiteral(" GOES-R_SUVI_195_20240501_000000/video_frames/frame_000000.png"));
    const QString original = road.sessionFile(aiaFolder + QStringLiteral("/frame_000000.png"));
    QCOMPARE(road.count(qPrintable(QStringLiteral("[preview] AIA 171 ") + original)), 1);
}

QTEST_MAIN(TestAcquisitionRoad)
#include "tst_acquisitionroad.moc"

#include "tests/acquisition/acquisitionroad.h"
#include "tests/support/fakeprogram.h"

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
    void requestEndsInOneOutcome_data();
    void requestEndsInOneOutcome();
    void framesGoOnlyWhenEveryFilmIsWhole_data();
    void framesGoOnlyWhenEveryFilmIsWhole();
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

    const auto row = [](const char *name, int sources, int seconds, int cadenceSeconds,
                        const QString &key, const char *value, const char *message) {
        QTest::newRow(name) << sources << seconds << cadenceSeconds << key << value << message;
    };
    const QString curl = QStringLiteral("curl");
    row("nothing selected, and nothing else right", 0, -1, 0, curl, "none",
        "Select at least one Helioviewer datasource.");
    row("end a second before start", 1, -1, 0, curl, "none", "Invalid UTC time interval.");
    row("no cadence", 1, 0, 0, curl, "none", "Cadence must be greater than zero.");
    row("a folder in place of curl", 1, 0, 60, curl, "bin", "./bin/curl.exe was not found.");
    row("no ffmpeg", 1, 0, 60, QStringLiteral("ffmpeg"), "none", "./bin/ffmpeg.exe was not found.");
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
    QTest::newRow("a web page three times: its number is used by the next")
        << Faults{{Operation::DownloadImage, FaultKind::HtmlBody, 0, 1, 3}} << 60
        << "CORRUPT_IMAGE OK" << oneFile << R"(
WARNING AIA 171: downloaded PNG cannot be decoded; retry 1/2 for imageId ID.
WARNING AIA 171: downloaded PNG cannot be decoded; retry 2/2 for imageId ID.
ERROR AIA 171: downloaded PNG is corrupt or incomplete after 2 retries (imageId ID). Frame rejected.
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

void TestAcquisitionRoad::framesGoOnlyWhenEveryFilmIsWhole_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("files");

    const char *all = "AIA_171_20240501_000000.mp4 frame_000000.png video_frames";
    QTest::newRow("both films whole") << 0 << "Video completed: AIA 171"
                                      << "AIA_171_20240501_000000.mp4";
    QTest::newRow("the first fails")
        << 3 << "FFMPEG ERROR for AIA 171 (exit code 3). Frames are preserved." << all;
}

void TestAcquisitionRoad::framesGoOnlyWhenEveryFilmIsWhole()
{
    QFETCH(int, exitCode);
    QFETCH(QString, line);
    QFETCH(QString, files);

    AcquisitionRoad road;
    FakeProgram::Reply whole;
    whole.files = {{QStringLiteral("$last"), "film"}};
    FakeProgram::Reply first = whole;
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

QTEST_MAIN(TestAcquisitionRoad)
#include "tst_acquisitionroad.moc"

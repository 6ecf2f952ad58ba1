#include "client/helioviewerclient.h"
#include "tests/acquisition/acquisitionroad.h"
#include "tests/support/fakeprogram.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QJsonObject>
#include <QtTest>

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

void installEncoder(bool endless)
{
    FakeProgram::Reply reply;
    reply.hang = endless;
    reply.standardOutput = "encoding\n";
    const QString ffmpeg = FakeProgram::install(QStringLiteral("bin/fake-ffmpeg"));
    FakeProgram::setScript(ffmpeg, {reply});
    TestFolder::setKey(QStringLiteral("paths/ffmpeg"), ffmpeg);
}

/// AIA is sampled directly, SUVI after a probe; one image each.
AcquisitionSettings smallSession()
{
    return AcquisitionRoad::settings(59, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()});
}

/// Starts a session and waits until it waits for a child that does not end.
bool startAndHang(AcquisitionRoad &road, const QString &lastEvent)
{
    const QMap<QString, Operation> operations = {
        {QStringLiteral("curl: getJPX"), Operation::GetJPX},
        {QStringLiteral("curl: getClosestImage"), Operation::GetClosestImage},
        {QStringLiteral("curl: downloadImage"), Operation::DownloadImage}};
    if (operations.contains(lastEvent))
        road.server.addFault({operations.value(lastEvent), FaultKind::Hang});
    installEncoder(true);
    return road.controller->start(smallSession()) && QTest::qWaitFor([&road, &lastEvent] {
               return road.events.last() == lastEvent && !AcquisitionRoad::children().isEmpty();
           });
}

} // namespace

/// A session that does not run to its end.
class TestAcquisitionStop : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void childInFlightIsKilled_data()
    {
        QTest::addColumn<QString>("lastEvent");
        QTest::addColumn<QString>("line"); // between the two of the stop itself
        QTest::addColumn<QString>("statuses");
        QTest::addColumn<int>("frameFiles");
        const auto row = [](const char *name, const char *lastEvent, const char *line,
                            const char *statuses, int frameFiles) {
            QTest::newRow(name) << lastEvent << line << statuses << frameFiles;
        };
        row("cadence probe", "curl: getJPX", "", "", 0);
        row("lookup", "curl: getClosestImage", "ERROR AIA 171 [getClosestImage]: Process crashed",
            "LOOKUP_ERROR", 0);
        row("download", "curl: downloadImage", "ERROR AIA 171 [downloadImage]: Process crashed",
            "DOWNLOAD_ERROR", 0);
        row("encoder", "encoding", "FFMPEG ERROR for AIA 171 (exit code 9). Frames are preserved.",
            "OK OK", 4);
    }

    void childInFlightIsKilled()
    {
        QFETCH(QString, lastEvent);
        QFETCH(QString, line);
        AcquisitionRoad road;
        QVERIFY(startAndHang(road, lastEvent));
        const int before = road.logLines().size();
        road.controller->stop();
        QVERIFY(!road.controller->isRunning());
        QCOMPARE(AcquisitionRoad::children(), QString());
        QStringList lines = {QStringLiteral("Stop requested by user."), line,
                             QStringLiteral("Session canceled.")};
        lines.removeAll(QString());
        QCOMPARE(QStringList(road.logLines().mid(before)), lines);
        QTEST(road.column("Status"), "statuses");
        QCOMPARE(road.descriptor().value(QLatin1String("canceled")), true);
        QVERIFY(!road.describedSource(1).isEmpty());

        road.controller->stop(); // idle: nothing happens
        QCoreApplication::processEvents();
        QCOMPARE(road.events.last(), QStringLiteral("[finished] canceled"));
        QCOMPARE(road.count("[finished]"), 1);
    }

    void destructionLeavesNoChildAndNoDescriptor_data() { childInFlightIsKilled_data(); }

    void destructionLeavesNoChildAndNoDescriptor()
    {
        QFETCH(QString, lastEvent);
        QFETCH(int, frameFiles);
        AcquisitionRoad road;
        QVERIFY(startAndHang(road, lastEvent));
        const QStringList before = road.events;
        road.controller.reset();
        QCOMPARE(AcquisitionRoad::children(), QString());
        QCOMPARE(road.events, before); // not a word
        QDirIterator files(road.output.path(), QDir::Files, QDirIterator::Subdirectories);
        int others = 0;
        while (files.hasNext())
            others += files.next().endsWith(QLatin1String("manifest.csv")) ? 0 : 1;
        QCOMPARE(others, frameFiles); // whole frames stay, half ones and a descriptor do not
    }

    void decodedFrameIsCompleted()
    {
        for (const bool annotated : {false, true}) {
            for (const bool destroys : {false, true}) {
                AcquisitionRoad road;
                const QDir session(road.output.path() +
                                   QStringLiteral("/20240501_000000__20240501_001000"));
                QFile manifest(session.filePath(QStringLiteral("manifest.csv")));
                bool ended = false;
                const auto end = [&] {
                    ended = true;
                    QVERIFY(manifest.open(QIODevice::ReadOnly));
                    QCOMPARE(manifest.readAll().count('\n'), 1);
                    if (destroys)
                        road.controller.reset();
                    else
                        road.controller->stop();
                };
                connect(road.controller->findChild<HelioviewerClient *>(),
                        &HelioviewerClient::renderedImageDownloaded, this, [&] {
                            if (annotated) // timers of one length end in the order of their starts
                                QTimer::singleShot(0, this, end);
                            else
                                QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
                        });
                QVERIFY(road.controller->start(
                    AcquisitionRoad::settings(600, {AcquisitionRoad::aia()})));
                QTRY_VERIFY(ended);
                QVERIFY(manifest.readAll().contains(",OK,"));
                const QString copy =
                    QStringLiteral("AIA_171_20240501_000000/video_frames/frame_000000.png");
                QVERIFY(!QImage(session.filePath(copy)).isNull());
                QCOMPARE(session.exists(QStringLiteral("session.json")), !destroys);
            }
        }
    }

    /// Each session is the one after another that was stopped: nothing may be left of that.
    void stopFromInsideASlot()
    {
        AcquisitionRoad road;
        installEncoder(false);
        AcquisitionSettings settings = smallSession();
        settings.keepFrames = false;
        bool tooLate = false; // the session ended by itself
        for (const char *event : {"Session: ",
                                  "[progress] 0/1",
                                  "[state] Quick cadence probe",
                                  "[state] Analyzing",
                                  "curl: getJPX",
                                  "[progress] 1/1",
                                  "[timing] 10",
                                  "Fast path AIA 171: direct",
                                  "Quick probe GOES-R",
                                  "Acquisition plan ready",
                                  "[progress] 0/4",
                                  "[state] Downloading frames",
                                  "[state] AIA 171",
                                  "curl: getClosestImage",
                                  "curl: downloadImage",
                                  "WARNING AIA 171",
                                  "OK AIA 171",
                                  "[preview] AIA 171",
                                  "[progress] 1/4",
                                  "REJECT GOES-R",
                                  "Summary AIA 171",
                                  "No accepted frames",
                                  "[state] Encoding videos",
                                  "ffmpeg: ",
                                  "encoding",
                                  "Video completed",
                                  "[progress] 3/4",
                                  "Original and timestamped",
                                  "[progress] 4/4",
                                  "[state] Completed",
                                  "Session completed.",
                                  "[finished]",
                                  "none"}) {
            road.server.clearFaults();
            road.server.clearJournal(); // faults are numbered from here on
            road.server.addFault({Operation::DownloadImage, FaultKind::TruncatedPng, 0, 1, 1});
            road.server.addFault({Operation::GetClosestImage, FaultKind::StaleDate, 100000, 2, 1});
            bool stopped = false;
            road.onEvent = [&](const QString &noted) {
                if (!noted.startsWith(QLatin1String(event)) || std::exchange(stopped, true))
                    return;
                tooLate = !road.controller->isRunning();
                road.controller->stop();
                road.controller->stop();
                QVERIFY(!road.controller->isRunning());
            };
            QVERIFY(road.run(settings));
            QVERIFY2(stopped || qstrcmp(event, "none") == 0, event);
            QCOMPARE(road.count("[finished]"), 1);
            QCOMPARE(road.count("Stop requested by user."), tooLate ? 0 : 1);
            QVERIFY2(road.events.last() == (tooLate ? QLatin1String("[finished] completed")
                                                    : QLatin1String("[finished] canceled")),
                     event);
            QCOMPARE(road.descriptor().value(QLatin1String("canceled")), !tooLate);
            QCOMPARE(AcquisitionRoad::children(), QString());
        }
        QCOMPARE(road.column("RequestIndex"), QStringLiteral("0 1"));
    }
};

QTEST_MAIN(TestAcquisitionStop)
#include "tst_acquisitionstop.moc"

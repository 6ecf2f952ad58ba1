#include "client/helioviewerclient.h"
#include "tests/acquisition/acquisitionfixture.h"
#include "tests/acquisition/sessioncheck.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/literals.h"

#include <QtTest>

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

void replaceEncoder(bool endless)
{
    FakeProgram::Reply reply;
    reply.hang = endless;
    reply.standardOutput = "encoding\n";
    reply.files.insert("$last"_s, "a film");
    FakeProgram::replace("ffmpeg"_s, {reply});
}

/// AIA is sampled directly, SUVI after a probe; one image each.
AcquisitionSettings smallSession()
{
    return AcquisitionFixture::settings(59,
                                        {AcquisitionFixture::aia(), AcquisitionFixture::suvi()});
}

} // namespace

/// A session that does not run to its end.
class TestAcquisitionStop final : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void childInFlightIsKilled_data()
    {
        QTest::addColumn<QString>("waiting"); // the event before a child that does not end
        QTest::addColumn<QString>("line");    // between the two of the stop itself
        QTest::addColumn<QString>("statuses");
        const auto row = [](const char *waiting, const char *line, const char *statuses) {
            QTest::newRow(waiting) << waiting << line << statuses;
        };
        row("curl: getJPX", "", "");
        row("curl: getClosestImage", "ERROR AIA 171 [getClosestImage]: Process crashed",
            "LOOKUP_ERROR");
        row("curl: downloadImage", "ERROR AIA 171 [downloadImage]: Process crashed",
            "DOWNLOAD_ERROR");
        row("encoding", "FFMPEG ERROR for AIA 171 (exit code 9). Frames are preserved.", "OK OK");
    }

    void childInFlightIsKilled()
    {
        QFETCH(QString, waiting);
        QFETCH(QString, line);
        QFETCH(QString, statuses);
        for (const bool destroys : {true, false}) {
            AcquisitionFixture fixture;
            const int operation = QStringList{"curl: getDataSources"_s, "curl: getJPX"_s,
                                              "curl: getClosestImage"_s, "curl: downloadImage"_s}
                                      .indexOf(waiting);
            if (operation > 0)
                fixture.server.addFault({Operation(operation), FaultKind::Hang});
            replaceEncoder(true);
            AcquisitionSettings settings = smallSession();
            if (operation == 1) // two probes at a time
                settings.sources += {4, "LASCO C2"_s, {}};
            QVERIFY(fixture.controller->start(settings));
            QTRY_VERIFY(fixture.events.last() == waiting &&
                        !AcquisitionFixture::children().isEmpty());
            QCOMPARE(fixture.count("curl: getJPX"), settings.sources.size() - 1);
            QString error;
            QVERIFY(!fixture.controller->start(settings, &error));
            QCOMPARE(error, "An acquisition is already running."_s);
            const int before = fixture.logLines().size();
            if (destroys)
                fixture.controller.reset();
            else
                fixture.controller->stop();
            QCOMPARE(AcquisitionFixture::children(), QString());
            const QString session = fixture.output.path() + "/20240501_000000__20240501_000059"_s;
            const SessionCheck check = SessionCheck::of(session);
            QCOMPARE(check.faults + check.strays, QStringList());
            if (destroys) {
                QVERIFY(check.descriptor.isEmpty());
                QCOMPARE(fixture.logLines().size(), before); // not a word
                continue;
            }
            QStringList lines = {"Stop requested by user."_s, line, "Session canceled."_s};
            lines.removeAll(QString());
            QCOMPARE(QStringList(fixture.logLines().mid(before)), lines);
            QCOMPARE(check.statuses, statuses);
            QCOMPARE(check.descriptor.value(QLatin1String("canceled")), true);
            QCOMPARE(check.descriptor.value(QLatin1String("sources")).toArray().size(),
                     settings.sources.size());
            fixture.controller->stop(); // idle: nothing happens
            QCoreApplication::processEvents();
            QCOMPARE(fixture.events.last(), "[finished] canceled"_s);
            QCOMPARE(fixture.count("[finished]"), 1);
        }
    }

    void decodedFrameIsCompleted()
    {
        for (const auto &[annotated, destroys] :
             {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
            AcquisitionFixture fixture;
            const QString session = fixture.output.path() + "/20240501_000000__20240501_001000"_s;
            QString statusesBefore = "not ended"_s;
            const auto end = [&, destroying = destroys] {
                statusesBefore = SessionCheck::of(session).statuses;
                if (destroying)
                    fixture.controller.reset();
                else
                    fixture.controller->stop();
            };
            fixture.onEvent = [&, nested = annotated && !destroys](const QString &event) {
                if (nested && event.startsWith(QLatin1String("OK ")))
                    fixture.controller->stop();
            };
            connect(fixture.controller->findChild<HelioviewerClient *>(),
                    &HelioviewerClient::renderedImageDownloaded, this, [&, later = annotated] {
                        if (later) // timers of one length end in the order of their starts
                            QTimer::singleShot(0, this, end);
                        else
                            QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
                    });
            QVERIFY(fixture.controller->start(
                AcquisitionFixture::settings(600, {AcquisitionFixture::aia()})));
            QTRY_COMPARE(statusesBefore, QString());
            const SessionCheck check = SessionCheck::of(session);
            QCOMPARE(check.faults + check.strays, QStringList());
            QCOMPARE(check.statuses, "OK"_s);
            QCOMPARE(check.pictures, 2);
            QCOMPARE(check.descriptor.isEmpty(), destroys);
            if (destroys)
                continue;
            QCOMPARE(fixture.count("[finished]"), 1);
            const QString copy =
                session + "/AIA_171_20240501_000000/video_frames/frame_000000.png"_s;
            QCOMPARE(fixture.controller->pictureInHand(copy), QImage(copy));
            QVERIFY(fixture.controller->pictureInHand(session).isNull());
            fixture.onEvent = nullptr;
            fixture.controller->findChild<HelioviewerClient *>()->disconnect(this);
            AcquisitionSettings frames =
                AcquisitionFixture::settings(0, {AcquisitionFixture::aia()});
            frames.createVideos = false;
            QVERIFY(fixture.run(frames));
            QCOMPARE(SessionCheck::of(fixture.sessionDirectory).statuses, "OK"_s);
            QCOMPARE(fixture.events.filter("[progress]"_s).join(QLatin1Char(' ')),
                     "[progress] 0/1 [progress] 0/1 [progress] 1/1 [progress] 1/1"_s);
        }
    }

    /// Each session is the one after another that was stopped: nothing may be left of that.
    void stopFromInsideASlot()
    {
        AcquisitionFixture fixture;
        replaceEncoder(false);
        AcquisitionSettings settings = smallSession();
        settings.keepFrames = false;
        bool tooLate = false; // the session ended by itself
        const QString events =
            "Session: |[progress] 0/1|[state] Quick cadence probe|[state] Analyzing|curl: getJPX|"
            "[progress] 1/1|[timing] 10|Fast path AIA 171: direct|Quick probe GOES-R|"
            "Acquisition plan ready|[progress] 0/4|[state] Downloading frames|[state] AIA 171|"
            "curl: getClosestImage|curl: downloadImage|WARNING AIA 171|OK AIA 171|"
            "[preview] AIA 171|[progress] 1/4|REJECT GOES-R|Summary AIA 171|No accepted frames|"
            "[state] Encoding videos|ffmpeg: |encoding|Video completed|[progress] 3/4|"
            "Original and timestamped|[progress] 4/4|[state] Completed|Session completed.|"
            "[finished]"_s;
        const QStringList stages = events.split(QLatin1Char('|'));
        for (const QString &event : stages) {
            fixture.server.clearFaults();
            fixture.server.clearJournal(); // faults are numbered from here on
            fixture.server.addFault({Operation::DownloadImage, FaultKind::TruncatedPng, 0, 1, 1});
            fixture.server.addFault(
                {Operation::GetClosestImage, FaultKind::StaleDate, 100000, 2, 1});
            bool stopped = false;
            fixture.onEvent = [&](const QString &noted) {
                if (!noted.startsWith(event) || std::exchange(stopped, true))
                    return;
                tooLate = !fixture.controller->isRunning();
                fixture.controller->stop();
                fixture.controller->stop();
                QVERIFY(!fixture.controller->isRunning());
            };
            QVERIFY(fixture.run(settings));
            QVERIFY2(stopped, qPrintable(event));
            QCOMPARE(fixture.count("[finished]"), 1);
            QCOMPARE(fixture.count("Stop requested by user."), tooLate ? 0 : 1);
            QVERIFY2(fixture.events.last() == (tooLate ? QLatin1String("[finished] completed")
                                                       : QLatin1String("[finished] canceled")),
                     qPrintable(event));
            const SessionCheck check = SessionCheck::of(fixture.sessionDirectory);
            QCOMPARE(check.descriptor.value(QLatin1String("canceled")), !tooLate);
            QCOMPARE(AcquisitionFixture::children(), QString());
        }
        fixture.onEvent = nullptr;
        QVERIFY(fixture.run(settings));
        QCOMPARE(SessionCheck::of(fixture.sessionDirectory).statuses, "OK OK"_s);
    }
};

QTEST_MAIN(TestAcquisitionStop)
#include "tst_acquisitionstop.moc"

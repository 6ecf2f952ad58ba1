#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"
#include "tests/support/fakeprogram.h"

#include <QDir>
#include <QtTest>

#include <optional>

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

const char *const crash = "#!/bin/sh\nkill -SEGV $$\n";
const char *const noInterpreter = "#!/no/such/shell\n";
const char *const noX264 = "#!/bin/sh\necho \"Unknown encoder 'libx264'\"\nexit 1\n";

/// Puts a script in the place of a program, or nothing when it is empty; no script restores it.
void replaceProgram(const QString &name, const std::optional<QByteArray> &script)
{
    const QString path = TestFolder::path(QStringLiteral("bin/link-") + name);
    QFile::remove(path);
    if (!script) {
        const QString program = TestFolder::path(QStringLiteral("bin/") + name);
        QVERIFY(QFile::link(QFileInfo(program).symLinkTarget(), path));
    } else if (!script->isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(*script) == script->size());
        if (script->startsWith("#!"))
            file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    }
    TestFolder::setKey(QStringLiteral("paths/") + name, path);
}

/// A session of three requests to which something happens.
struct Scene
{
    Scene()
    {
        allIsWell();
        TestFolder::setKey(QStringLiteral("timing/suviMaxTimeErrorSeconds"), 30);
        settings.sources[0].nickname = QStringLiteral("SUVI");
        settings.cadenceSeconds = 120;
        settings.imageWidth = 512;
    }
    ~Scene() { allIsWell(); }

    void allIsWell()
    {
        TestFolder::leaveRoom();
        replaceProgram(QStringLiteral("curl"), std::nullopt);
        replaceProgram(QStringLiteral("ffmpeg"), std::nullopt);
        if (std::exchange(serviceIsDown, false))
            QVERIFY(road.server.start(nullptr, port));
        const QString aside = folder() + QStringLiteral("aside");
        if (QFile::exists(aside) && QFile::remove(folder() + QStringLiteral("video_frames")))
            QVERIFY(QFile::rename(aside, folder() + QStringLiteral("video_frames")));
    }

    QString folder() const { return session + QStringLiteral("/SUVI_20240501_000000/"); }

    AcquisitionRoad road;
    int port = road.server.port();
    bool serviceIsDown = false;
    AcquisitionSettings settings = AcquisitionRoad::settings(240, {AcquisitionRoad::suvi()});
    QString session;
};

using Event = std::function<void(Scene &)>;

Event answers(Operation operation, FaultKind kind, int value = 0, int count = 1)
{
    return [=](Scene &scene) { scene.road.server.addFault({operation, kind, value, 1, count}); };
}

Event programIs(const char *name, const QByteArray &script)
{
    return [=](Scene &) { replaceProgram(QLatin1String(name), script); };
}

/// Room for so many pictures as the service sends them.
Event roomFor(double pictures)
{
    return [pictures](Scene &scene) {
        const QFileInfo first(scene.folder() + QStringLiteral("frame_000000.png"));
        TestFolder::leaveRoom(qint64(pictures * double(first.size())));
    };
}

void fileInPlaceOfFolder(Scene &scene)
{
    const QString frames = scene.folder() + QStringLiteral("video_frames");
    QVERIFY(QFile::rename(frames, scene.folder() + QStringLiteral("aside")));
    QVERIFY(QFile(frames).open(QIODevice::WriteOnly));
}

void lastCopyLosesItsEnd(Scene &scene)
{
    QFile copy(scene.folder() + QStringLiteral("video_frames/frame_000002.png"));
    QVERIFY(copy.resize(copy.size() - 1));
}

void lastPictureGoes(Scene &scene)
{
    QVERIFY(QFile::remove(scene.folder() + QStringLiteral("video_frames/frame_000002.png")));
}

void sessionIsRemoved(Scene &scene)
{
    QVERIFY(QDir(scene.session).removeRecursively());
}

void serviceStops(Scene &scene)
{
    scene.road.server.stop();
    scene.serviceIsDown = true;
}

} // namespace

Q_DECLARE_METATYPE(Event)

/// Sessions whose service, programs, disk or folders fail before or while they run.
class TestSessionFaults : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void cleanup() { QCOMPARE(AcquisitionRoad::children(), QString()); }

    void refusedStart_data()
    {
        QTest::addColumn<int>("sources");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("cadenceSeconds");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, int sources, int seconds, int cadenceSeconds,
                            const char *key, const char *value, const char *message) {
            QTest::newRow(name) << sources << seconds << cadenceSeconds << key << value << message;
        };
        row("nothing selected, and nothing else right", 0, -1, 0, "curl", "none",
            "Select at least one Helioviewer datasource.");
        row("end a second before start", 1, -1, 0, "curl", "none", "Invalid UTC time interval.");
        row("no cadence", 1, 0, 0, "curl", "none", "Cadence must be greater than zero.");
        row("a folder in place of curl", 1, 0, 60, "curl", "bin", "./bin/curl.exe was not found.");
        row("no ffmpeg", 1, 0, 60, "ffmpeg", "none", "./bin/ffmpeg.exe was not found.");
        row("output below a file", 1, 0, 60, "output", "sys/orvik.ini/out",
            "Cannot create output root directory.");
        row("output where nothing can be made", 1, 0, 60, "output", "/proc/self",
            "Cannot create session directory.");
        row("no room for the ledger", 1, 0, 60, "full", "", "Cannot create manifest.csv.");
    }

    void refusedStart()
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
        TestFolder::leaveRoom(key == QLatin1String("full") ? 0 : -1);
        QString error;
        const bool started = road.controller->start(settings, &error);
        const bool startedUnasked = road.controller->start(settings); // nobody asks why
        TestFolder::leaveRoom();
        QTEST(error, "message");
        QVERIFY(!started && !startedUnasked && !road.controller->isRunning());
        QCOMPARE(road.events, QStringList());
    }

    void somethingHappens_data()
    {
        QTest::addColumn<QString>("when"); // the event that it happens at
        QTest::addColumn<int>("occurrence");
        QTest::addColumn<Event>("happens");    // until that request is over
        QTest::addColumn<QString>("statuses"); // none when the pictures themselves are gone
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("film");

        const char *const start = "Session: ";
        const char *const lookup = "[state] SUVI";
        const char *const load = "curl: downloadImage";
        const char *const encode = "ffmpeg: ";
        const char *const allOk = "OK OK OK";
        const char *const corrupt = "CORRUPT_IMAGE OK OK";
        const char *const loadError = "OK DOWNLOAD_ERROR OK";
        const char *const lookupError = "OK LOOKUP_ERROR OK";
        const char *const film = "Video completed: SUVI";
        const char *const noFilm = "FFMPEG ERROR for SUVI";
        const char *const skipped =
            "VIDEO SKIPPED SUVI: 3 accepted frame(s) but only 2 timestamped";
        const auto row = [](const char *name, const char *when, int occurrence,
                            const Event &happens, const char *statuses, const char *line,
                            const char *filmLine) {
            QTest::newRow(name) << when << occurrence << happens << statuses << line << filmLine;
        };
        const auto answer = [&](const char *name, const Event &happens, const char *statuses,
                                const char *line) {
            row(name, start, 1, happens, statuses, line, film);
        };
        const auto looking = [&](const char *name, FaultKind kind, int value, int count,
                                 const char *line) {
            answer(name, answers(Operation::GetClosestImage, kind, value, count),
                   "LOOKUP_ERROR OK OK", line);
        };
        const auto loading = [&](const char *name, FaultKind kind, int value, int count,
                                 const char *statuses, const char *line) {
            answer(name, answers(Operation::DownloadImage, kind, value, count), statuses, line);
        };
        // The service's answers. As many fail as it takes until curl or the engine gives up.
        answer("probe: error object", answers(Operation::GetJPX, FaultKind::JsonErrorBody), allOk,
               "Quick probe SUVI: no frames returned");
        answer("probe: web page", answers(Operation::GetJPX, FaultKind::HtmlBody), allOk,
               "WARNING preflight SUVI: Invalid JSON: illegal value");
        looking("lookup: server error", FaultKind::Status, 500, 3, "returned error: 500");
        looking("lookup: never answered", FaultKind::Hang, 0, 3, "curl: (28)");
        looking("lookup: hung up at once", FaultKind::Refuse, 0, 1, "curl: (52)");
        looking("lookup: half of it", FaultKind::CutOffJson, 0, 1,
                "ERROR SUVI [getClosestImage]: Invalid JSON: ");
        looking("lookup: array", FaultKind::JsonArray, 0, 1, "Invalid JSON: no error occurred");
        looking("lookup: no id", FaultKind::WrongId, 3, 1,
                "ERROR SUVI [getClosestImage]: Response does not contain a valid image id/date.");
        answer("lookup: tolerance just met",
               answers(Operation::GetClosestImage, FaultKind::StaleDate, -40), allOk,
               "delta -30 s");
        answer("lookup: a second too early",
               answers(Operation::GetClosestImage, FaultKind::StaleDate, -41),
               "REJECTED_TIME OK OK", "delta -31 s, tolerance 30 s");
        answer("lookup: no solar radius", answers(Operation::GetClosestImage, FaultKind::NoRsun),
               allOk, film);
        loading("picture: server error once", FaultKind::Status, 502, 1, allOk, film);
        loading("picture: reset", FaultKind::ResetInBody, 0, 1, "DOWNLOAD_ERROR OK OK",
                "ERROR SUVI [downloadImage]: curl: (56)");
        loading("picture: nothing", FaultKind::EmptyBody, 0, 1, "DOWNLOAD_ERROR OK OK",
                "file is missing or empty.");
        loading("picture: web page", FaultKind::HtmlBody, 0, 3, corrupt,
                "is corrupt or incomplete after 2 retries");
        loading("picture: half of it twice", FaultKind::TruncatedPng, 0, 2, allOk, "retry 2/2");
        loading("picture: black block", FaultKind::BlackBlock, 0, 1, allOk,
                "WARNING SUVI: possible blank renderer block");
        // Programs.
        row("no curl for the probe", "[state] Analyzing", 1, programIs("curl", ""), allOk,
            "WARNING preflight SUVI: curl.exe not found: ", film);
        row("no curl", lookup, 2, programIs("curl", ""), lookupError,
            "ERROR SUVI [getClosestImage]: curl.exe not found: ", film);
        row("curl without its interpreter", lookup, 2, programIs("curl", noInterpreter),
            lookupError, "ERROR SUVI [getClosestImage]: exec", film);
        row("curl gone between check and start", load, 2, programIs("curl", ""), loadError,
            "ERROR SUVI [downloadImage]: exec", film);
        row("curl crashes", load, 2, programIs("curl", crash), loadError,
            "ERROR SUVI [downloadImage]: Process crashed", film);
        row("ffmpeg not executable", encode, 1, programIs("ffmpeg", "?"), allOk,
            "FFMPEG ERROR for SUVI: ", noFilm);
        row("ffmpeg without libx264", encode, 1, programIs("ffmpeg", noX264), allOk,
            "Unknown encoder 'libx264'", noFilm);
        row("ffmpeg crashes", encode, 1, programIs("ffmpeg", crash), allOk,
            "FFMPEG ERROR for SUVI (exit code 11). Frames are preserved.", noFilm);
        row("picture gone before the encoder sees it", encode, 1, lastPictureGoes, "",
            "WARNING SUVI: ffmpeg ended without an error, but the film shows 2 of 3 pictures.\n"
            "FFMPEG ERROR for SUVI (exit code 0). Frames are preserved.",
            noFilm);
        // The machine.
        row("service down from the start", start, 1, serviceStops,
            "LOOKUP_ERROR LOOKUP_ERROR LOOKUP_ERROR", "ERROR SUVI [getClosestImage]: curl: (7)",
            "No accepted frames for SUVI");
        row("service down for a download", load, 2, serviceStops, loadError,
            "ERROR SUVI [downloadImage]: curl: (7)", film);
        row("session folder gone", lookup, 3, sessionIsRemoved, "",
            "ERROR SUVI [downloadImage]: curl: (23)", "VIDEO SKIPPED SUVI");
        row("annotated copy cut off later", "Summary ", 1, lastCopyLosesItsEnd, "", skipped,
            skipped);
        row("disk full for a download", lookup, 2, roomFor(0.5), loadError,
            "ERROR SUVI [downloadImage]: curl: (23)", film);
        row("disk with room for a plain copy", lookup, 2, roomFor(1.2), allOk,
            "WARNING SUVI: frame annotation failed (cannot save timestamped PNG). Original", film);
        row("no folder for a copy", lookup, 2, fileInPlaceOfFolder, allOk,
            "ERROR SUVI: cannot create video frame: cannot create timestamped frame directory",
            skipped);
        row("disk full for a film", encode, 1, roomFor(0), allOk, "File too large", noFilm);
        row("disk full within a film", encode, 1, roomFor(0.1), allOk, "File too large", noFilm);
    }

    void somethingHappens()
    {
        QFETCH(QString, when);
        QFETCH(int, occurrence);
        QFETCH(Event, happens);
        QFETCH(QString, statuses);
        QFETCH(QString, line);
        QFETCH(QString, film);

        Scene scene;
        if (line == QLatin1String("curl: (28)"))
            TestFolder::setKey(QStringLiteral("network/maxTransferSeconds"), 1);
        scene.road.onEvent = [&](const QString &event) {
            if (event.startsWith(QLatin1String("Session: ")))
                scene.session = event.mid(9);
            if (event.startsWith(when) && --occurrence == 0)
                happens(scene);
            else if (event.startsWith(QLatin1String("[progress] ")) &&
                     !when.startsWith(QLatin1Char('S')))
                scene.allIsWell();
        };
        scene.settings.keepFrames = film.startsWith(QLatin1Char('V')); // a failure keeps them
        QVERIFY(scene.road.run(scene.settings));

        const QString log = scene.road.events.join(QLatin1Char('\n')); // "[mp4] ..." as well
        QVERIFY2(log.contains(line) && log.contains(film), qPrintable(log));
        QCOMPARE(scene.road.events.last(), QStringLiteral("[finished] completed"));
        QCOMPARE(scene.road.count("ERROR session.json"), 0); // also when its folder is gone
        const SessionCheck check = SessionCheck::of(scene.session);
        QVERIFY(check.hasDescriptor || !QFile::exists(scene.session));
        if (statuses.isEmpty())
            return;
        QCOMPARE(check.faults + check.strays, QStringList());
        QCOMPARE(check.statuses.join(QLatin1Char(' ')), statuses);
    }

    void fullForTheLedger_data()
    {
        QTest::addColumn<int>("relief"); // the request before which there is room again
        QTest::addColumn<QString>("lastWord");
        QTest::newRow("room again")
            << 8 << "manifest.csv is complete again; its waiting rows are written.";
        QTest::newRow("full to the end")
            << 0
            << "ERROR manifest.csv: the last rows could not be written and are lost. The frames "
               "themselves are kept.";
    }

    void fullForTheLedger()
    {
        QFETCH(int, relief);

        Scene scene;
        answers(Operation::GetClosestImage, FaultKind::Status, 400, 99)(scene);
        scene.settings.cadenceSeconds = 20;
        scene.settings.sources = {AcquisitionRoad::aia()};
        int lookups = 0;
        scene.road.onEvent = [&](const QString &event) {
            if (event == QLatin1String("curl: getClosestImage") &&
                (++lookups == 2 || lookups == relief))
                TestFolder::leaveRoom(lookups == 2 ? 400 : -1);
        };
        QVERIFY(scene.road.run(scene.settings));
        TestFolder::leaveRoom();

        QCOMPARE(scene.road.count("ERROR manifest.csv cannot be written: File too large"), 1);
        QTEST(scene.road.logLines().filter(QStringLiteral("manifest.csv")).value(1), "lastWord");
        const SessionCheck check = SessionCheck::of(scene.road.sessionDirectory());
        QCOMPARE(check.faults + check.strays, QStringList());
        QCOMPARE(check.hasDescriptor, relief > 0);
        QCOMPARE(scene.road.count("ERROR session.json"), relief > 0 ? 0 : 1);
        QCOMPARE(check.statuses.size(), relief > 0 ? 13 : 2);
    }

    void oneFailedFilmKeepsAllFrames()
    {
        AcquisitionRoad road;
        const QString ffmpeg = FakeProgram::install(QStringLiteral("bin/fake-ffmpeg"));
        FakeProgram::Reply whole;
        whole.files.insert(QStringLiteral("$last"), "film");
        FakeProgram::Reply failed = whole;
        failed.exitCode = 3;
        failed.standardError = "  two lines of\nits own \n";
        FakeProgram::setScript(ffmpeg, {failed, whole});
        TestFolder::setKey(QStringLiteral("paths/ffmpeg"), ffmpeg);
        AcquisitionSettings settings =
            AcquisitionRoad::settings(30, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()});
        settings.keepFrames = false;
        QVERIFY(road.run(settings));
        for (const char *line : {"two lines of\nits own", "Video completed: GOES-R SUVI 195",
                                 "FFMPEG ERROR for AIA 171 (exit code 3). Frames are preserved."})
            QCOMPARE(road.count(line), 1);
        for (const char *folder : {"AIA_171_20240501_000000", "GOES-R_SUVI_195_20240501_000000"})
            QVERIFY(road.filesIn(QLatin1String(folder))
                        .endsWith(QLatin1String("frame_000000.png video_frames")));
    }

    void nextSessionFromTheEncodersError()
    {
        Scene scene;
        scene.road.onEvent = [&scene](const QString &event) {
            if (event.startsWith(QLatin1String("ffmpeg: ")) && scene.road.count("ffmpeg: ") <= 3)
                replaceProgram(QStringLiteral("ffmpeg"), "?");
            if (!event.startsWith(QLatin1String("FFMPEG ERROR")))
                return;
            replaceProgram(QStringLiteral("ffmpeg"), std::nullopt);
            scene.road.controller->stop();
            QVERIFY(scene.road.controller->start(scene.settings));
        };
        QVERIFY(scene.road.controller->start(scene.settings));
        QTRY_COMPARE_WITH_TIMEOUT(scene.road.count("[finished] completed"), 1, 30000);
        QCOMPARE(scene.road.count("[finished] canceled"), 3);
        QCOMPARE(scene.road.count("Video completed: SUVI"), 1);
    }

    /// However many requests fail before they return, none lies on the stack of the one before.
    void failuresThatReturnAtOnce()
    {
        Scene scene;
        scene.settings.cadenceSeconds = 1;
        scene.settings.sources = {AcquisitionRoad::aia()};
        quintptr lowest = std::numeric_limits<quintptr>::max();
        quintptr highest = 0;
        scene.road.onEvent = [&](const QString &event) {
            if (event == QLatin1String("[state] Downloading frames"))
                replaceProgram(QStringLiteral("curl"), "");
            if (!event.startsWith(QLatin1String("ERROR ")))
                return;
            const auto here = quintptr(__builtin_frame_address(0));
            lowest = qMin(lowest, here);
            highest = qMax(highest, here);
        };
        QVERIFY(scene.road.run(scene.settings));
        QCOMPARE(scene.road.count("ERROR AIA 171 [getClosestImage]: curl.exe not found"), 241);
        QVERIFY(highest - lowest < 4096);
    }
};

QTEST_MAIN(TestSessionFaults)
#include "tst_sessionfaults.moc"

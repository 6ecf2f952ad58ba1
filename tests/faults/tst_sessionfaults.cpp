#include "tests/acquisition/acquisitionfixture.h"
#include "tests/acquisition/sessioncheck.h"
#include "tests/support/literals.h"

#include <QGuiApplication>
#include <QtTest>

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

const char *const lastLine = "Session completed.";

/// One session without a window, in a process of its own, whose log goes to standard output.
int runSession()
{
    QTextStream out(stdout);
    AcquisitionController controller;
    QObject::connect(&controller, &AcquisitionController::logMessage, &controller,
                     [&out](const QString &line) { out << line << Qt::endl; });
    QObject::connect(&controller, &AcquisitionController::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    const bool started = controller.start(
        AcquisitionFixture::settings(180, {AcquisitionFixture::aia(), AcquisitionFixture::suvi()}));
    return started ? QCoreApplication::exec() : 1;
}

/// Puts a script in the place of a program, or nothing when it is empty; a null one restores it.
void replaceProgram(const QString &name, const QByteArray &script)
{
    const QString link = "bin/link-"_s + name;
    QFile::remove(TestFolder::path(link));
    if (script.isNull()) {
        const QFileInfo program(TestFolder::path("bin/"_s + name));
        QVERIFY(QFile::link(program.symLinkTarget(), TestFolder::path(link)));
    } else if (!script.isEmpty()) {
        TestFolder::writeScript(link, script);
    }
    TestFolder::setKey("paths/"_s + name, link);
}

/// A session of three requests to which something happens.
struct Scene
{
    Scene()
    {
        allIsWell();
        TestFolder::setKey("timing/suviMaxTimeErrorSeconds"_s, 30);
        settings.sources[0].nickname = "SUVI"_s;
        settings.cadenceSeconds = 120;
        settings.imageWidth = 512;
    }
    ~Scene() { allIsWell(); }

    void allIsWell()
    {
        TestFolder::leaveRoom();
        replaceProgram("curl"_s, {});
        replaceProgram("ffmpeg"_s, {});
    }

    QString folder() const { return session + "/SUVI_20240501_000000/"_s; }

    AcquisitionFixture fixture;
    AcquisitionSettings settings = AcquisitionFixture::settings(240, {AcquisitionFixture::suvi()});
    QString session;
};

using Event = std::function<void(Scene &)>;

Event programIs(const char *name, const QByteArray &script)
{
    return [=](Scene &) { replaceProgram(QLatin1String(name), script); };
}

/// Room for so many pictures as the service sends them.
Event roomFor(double pictures)
{
    return [pictures](Scene &scene) {
        const QFileInfo first(scene.folder() + "frame_000000.png"_s);
        TestFolder::leaveRoom(static_cast<qint64>(pictures * static_cast<double>(first.size())));
    };
}

void noFolderForCopies(Scene &scene)
{
    const QString copies = scene.folder() + "video_frames"_s;
    QVERIFY(QDir(copies).removeRecursively() && QFile::link("nowhere"_s, copies));
}

/// The last annotated copy, cut off or gone.
Event lastCopyIs(bool there)
{
    return [there](Scene &scene) {
        QFile copy(scene.folder() + "video_frames/frame_000002.png"_s);
        QVERIFY(there ? copy.resize(copy.size() - 1) : copy.remove());
    };
}

} // namespace

Q_DECLARE_METATYPE(Event)

/// Sessions whose service, programs, disk or folders fail before or while they run.
class TestSessionFaults final : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void cleanup() { QCOMPARE(AcquisitionFixture::children(), QString()); }

    void refusedStart()
    {
        for (const char *row :
             {"0,-1,0,curl,none,Select at least one Helioviewer datasource.",
              "1,-1,0,curl,none,Invalid UTC time interval.",
              "1,0,0,curl,none,Cadence must be greater than zero.",
              "1,0,60,curl,bin,./bin/curl.exe was not found.", // a folder
              "1,0,60,ffmpeg,none,./bin/ffmpeg.exe was not found.",
              "1,0,60,output,sys/orvik.ini/x,Cannot create output root directory.",
              "1,0,60,output,/proc/self,Cannot create session directory.",
              "1,0,60,full,,Cannot create manifest.csv."}) {
            const QStringList fields = QString::fromLatin1(row).split(QLatin1Char(','));
            TestFolder::clearKeys();
            AcquisitionFixture fixture;
            TestFolder::setKey("paths/"_s + fields.at(3), fields.at(4));
            AcquisitionSettings settings = AcquisitionFixture::settings(fields.at(1).toInt(), {});
            settings.sources.fill(AcquisitionFixture::aia(), fields.at(0).toInt());
            settings.cadenceSeconds = fields.at(2).toInt();
            TestFolder::leaveRoom(fields.at(3) == "full"_s ? 100 : -1);
            QString error;
            const bool started = fixture.controller->start(settings, &error);
            const bool again = fixture.controller->start(settings); // without an error text
            TestFolder::leaveRoom();
            QCOMPARE(error, fields.at(5));
            QVERIFY(!started && !again && !fixture.controller->isRunning());
            QCOMPARE(fixture.events, QStringList());
        }
    }

    void somethingHappens_data()
    {
        QTest::addColumn<QString>("when"); // the event that it happens at
        QTest::addColumn<int>("occurrence");
        QTest::addColumn<Event>("happens");    // until that request is over
        QTest::addColumn<QString>("statuses"); // none when the pictures themselves are gone
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("film"); // what is said of it

        const char *const lookup = "[state] SUVI";
        const char *const encode = "ffmpeg: ";
        const char *const allOk = "OK OK OK";
        const char *const noLookup = "OK LOOKUP_ERROR OK";
        const char *const noLoad = "OK DOWNLOAD_ERROR OK";
        const char *const film = "Video completed: SUVI";
        const char *const noFilm = "FFMPEG ERROR for SUVI";
        const char *const cut = "VIDEO SKIPPED SUVI: 3 accepted frame(s) but only 2 timestamped";
        const auto row = [&](const char *name, const char *when, int occurrence,
                             const Event &happens, const char *statuses, const char *line,
                             const char *filmLine) {
            QTest::newRow(name) << when << occurrence << happens << statuses << line << filmLine;
        };
        const auto answer = [&](const char *name, Operation operation, FaultKind kind, int value,
                                int count, const char *statuses, const char *line) {
            const Event happens = [=](Scene &scene) {
                scene.fixture.server.addFault({operation, kind, value, 1, count});
            };
            row(name, "Session: ", 1, happens, statuses, line, film);
        };
        // The service's answers. As many fail as it takes until curl or the engine gives up.
        answer("probe: error object", Operation::GetJPX, FaultKind::JsonErrorBody, 0, 1, allOk,
               "Quick probe SUVI: no frames returned");
        const auto looking = [&](const char *name, FaultKind kind, int value, int count,
                                 const char *line, const char *statuses = "LOOKUP_ERROR OK OK") {
            answer(name, Operation::GetClosestImage, kind, value, count, statuses, line);
        };
        looking("lookup: server error", FaultKind::Status, 500, 3, "returned error: 500");
        looking("lookup: never answered", FaultKind::Hang, 0, 3, "curl: (28)");
        looking("lookup: web page", FaultKind::HtmlBody, 0, 1, "Invalid JSON: illegal value");
        looking("lookup: array", FaultKind::JsonArray, 0, 1, "Invalid JSON: no error occurred");
        looking("lookup: no id", FaultKind::WrongId, 3, 1, "does not contain a valid image id");
        looking("lookup: just in time", FaultKind::StaleDate, -40, 1, "delta -30 s", allOk);
        looking("lookup: a second too early", FaultKind::StaleDate, -41, 1, "delta -31 s",
                "REJECTED_TIME OK OK");
        const auto loading = [&](const char *name, FaultKind kind, int value, int count,
                                 const char *line, const char *statuses) {
            answer(name, Operation::DownloadImage, kind, value, count, statuses, line);
        };
        loading("picture: reset", FaultKind::ResetInBody, 0, 1, "[downloadImage]: curl: (56)",
                "DOWNLOAD_ERROR OK OK");
        loading("picture: web page", FaultKind::HtmlBody, 0, 3,
                "ERROR SUVI: downloaded PNG is corrupt or incomplete after 2 retries (imageId ",
                "CORRUPT_IMAGE OK OK");
        loading("picture: half of it twice", FaultKind::TruncatedPng, 0, 2, "retry 2/2", allOk);
        loading("picture: black", FaultKind::BlackBlock, 0, 1, "SUVI: possible blank", allOk);
        // Programs.
        row("no curl", lookup, 2, programIs("curl", ""), noLookup, "curl.exe not found: ", film);
        row("no ffmpeg", encode, 1, programIs("ffmpeg", ""), allOk,
            "FFMPEG ERROR for SUVI: execvp: No such file or directory. Frames are preserved.",
            noFilm);
        row("picture gone before the encoder sees it", encode, 1, lastCopyIs(false), "",
            "WARNING SUVI: ffmpeg ended without an error, but the film shows 2 of 3 pictures.\n"
            "FFMPEG ERROR for SUVI (exit code 0). Frames are preserved.",
            noFilm);
        // The machine.
        const auto stopService = [](Scene &scene) { scene.fixture.server.stop(); };
        row("service down from the start", "Session: ", 1, stopService,
            "LOOKUP_ERROR LOOKUP_ERROR LOOKUP_ERROR", "curl: (7)", "No accepted frames for SUVI");
        const auto remove = [](Scene &scene) { QDir(scene.session).removeRecursively(); };
        row("session removed", lookup, 3, remove, "", "curl: (23)", "VIDEO SKIPPED SUVI");
        row("copy cut off later", "Summary ", 1, lastCopyIs(true), "", cut, cut);
        row("full for a download", lookup, 2, roomFor(0.5), noLoad, "curl: (23)", film);
        row("room for a plain copy", lookup, 2, roomFor(1.2), allOk,
            "WARNING SUVI: frame annotation failed (cannot save timestamped PNG). Original", film);
        row("no folder for copies", lookup, 1, noFolderForCopies, allOk,
            "ERROR SUVI: cannot create video frame: cannot create timestamped frame directory",
            "VIDEO SKIPPED SUVI: 3 accepted frame(s) but only 0 timestamped");
        row("full within a film", encode, 1, roomFor(0.1), allOk, "File too large", noFilm);
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
            TestFolder::setKey("network/maxTransferSeconds"_s, 1);
        scene.fixture.onEvent = [&](const QString &event) {
            if (event.startsWith(QLatin1String("Session: ")))
                scene.session = event.mid(9);
            if (event.startsWith(when) && --occurrence == 0)
                happens(scene);
            else if (event.startsWith(QLatin1String("[progress] ")) &&
                     !when.startsWith(QLatin1Char('S')))
                scene.allIsWell();
        };
        scene.settings.keepFrames = film.startsWith("Video"_s); // a failure keeps them
        QVERIFY(scene.fixture.run(scene.settings));

        const QString log = scene.fixture.events.join(QLatin1Char('\n')); // "[mp4] ..." as well
        QVERIFY2(log.contains(line) && log.contains(film), qPrintable(log));
        QCOMPARE(scene.fixture.events.last(), "[finished] completed"_s);
        QCOMPARE(scene.fixture.count("ERROR session.json"), 0); // also when its folder is gone
        QCOMPARE(scene.fixture.count("Fast path"), 0);
        const SessionCheck check = SessionCheck::of(scene.session);
        QVERIFY(check.descriptor.isEmpty() != QFile::exists(scene.session));
        if (statuses.isEmpty())
            return;
        QCOMPARE(check.faults + check.strays, QStringList());
        QCOMPARE(check.statuses, statuses);
    }

    void fullForTheLedger()
    {
        for (const int relief :
             {4, 99, 0}) { // the request before which there is room again, if any
            Scene scene;
            scene.fixture.server.addFault({Operation::GetClosestImage, FaultKind::Status, 400});
            scene.settings.cadenceSeconds = 40;
            scene.settings.sources = {AcquisitionFixture::aia()};
            int lookups = 0;
            scene.fixture.onEvent = [&](const QString &event) {
                if (event == QLatin1String("curl: getClosestImage") &&
                    (++lookups == 2 || lookups == relief))
                    TestFolder::leaveRoom(lookups == 2 ? 400 : -1);
                if (relief == 99 && event == QLatin1String("[state] Encoding videos"))
                    TestFolder::leaveRoom(); // after the last of them
            };
            QVERIFY(scene.fixture.run(scene.settings));
            TestFolder::leaveRoom();
            const int whole = relief > 0 ? 1 : 0;
            QCOMPARE(scene.fixture.count("ERROR manifest.csv cannot be written: File too large"),
                     1);
            QCOMPARE(scene.fixture.count("manifest.csv is complete again;"), whole);
            QCOMPARE(scene.fixture.count("ERROR manifest.csv: the last rows could"), 1 - whole);
            QCOMPARE(scene.fixture.count("ERROR session.json"), 1 - whole);
            const SessionCheck check = SessionCheck::of(scene.fixture.sessionDirectory);
            QCOMPARE(check.faults + check.strays, QStringList());
            QCOMPARE(check.rows, whole ? 7 : 2);
            QCOMPARE(check.descriptor.isEmpty(), whole == 0);
        }
    }

    void oneFailedFilmKeepsAllFrames()
    {
        AcquisitionFixture fixture;
        replaceProgram("ffmpeg"_s, {});
        fixture.onEvent = [](const QString &event) {
            if (event.startsWith("ffmpeg: "_s))
                replaceProgram("ffmpeg"_s, event.contains("AIA"_s) ? "exit 3" : QByteArray());
        };
        AcquisitionSettings settings = AcquisitionFixture::settings(
            30, {AcquisitionFixture::aia(), AcquisitionFixture::suvi()});
        settings.sources[1].nickname = "Aia 171"_s; // for some disks the same name
        settings.keepFrames = false;
        QVERIFY(fixture.run(settings));
        QCOMPARE(fixture.count("FFMPEG ERROR for AIA 171 (exit code 3). Frames are preserved."), 1);
        QCOMPARE(fixture.count("Video completed: Aia 171"), 1);
        const SessionCheck check = SessionCheck::of(fixture.sessionDirectory);
        QCOMPARE(check.faults, QStringList());
        QCOMPARE(check.pictures, 4);
    }

    void killed_data()
    {
        QTest::addColumn<int>("occurrence"); // of a line of the log that begins so
        const auto row = [](const char *line, int occurrence) {
            QTest::addRow("%s, %d", line, occurrence) << occurrence;
        };
        for (const char *line : {"Session: ", "curl: ", "OK ", "Summary ", "ffmpeg: ", lastLine})
            row(line, 1);
        row("curl: ", 4); // a lookup
        row("curl: ", 5); // a download
        row("OK ", 4);
        row("ffmpeg: ", 2);
    }

    /// What a killed program has said to have is there, and whole.
    void killed()
    {
        QFETCH(int, occurrence);
        const QByteArray beginning = QByteArray(QTest::currentDataTag()).split(',').first();
        AcquisitionFixture fixture; // for its service and its output root
        QProcess session;
        session.start(QCoreApplication::applicationFilePath(), {"session"_s});
        int accepted = 0;
        while (occurrence > 0 && (session.canReadLine() || session.waitForReadyRead())) {
            const QByteArray line = session.readLine();
            accepted += line.startsWith("OK ") ? 1 : 0;
            occurrence -= line.startsWith(beginning) ? 1 : 0;
        }
        QCOMPARE(occurrence, 0);
        session.kill();
        QVERIFY(session.waitForFinished());

        const QDir root(fixture.output.path());
        const QStringList sessions = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(sessions.size(), 1);
        const SessionCheck check = SessionCheck::of(root.filePath(sessions.first()));
        QCOMPARE(check.faults, QStringList());
        QVERIFY(check.rows >= accepted && check.pictures >= 2 * accepted);
        QVERIFY2(check.strays.size() <= 2, qPrintable(check.strays.join(QLatin1Char(' '))));
        QCOMPARE(!check.descriptor.isEmpty(), beginning == lastLine);
    }
};

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    if (application.arguments().value(1) == QLatin1String("session"))
        return runSession();
    TestSessionFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sessionfaults.moc"

#include "output/filmfile.h"
#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"
#include "tests/faults/smalldisk.h"

#include <QDir>
#include <QGuiApplication>
#include <QtTest>

#include <optional>

namespace {

bool canMount = false;

/// Skips the test where it is true; the macro QSKIP lacks an argument in the eyes of clang++.
bool isSkippedWithoutDisk()
{
    if (!canMount)
        QTest::qSkip("this user may not mount a small disk", __FILE__, __LINE__);
    return !canMount;
}

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
        replaceProgram(QStringLiteral("curl"), std::nullopt);
        replaceProgram(QStringLiteral("ffmpeg"), std::nullopt);
        settings.sources[0].nickname = QStringLiteral("SUVI");
        settings.cadenceSeconds = 120;
        settings.imageWidth = 512;
    }

    AcquisitionRoad road;
    int port = road.server.port();
    bool serviceIsDown = false;
    AcquisitionSettings settings = AcquisitionRoad::settings(240, {AcquisitionRoad::suvi()});
    std::optional<SmallDisk> disk;
    QString session;
    QString folder = QStringLiteral("/SUVI_20240501_000000");
};

using Event = std::function<void(Scene &)>;

Event curlIs(const QByteArray &script)
{
    return [script](Scene &) { replaceProgram(QStringLiteral("curl"), script); };
}

Event ffmpegIs(const QByteArray &script)
{
    return [script](Scene &) { replaceProgram(QStringLiteral("ffmpeg"), script); };
}

Event removed(bool wholeSession)
{
    return [wholeSession](Scene &scene) {
        QVERIFY(
            QDir(scene.session + (wholeSession ? QString() : scene.folder)).removeRecursively());
    };
}

void lastCopyLosesItsEnd(Scene &scene)
{
    QFile copy(scene.session + scene.folder + QStringLiteral("/video_frames/frame_000002.png"));
    QVERIFY(copy.resize(copy.size() - 1));
}

void lastPictureGoes(Scene &scene)
{
    QVERIFY(QFile::remove(scene.session + scene.folder +
                          QStringLiteral("/video_frames/frame_000002.png")));
}

/// Room on the disk for so many pictures as the service sends them.
Event roomFor(double pictures)
{
    return [pictures](Scene &scene) {
        const QFileInfo first(scene.session + scene.folder + QStringLiteral("/frame_000000.png"));
        scene.disk->leave(qint64(pictures * double(first.size())));
    };
}

void serviceStops(Scene &scene)
{
    scene.road.server.stop();
    scene.serviceIsDown = true;
}

void allIsWellAgain(Scene &scene)
{
    replaceProgram(QStringLiteral("curl"), std::nullopt);
    if (std::exchange(scene.serviceIsDown, false))
        QVERIFY(scene.road.server.start(nullptr, scene.port));
    if (scene.disk)
        scene.disk->relieve();
}

} // namespace

Q_DECLARE_METATYPE(Event)

/// Sessions whose programs, service, disk or folders fail while they run.
class TestMidrunFaults : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void cleanup() { QCOMPARE(AcquisitionRoad::children(), QString()); }
    void somethingHappens_data();
    void somethingHappens();
    void outputRootThatCannotBeUsed();
    void diskFullForTheLedger_data();
    void diskFullForTheLedger();
    void nextSessionFromTheEncodersError();
};

void TestMidrunFaults::somethingHappens_data()
{
    QTest::addColumn<QString>("when"); // the event that it happens at
    QTest::addColumn<int>("occurrence");
    QTest::addColumn<Event>("happens");    // until that request is over
    QTest::addColumn<QString>("statuses"); // none when the pictures themselves are gone
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("film");
    QTest::addColumn<bool>("fillsTheDisk");

    const QString lookup = QStringLiteral("[state] SUVI");
    const QString load = QStringLiteral("curl: downloadImage");
    const QString encode = QStringLiteral("ffmpeg: ");
    const QString loadError = QStringLiteral("OK DOWNLOAD_ERROR OK");
    const QString lookupError = QStringLiteral("OK LOOKUP_ERROR OK");
    const QString allOk = QStringLiteral("OK OK OK");
    const QString film = QStringLiteral("Video completed: SUVI");
    const QString noFilm = QStringLiteral("FFMPEG ERROR for SUVI");
    const QString skipped = QStringLiteral("VIDEO SKIPPED SUVI");
    bool fillsTheDisk = false; // holds for the rows that follow
    const auto row = [&fillsTheDisk](const char *name, const QString &when, int occurrence,
                                     const Event &happens, const QString &statuses,
                                     const char *line, const QString &filmLine) {
        QTest::newRow(name) << when << occurrence << happens << statuses
                            << QString::fromLatin1(line) << filmLine << fillsTheDisk;
    };
    row("no curl for the probe", QStringLiteral("[state] Analyzing"), 1, curlIs(""), allOk,
        "WARNING preflight SUVI: curl.exe not found: ", film);
    row("no curl", lookup, 2, curlIs(""), lookupError,
        "ERROR SUVI [getClosestImage]: curl.exe not found: ", film);
    row("curl gone between check and start", load, 2, curlIs(""), loadError,
        "ERROR SUVI [downloadImage]: exec", film);
    row("curl not executable", lookup, 2, curlIs("?"), lookupError,
        "ERROR SUVI [getClosestImage]: exec", film);
    row("curl without its interpreter", lookup, 2, curlIs(noInterpreter), lookupError,
        "ERROR SUVI [getClosestImage]: exec", film);
    row("curl crashes", load, 2, curlIs(crash), loadError,
        "ERROR SUVI [downloadImage]: Process crashed", film);
    row("service down from the start", QStringLiteral("Session: "), 1, serviceStops,
        QStringLiteral("LOOKUP_ERROR LOOKUP_ERROR LOOKUP_ERROR"),
        "ERROR SUVI [getClosestImage]: curl: (7)", QStringLiteral("No accepted frames for SUVI"));
    row("service down for a lookup", lookup, 2, serviceStops, lookupError,
        "ERROR SUVI [getClosestImage]: curl: (7)", film);
    row("service down for a download", load, 2, serviceStops, loadError,
        "ERROR SUVI [downloadImage]: curl: (7)", film);
    row("no ffmpeg", encode, 1, ffmpegIs(""), allOk, "FFMPEG ERROR for SUVI: ", noFilm);
    row("ffmpeg not executable", encode, 1, ffmpegIs("?"), allOk,
        "FFMPEG ERROR for SUVI: ", noFilm);
    row("ffmpeg without libx264", encode, 1, ffmpegIs(noX264), allOk, "Unknown encoder 'libx264'",
        noFilm);
    row("ffmpeg crashes", encode, 1, ffmpegIs(crash), allOk,
        "FFMPEG ERROR for SUVI (exit code 11). Frames are preserved.", noFilm);
    row("picture gone before the encoder sees it", encode, 1, lastPictureGoes, QString(),
        "WARNING SUVI: ffmpeg ended without an error, but the film shows 2 of 3 pictures.\n"
        "FFMPEG ERROR for SUVI (exit code 0). Frames are preserved.",
        noFilm);
    row("session folder gone", lookup, 3, removed(true), QString(),
        "ERROR SUVI [downloadImage]: curl: (23)", skipped);
    row("datasource folder gone", lookup, 2, removed(false), QString(),
        "ERROR SUVI [downloadImage]: curl: (23)", skipped);
    row("annotated copy cut off later", QStringLiteral("Summary "), 1, lastCopyLosesItsEnd,
        QString(), "VIDEO SKIPPED SUVI: 3 accepted frame(s) but only 2 timestamped", skipped);
    fillsTheDisk = true;
    row("disk full for a download", lookup, 2, roomFor(0), loadError,
        "ERROR SUVI [downloadImage]: curl: (23)", film);
    row("disk full for an annotated copy", lookup, 2, roomFor(1.2), allOk,
        "ERROR SUVI: cannot create video frame: cannot save timestamped PNG",
        QStringLiteral("VIDEO SKIPPED SUVI: 3 accepted frame(s) but only 2 timestamped"));
    row("disk with room for a plain copy", lookup, 2, roomFor(2.2), allOk,
        "WARNING SUVI: frame annotation failed (cannot save timestamped PNG). Original", film);
    row("disk full for a film", encode, 1, roomFor(0), allOk, "No space left on device", noFilm);
    row("disk full within a film", encode, 1, roomFor(0.1), allOk, "No space left on device",
        noFilm);
}

void TestMidrunFaults::somethingHappens()
{
    QFETCH(QString, when);
    QFETCH(int, occurrence);
    QFETCH(Event, happens);
    QFETCH(QString, statuses);
    QFETCH(QString, line);
    QFETCH(QString, film);
    QFETCH(bool, fillsTheDisk);

    if (fillsTheDisk && isSkippedWithoutDisk())
        return;
    Scene scene;
    if (canMount)
        TestFolder::setKey(QStringLiteral("paths/output"), scene.disk.emplace().path());
    scene.road.onEvent = [&](const QString &event) {
        if (event.startsWith(QLatin1String("Session: ")))
            scene.session = event.mid(9);
        if (event.startsWith(when) && --occurrence == 0)
            happens(scene);
        else if (event.startsWith(QLatin1String("[progress] ")) &&
                 !when.startsWith(QLatin1Char('S')))
            allIsWellAgain(scene);
    };
    scene.settings.keepFrames = film.startsWith(QLatin1Char('V')); // a failure keeps them anyway
    QVERIFY(scene.road.run(scene.settings));

    const QString log = scene.road.events.join(QLatin1Char('\n')); // ffmpeg's "[mp4] ..." as well
    QVERIFY2(log.contains(line) && log.contains(film), qPrintable(log));
    QCOMPARE(scene.road.events.last(), QStringLiteral("[finished] completed"));
    QCOMPARE(scene.road.count("ERROR session.json"), 0); // also when its folder is gone
    QVERIFY(!FilmFile::isCutOff(scene.session + scene.folder + scene.folder +
                                QStringLiteral(".mp4"))); // nobody could play it
    const SessionCheck check = SessionCheck::of(scene.session);
    QVERIFY(check.hasDescriptor || !QFile::exists(scene.session));
    if (statuses.isEmpty())
        return;
    QCOMPARE(check.faults + check.strays, QStringList());
    QCOMPARE(check.statuses.join(QLatin1Char(' ')), statuses);
}

void TestMidrunFaults::outputRootThatCannotBeUsed()
{
    if (isSkippedWithoutDisk())
        return;
    AcquisitionRoad road;
    SmallDisk disk;
    const auto refusalOf = [&road](const QString &root) {
        TestFolder::setKey(QStringLiteral("paths/output"), root);
        QString error;
        road.controller->start(AcquisitionRoad::settings(0, {AcquisitionRoad::aia()}), &error);
        return error;
    };
    disk.leave(0);
    QCOMPARE(refusalOf(disk.path()), QStringLiteral("Cannot create manifest.csv."));
    disk.makeReadOnly();
    QCOMPARE(refusalOf(disk.path()), QStringLiteral("Cannot create session directory."));
    QCOMPARE(refusalOf(disk.path() + QStringLiteral("/new")),
             QStringLiteral("Cannot create output root directory."));
    QCOMPARE(road.events, QStringList());
    QCOMPARE(refusalOf(road.output.path() + QStringLiteral("/missing/parents")), QString());
    QVERIFY(road.waitForEnd());
}

void TestMidrunFaults::diskFullForTheLedger_data()
{
    QTest::addColumn<int>("relief"); // the request before which there is room again
    QTest::addColumn<QString>("lastWord");

    QTest::newRow("room again") << 30
                                << "manifest.csv is complete again; its waiting rows are "
                                   "written.";
    QTest::newRow("full to the end") << 0
                                     << "ERROR manifest.csv: the last rows could not be written "
                                        "and are lost. The frames themselves are kept.";
}

void TestMidrunFaults::diskFullForTheLedger()
{
    QFETCH(int, relief);

    if (isSkippedWithoutDisk())
        return;
    Scene scene;
    TestFolder::setKey(QStringLiteral("paths/output"), scene.disk.emplace().path());
    scene.road.server.addFault(
        {Simulator::Operation::GetClosestImage, Simulator::FaultKind::Status, 400, 2});
    scene.settings.sources = {AcquisitionRoad::aia()};
    scene.settings.sources[0].nickname += QString(150, QLatin1Char('x'));
    scene.settings.cadenceSeconds = 6; // 41 rows of 250 bytes: beyond the page that the file has
    scene.settings.createVideos = false;
    int lookups = 0;
    scene.road.onEvent = [&](const QString &event) {
        if (event != QLatin1String("curl: getClosestImage"))
            return;
        if (++lookups == 2)
            scene.disk->leave(0);
        if (lookups == relief)
            scene.disk->relieve();
    };
    QVERIFY(scene.road.run(scene.settings));

    QCOMPARE(scene.road.count("ERROR manifest.csv cannot be written: No space left"), 1);
    QTEST(scene.road.logLines().filter(QStringLiteral("manifest.csv")).value(1), "lastWord");
    const SessionCheck check = SessionCheck::of(scene.road.sessionDirectory());
    QCOMPARE(check.faults + check.strays, QStringList());
    QCOMPARE(check.hasDescriptor, relief > 0);
    QCOMPARE(scene.road.count("ERROR session.json"), relief > 0 ? 0 : 1);
    QCOMPARE(check.statuses.size() == 41, relief > 0);
}

void TestMidrunFaults::nextSessionFromTheEncodersError()
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

int main(int argc, char *argv[])
{
    canMount = SmallDisk::prepare();
    const QGuiApplication application(argc, argv);
    TestMidrunFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_midrunfaults.moc"

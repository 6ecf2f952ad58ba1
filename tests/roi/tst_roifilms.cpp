#include "roi/filminglock.h"
#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"
#include "tests/roi/testsession.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QTimer>
#include <QtTest>

using Outcome = RoiVideoGenerator::Outcome;

namespace {

QByteArray half() // of a film
{
    return QByteArray::fromHex("0000001066747970");
}

constexpr const char *filmName = "AIA_171/AIA_171__ROI_01_Flare_1_west.mp4";
constexpr const char *earlierFilm = "an earlier film";

RoiVideoPlan planFor(const TestSession &stored)
{
    const auto session = RoiSession::load(stored.path());
    RoiVideoPlan plan;
    plan.sessionDirectory = session->directory;
    plan.sources = {{session->sources.first(), {}}};
    plan.rois = {{1, {QStringLiteral("Flare  #1 / west"), {0.25, 0.25, 0.5, 0.5}, true, 0}}};
    plan.fps = session->videoFps;
    plan.crf = session->videoCrf;
    plan.overlays = {true, false, false};
    plan.introSeconds = 0.5;
    return plan;
}

QString filmOf(const TestSession &stored)
{
    return stored.filePath(filmName);
}

/// Why a run failed.
QString failureOf(const RoiVideoPlan &plan)
{
    RoiVideoGenerator generator;
    return generator.run(plan) == Outcome::Failed ? generator.errorText()
                                                  : QStringLiteral("did not fail");
}

} // namespace

/// Films made by the real ffmpeg, and every way in which making them ends early.
class TestRoiFilms final : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void filmShowsTheRegionTurnedBelowItsOverlays()
    {
        const TestSession stored;
        const auto before = stored.contents();
        RoiVideoPlan plan = planFor(stored);
        plan.rois.first().roi.rotation = 90;
        RoiVideoGenerator generator;
        QSignalSpy log(&generator, &RoiVideoGenerator::logMessage);
        QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(progress.last().first().toInt(), plan.totalFrames());
        QCOMPARE(log.last().first().toString(),
                 QStringLiteral("ROI video completed: %1; rotation 90 deg").arg(filmOf(stored)));
        QCOMPARE(filmShape(filmOf(stored)), QStringLiteral("96,128,5/1,3"));
        const QImage frame = filmFrame(filmOf(stored), 2);
        QCOMPARE(frame.pixel(44, 60), 0xff00ff00);
        QCOMPARE(frame.pixel(52, 60), 0xffffffff);
        QCOMPARE(frame.pixel(44, 68), 0xffff0000);
        const QRect stamp(0, 100, 96, 28);
        QVERIFY(frame.copy(stamp) != filmFrame(filmOf(stored), 1).copy(stamp)); // a minute ago
        QCOMPARE(stored.contents(), before); // no stored file changed, no temporary one is left
    }

    void oddFramesAndNames()
    {
        const TestSession stored;
        TestSession::frame({101, 77}).save(stored.filePath("AIA_171/frame_1.png"));
        QImage(1, 1, QImage::Format_Grayscale8).save(stored.filePath("AIA_171/frame_2.png"));
        stored.write("AIA_171/AIA_171__ROI_02_a_b.old", "a user's own file");
        const auto before = stored.contents();
        RoiVideoPlan plan = planFor(stored);
        const QString longName(300, QChar(0xe4)); // of two bytes
        plan.rois = {{2, {QStringLiteral("a/b"), {0, 0, 1, 1}, true, 0}},
                     {11, {QStringLiteral("a b"), {0, 0, 1, 1}, true, 0}},
                     {12, {longName, {0, 0, 1, 1}, true, 0}}};
        for (int round = 0; round < 2; ++round) // the second sets the films of the first aside
            QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        for (const QString &name : {QStringLiteral("02_a_b"), QStringLiteral("11_a_b"),
                                    QStringLiteral("12_") + longName.left(110)})
            QVERIFY(filmShape(stored.filePath("AIA_171/AIA_171__ROI_%1.mp4").arg(name))
                        .endsWith(QLatin1String(",3")));
        QCOMPARE(stored.contents(), before);
    }

    void frameOfSeveralRegionsIsDecodedOnce()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.rois.append({2, {QStringLiteral("b"), {0.5, 0.5, 0.25, 0.25}, true, 0}});
        plan.intro = true;
        RoiVideoGenerator generator;
        int folders = 0; // of pictures, while the second film is made
        connect(&generator, &RoiVideoGenerator::labelChanged, [&](const QString &label) {
            const QDir temporary(stored.filePath("AIA_171/.roi_video_frames"));
            if (label.startsWith(QLatin1String("Encoding AIA 171 - Flare")))
                QFile::remove(stored.filePath("AIA_171/frame_2.png"));
            else if (label.startsWith(QLatin1String("Encoding AIA 171 - b")))
                folders = temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
        });
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(folders, 1);
        const QString film = stored.filePath("AIA_171/AIA_171__ROI_02_b.mp4");
        QCOMPARE(filmShape(film), QStringLiteral("64,48,5/1,6"));
        QCOMPARE(filmFrame(film, 5).pixel(60, 4), 0xffffffff);
    }

    void encoderFails()
    {
        const TestSession stored;
        stored.write(filmName, earlierFilm);
        const auto before = stored.contents();
        const QString start = QStringLiteral("FFmpeg failed for AIA 171 / Flare  #1 / west:\n\n");
        FakeProgram::Reply reply;
        reply.exitCode = 1;
        reply.standardError = QByteArray(5000, 'x') + QByteArray(4000, 'y') + '\n';
        useStandIn(QStringLiteral("ffmpeg"), reply);
        QCOMPARE(failureOf(planFor(stored)), start + QString(4000, QLatin1Char('y')));
        QCOMPARE(stored.read(filmName), earlierFilm);
        reply.exitCode = 0; // as on a full disk
        reply.standardError = "the last words";
        reply.files.insert(QStringLiteral("$last"), half());
        useStandIn(QStringLiteral("ffmpeg"), reply);
        QCOMPARE(failureOf(planFor(stored)),
                 start + QStringLiteral("ffmpeg ended without an error, but the film is cut off. "
                                        "Is the disk full?\n\nthe last words"));
        QCOMPARE(stored.read(filmName), earlierFilm);
        const QString missing = stored.filePath("missing");
        TestFolder::setKey(QStringLiteral("paths/ffmpeg"), missing);
        QCOMPARE(failureOf(planFor(stored)), QStringLiteral("ffmpeg not found: ") + missing);
        QCOMPARE(stored.contents(), before); // and none set aside
    }

    void framesAreGone()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        RoiVideoGenerator generator;
        const auto removing = connect(&generator, &RoiVideoGenerator::progressChanged, [&stored] {
            QFile::remove(stored.filePath("AIA_171/.roi_video_frames/roi_01_Flare_1_west/"
                                          "frame_000001.png"));
        });
        QCOMPARE(generator.run(plan), Outcome::Failed);
        QVERIFY(generator.errorText().startsWith(
            QLatin1String("3 temporary ROI frames were written, but 2 are there:\n")));
        QFile::remove(stored.filePath("AIA_171/frame_0.png"));
        const auto before = stored.contents();
        const QString path = stored.filePath("AIA_171/frame_0.png");
        QCOMPARE(failureOf(plan), QStringLiteral("Cannot decode frame:\n") + path);
        plan.intro = true;
        QCOMPARE(failureOf(plan),
                 QStringLiteral("Cannot decode first frame for zoom intro:\n") + path);
        QCOMPARE(stored.contents(), before);
    }

    void nothingIsWrittenOutsideTheSession()
    {
        const TestSession stored;
        const TestSession other;
        const auto before = other.contents();
        RoiVideoPlan plan = planFor(stored);
        QVERIFY(QFile::link(other.path(), stored.filePath("AIA_171/.roi_video_frames")));
        QVERIFY(QFile::link(other.filePath("session.json"), filmOf(stored)));
        QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        QVERIFY(!filmShape(filmOf(stored)).isEmpty());
        plan.sources.first().source.archiveName = QStringLiteral("../") + other.path();
        QVERIFY(failureOf(plan).contains(QLatin1String("inside the session")));
        QCOMPARE(other.contents(), before);
    }

    void cancelAtAnyStep()
    {
        const TestSession stored;
        stored.write(filmName, earlierFilm);
        const auto before = stored.contents();
        FakeProgram::Reply hanging;
        hanging.hang = true;
        hanging.files.insert(QStringLiteral("$last"), half());
        useStandIn(QStringLiteral("ffmpeg"), hanging);
        RoiVideoPlan plan = planFor(stored);
        plan.intro = true;
        for (int last = 1; last <= plan.totalFrames() + 1; ++last) { // the end: in the encoder
            RoiVideoGenerator generator;
            QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
            QTimer hand;
            connect(&hand, &QTimer::timeout, &generator, [&] {
                if (progress.size() == last || stored.read(filmName) == half())
                    generator.cancel();
            });
            hand.start(0);
            QCOMPARE(generator.run(plan), Outcome::Canceled);
            QCOMPARE(progress.size(), std::min(last, plan.totalFrames())); // within one picture
            QCOMPARE(stored.contents(), before);
            QCOMPARE(stored.read(filmName), earlierFilm);
        }
    }

    void filmLeftAsideByAKilledProgram()
    {
        const TestSession stored;
        const auto before = stored.contents();
        const QByteArray aside = QByteArray(filmName) + ".orvik-earlier";
        const auto session = *RoiSession::load(stored.path());
        stored.write(aside, earlierFilm);
        stored.write(filmName, half()); // of the next
        {
            const FilmingLock other(stored.path()); // the next is still being made
            QCOMPARE(RoiVideoGenerator::restoreEarlierFilms(session), QStringList());
            QVERIFY(failureOf(planFor(stored)).startsWith(QLatin1String("Another Orvik window")));
            QCOMPARE(stored.read(filmName), half());
        }
        QCOMPARE(RoiVideoGenerator::restoreEarlierFilms(session).size(), 1);
        QCOMPARE(stored.read(filmName), earlierFilm);
        stored.write(aside, "a film from before the earlier one"); // killed as it was to go
        QCOMPARE(RoiVideoGenerator::restoreEarlierFilms(session), QStringList());
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(filmShape(filmOf(stored)), QStringLiteral("128,96,5/1,3"));
        QCOMPARE(stored.contents(), before);
    }

    void scaleOfASession()
    {
        RoiSource source;
        const QJsonObject usable{{QStringLiteral("rsun"), QStringLiteral("1600")},
                                 {QStringLiteral("width"), 4096}};
        source.frames = {{{}, {}, {{QStringLiteral("width"), 4096}}}, {{}, {}, usable}};
        QCOMPARE(ScaleLookup().ensure(source, {}), usable); // and the service is not asked
    }
};

QTEST_MAIN(TestRoiFilms)
#include "tst_roifilms.moc"

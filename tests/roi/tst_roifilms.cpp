#include "roi/filminglock.h"
#include "roi/roiprogressdialog.h"
#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"
#include "roi/temporaryframes.h"
#include "tests/roi/testsession.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QLabel>
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
    plan.rois = {{1, {"Flare  #1 / west"_s, {0.25, 0.25, 0.5, 0.5}, true, 0}}};
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
    return generator.run(plan) == Outcome::Failed ? generator.errorText() : "did not fail"_s;
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
                 "ROI video completed: %1; rotation 90 deg"_s.arg(filmOf(stored)));
        QCOMPARE(filmShape(filmOf(stored)), "96,128,5/1,3"_s);
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
        plan.rois = {{2, {"a/b"_s, {0, 0, 1, 1}, true, 0}},
                     {11, {"a b"_s, {0, 0, 1, 1}, true, 0}},
                     {12, {longName, {0, 0, 1, 1}, true, 0}}};
        for (int round = 0; round < 2; ++round) // the second sets the films of the first aside
            QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        for (const QString &name : {"02_a_b"_s, "11_a_b"_s, "12_"_s + longName.left(110)})
            QVERIFY(filmShape(stored.filePath("AIA_171/AIA_171__ROI_%1.mp4").arg(name))
                        .endsWith(",3"_s));
        QCOMPARE(stored.contents(), before);
    }

    void frameOfSeveralRegionsIsDecodedOnce()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.rois.append({2, {"b"_s, {0.5, 0.5, 0.25, 0.25}, true, 0}});
        plan.intro = true;
        RoiVideoGenerator generator;
        int folders = 0;  // of pictures, while the second film is made
        QStringList seen; // of the run
        const auto tell = [&seen](const QString &text) { seen += text; };
        connect(&generator, &RoiVideoGenerator::logMessage, tell);
        connect(&generator, &RoiVideoGenerator::labelChanged, [&](const QString &label) {
            tell(label);
            const QDir temporary(stored.filePath("AIA_171/.roi_video_frames"));
            folders = temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
            for (const char *frame : {"AIA_171/frame_0.png", "AIA_171/frame_2.png"}) {
                if (label.startsWith("Encoding"_s))
                    QFile::remove(stored.filePath(frame));
            }
        });
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QStringList expected;
        const QString film = stored.filePath("AIA_171/AIA_171__ROI_02_b.mp4");
        for (const auto &[name, file] :
             {std::pair("Flare  #1 / west"_s, filmOf(stored)), {"b"_s, film}}) {
            for (const char *step : {"zoom 1", "zoom 2", "zoom 3", "frame 1", "frame 2", "frame 3"})
                expected += "AIA 171 - %1\n%2 / 3"_s.arg(name, QLatin1String(step));
            expected += {"Encoding AIA 171 - %1..."_s.arg(name), "ROI ffmpeg: "_s + file,
                         "ROI video completed: %1; intro zoom 0.5 s"_s.arg(file)};
        }
        QCOMPARE(seen, expected);
        QCOMPARE(folders, 1);
        QCOMPARE(filmShape(film), "64,48,5/1,6"_s);
        QCOMPARE(filmFrame(film, 5).pixel(60, 4), 0xffffffff);
    }

    void encoderFails()
    {
        const TestSession stored;
        stored.write(filmName, earlierFilm);
        const auto before = stored.contents();
        const QString start = "FFmpeg failed for AIA 171 / Flare  #1 / west:\n\n"_s;
        FakeProgram::Reply reply;
        reply.exitCode = 1;
        reply.standardError = QByteArray(5000, 'x') + QByteArray(4000, 'y') + '\n';
        useStandIn("ffmpeg"_s, reply);
        QCOMPARE(failureOf(planFor(stored)), start + QString(4000, QLatin1Char('y')));
        QCOMPARE(stored.read(filmName), earlierFilm);
        reply.exitCode = 0; // as on a full disk
        reply.standardError = "the last words";
        reply.files.insert("$last"_s, half());
        useStandIn("ffmpeg"_s, reply);
        QCOMPARE(failureOf(planFor(stored)),
                 start + "ffmpeg ended without an error, but the film is cut off. "
                         "Is the disk full?\n\nthe last words"_s);
        QCOMPARE(stored.read(filmName), earlierFilm);
        const QByteArray aside = QByteArray(filmName) + ".orvik-earlier";
        const auto left = [&stored] { // of the earlier film
            failureOf(planFor(stored));
            return stored.read(filmName);
        };
        stored.write(aside, earlierFilm);
        stored.write(filmName, half()); // by a program that was killed
        QCOMPARE(left(), earlierFilm);
        stored.write(aside, "an older film");
        QCOMPARE(left(), earlierFilm);
        QVERIFY(QDir().mkdir(stored.filePath(aside))); // in the way
        QCOMPARE(failureOf(planFor(stored)),
                 start + "Cannot set the earlier film aside: "_s + filmOf(stored));
        QCOMPARE(stored.read(filmName), earlierFilm);
        reply.exitCode = 1;
        reply.files.insert("$last"_s, "no film");
        useStandIn("ffmpeg"_s, reply);
        QFile::remove(filmOf(stored));
        QCOMPARE(left(), QByteArray());
        const QString ffmpeg = useStandIn("ffmpeg"_s, reply);
        RoiVideoGenerator generator;
        connect(&generator, &RoiVideoGenerator::progressChanged, [&] { QFile::remove(ffmpeg); });
        QCOMPARE(generator.run(planFor(stored)), Outcome::Failed);
        QCOMPARE(generator.errorText(), start + "ffmpeg not found: "_s + ffmpeg);
        const QString missing = stored.filePath("missing");
        TestFolder::setKey("paths/ffmpeg"_s, missing);
        QCOMPARE(failureOf(planFor(stored)), "ffmpeg not found: "_s + missing);
        QCOMPARE(stored.contents(), before); // and none set aside
    }

    void framesAreGone()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        RoiVideoGenerator generator;
        connect(&generator, &RoiVideoGenerator::progressChanged, [&stored] {
            QFile::remove(stored.filePath("AIA_171/.roi_video_frames/roi_01_Flare_1_west/"
                                          "frame_000001.png"));
        });
        QCOMPARE(generator.run(plan), Outcome::Failed);
        QVERIFY(generator.errorText().startsWith(
            "3 temporary ROI frames were written, but 2 are there:\n"_s));
        QFile::remove(stored.filePath("AIA_171/frame_0.png"));
        const auto before = stored.contents();
        const QString path = stored.filePath("AIA_171/frame_0.png");
        QCOMPARE(failureOf(plan), "Cannot decode frame:\n"_s + path);
        plan.intro = true;
        QCOMPARE(failureOf(plan), "Cannot decode first frame for zoom intro:\n"_s + path);
        QCOMPARE(stored.contents(), before);
        TestFolder::leaveRoom(0);
        plan.sources.first().source.frames.removeFirst();
        const QString picture = "/.roi_video_frames/roi_01_Flare_1_west/frame_000000.png"_s;
        const QString folder = stored.filePath("AIA_171");
        QCOMPARE(failureOf(plan), "Cannot save temporary zoom frame:\n"_s + folder + picture);
        plan.intro = false;
        QCOMPARE(failureOf(plan), "Cannot save temporary ROI frame:\n"_s + folder + picture);
        TestFolder::leaveRoom();
        generator.disconnect();
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QVERIFY(generator.errorText().isEmpty() && generator.films().size() == 1);
        plan.sources.first().source.archiveName = "session.json"_s;
        plan.sources.first().source.folder = stored.filePath("session.json"); // is no folder
        QCOMPARE(failureOf(plan), "Cannot create temporary directory:\n%1/.roi_video_frames"_s.arg(
                                      stored.filePath("session.json")));
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
        plan.sources.first().source.archiveName = "../"_s + other.path();
        QVERIFY(failureOf(plan).contains("inside the session"_s));
        QCOMPARE(other.contents(), before);
    }

    void cancelAtAnyStep()
    {
        const TestSession stored;
        stored.write(filmName, earlierFilm);
        const auto before = stored.contents();
        FakeProgram::Reply hanging;
        hanging.hang = true;
        hanging.files.insert("$last"_s, half());
        useStandIn("ffmpeg"_s, hanging);
        RoiVideoPlan plan = planFor(stored);
        plan.intro = true;
        plan.rois.append({2, {"b"_s, {0.5, 0.5, 0.25, 0.25}, true, 0}});
        bool encoding = false;
        for (int last = 1; !encoding; ++last) { // turn of the event loop
            RoiVideoGenerator generator;
            QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
            QSignalSpy labels(&generator, &RoiVideoGenerator::labelChanged);
            int turns = 0;
            int begun = 0; // when it was canceled
            QTimer hand;
            connect(&hand, &QTimer::timeout, &generator, [&] {
                encoding = stored.read(filmName) == half();
                const bool begins =
                    labels.value(labels.size() - 1).value(0).toString().startsWith("Encoding"_s);
                if (begins ? !encoding : ++turns != last)
                    return;
                begun = progress.size() + labels.size();
                hand.stop();
                generator.cancel();
            });
            hand.start(0);
            QCOMPARE(generator.run(plan), Outcome::Canceled);
            QCOMPARE(progress.size() + labels.size(), begun); // nothing was begun after that
            QCOMPARE(generator.errorText(), QString());
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
            QVERIFY(failureOf(planFor(stored)).startsWith("Another Orvik window"_s));
            QCOMPARE(stored.read(filmName), half());
        }
        stored.write(".roi_video.lock", "99\norvik\nanother-computer\n\n\n");
        QFile lock(stored.filePath(".roi_video.lock")); // for hours
        QVERIFY(lock.open(QIODevice::ReadWrite) &&
                lock.setFileTime(QDateTime({2024, 5, 1}, {}), QFile::FileModificationTime));
        QVERIFY(failureOf(planFor(stored)).endsWith("delete this file:\n"_s + lock.fileName()));
        QVERIFY(lock.remove());
        QCOMPARE(RoiVideoGenerator::restoreEarlierFilms(session).size(), 1);
        QCOMPARE(stored.read(filmName), earlierFilm);
        stored.write(aside, "a film from before the earlier one"); // killed as it was to go
        QCOMPARE(RoiVideoGenerator::restoreEarlierFilms(session), QStringList());
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(filmShape(filmOf(stored)), "128,96,5/1,3"_s);
        QCOMPARE(stored.contents(), before);
    }

    void scaleOfASession()
    {
        RoiSource source;
        const QJsonObject usable{{"rsun"_s, "1600"_s}, {"width"_s, 4096}};
        source.frames = {{{}, {}, {{"width"_s, 4096}}}, {{}, {}, usable}};
        ScaleLookup lookup;
        QSignalSpy log(&lookup, &ScaleLookup::logMessage);
        QSignalSpy status(&lookup, &ScaleLookup::statusChanged);
        QCOMPARE(lookup.ensure(source, {}), usable); // and the service is not asked
        source.frames.clear();
        const auto ask = [&](int sourceId, int month, const FakeProgram::Reply &reply) {
            useStandIn("curl"_s, reply);
            source.sourceId = sourceId;
            lookup.ensure(source, QDateTime({2024, month, 1}, {12, 0}, Qt::UTC));
            return log.last().first().toString().section("WARNING scale metadata : "_s, 1);
        };
        const QString nothing = "No valid source/time is available for scale lookup."_s;
        QCOMPARE(ask(-1, 5, {}), nothing);
        QCOMPARE(ask(0, 13, {}), nothing);
        QCOMPARE(status.value(1).value(0), "Looking up scale metadata for ..."_s);
        QCOMPARE(ask(0, 5, {7, {}, "no route", {}, false, false}), "getClosestImage: no route"_s);
        QCOMPARE(ask(0, 5, {0, R"({"id":1,"date":"2024-05-01 12:00:00"})", {}, {}, false, false}),
                 "Helioviewer did not return usable rsun/width metadata."_s);
        QTimer::singleShot(0, &lookup, [&lookup] {
            QTimer *limit = lookup.findChild<QTimer *>();
            QCOMPARE(limit->interval(), 45000);
            limit->start(0);
        });
        QCOMPARE(ask(0, 5, {0, {}, {}, {}, true, false}),
                 "Helioviewer metadata lookup timed out."_s);
        const QJsonObject extreme{{"rsun"_s, 1e308}, {"width"_s, 1e-308}};
        QCOMPARE(ScaleLookup::lineText(1, extreme) + ScaleLookup::lineText(0, usable),
                 "Scale: unavailable.Scale: --"_s);
    }

    void boxOfARun()
    {
        RoiVideoGenerator generator;
        RoiProgressDialog box(generator, 3, nullptr);
        emit generator.labelChanged("<b>"_s);
        emit generator.progressChanged(3); // the encoder still works
        const auto *label = box.findChild<QLabel *>();
        QCOMPARE("%1|%2|%3|%4|%5"_s.arg(box.windowTitle(), label->text())
                     .arg(label->textFormat())
                     .arg(label->wordWrap() && label->alignment() == Qt::AlignCenter)
                     .arg(box.minimumDuration()),
                 "Orvik - ROI video|<b>|0|1|0"_s);
        QVERIFY(box.isVisible() && box.isModal() && box.value() == 3 && box.minimum() == 0);
    }

    void temporaryPicturesGoInTurns()
    {
        const TestSession stored;
        const QDir film(stored.filePath("HMI/t/film"));
        film.mkpath(film.path());
        for (int index = 0; index < 2000; ++index)
            stored.write("HMI/t/film/" + QByteArray::number(index), {});
        int pauses = 0;
        QVERIFY(TemporaryFrames::remove(stored.filePath("HMI/t"), [&pauses] { ++pauses; }));
        QVERIFY(pauses > 0 && pauses < 2000 && !film.exists()); // not after every file
    }
};

QTEST_MAIN(TestRoiFilms)
#include "tst_roifilms.moc"

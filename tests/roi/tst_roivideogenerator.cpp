#include "roi/roivideogenerator.h"

#include "roi/filminglock.h"
#include "tests/roi/testsession.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <QtTest>

using Outcome = RoiVideoGenerator::Outcome;

namespace {

constexpr QRgb red = 0xffff0000;
constexpr QRgb green = 0xff00ff00;
constexpr QRgb blue = 0xff0000ff;
constexpr QRgb white = 0xffffffff;

/// The field that a pixel of a film belongs to, in spite of what the encoder did to its colour.
QRgb field(const QImage &frame, int x, int y)
{
    const QColor seen = frame.pixelColor(x, y);
    const auto full = [](int channel) { return channel > 127 ? 255 : 0; };
    return qRgb(full(seen.red()), full(seen.green()), full(seen.blue()));
}

RoiVideoPlan planFor(const TestSession &stored, const QRectF &region = {0.25, 0.25, 0.5, 0.5})
{
    const auto session = RoiSession::load(stored.path());
    RoiVideoPlan plan;
    plan.sessionDirectory = session->directory;
    plan.sources = {{session->sources.first(), {}}};
    plan.rois = {{1, {QStringLiteral("Flare  #1 / west"), region, true, 0}}};
    plan.fps = session->videoFps;
    plan.crf = session->videoCrf;
    plan.timestampOverlay = plan.sourceOverlay = plan.scaleOverlay = false;
    plan.introSeconds = 0.5;
    return plan;
}

constexpr const char *filmName = "AIA_171/AIA_171__ROI_01_Flare_1_west.mp4";

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

void useFakeEncoder(const FakeProgram::Reply &reply)
{
    const QString program = FakeProgram::install(QStringLiteral("bin/fake-ffmpeg"));
    FakeProgram::setScript(program, {reply});
    TestFolder::setKey(QStringLiteral("paths/ffmpeg"), program);
}

} // namespace

/// Films made by the real ffmpeg, and every way in which making them ends early.
class TestRoiVideoGenerator : public QObject
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
        plan.timestampOverlay = plan.scaleOverlay = true;
        RoiVideoGenerator generator;
        QSignalSpy log(&generator, &RoiVideoGenerator::logMessage);
        QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(progress.last().first().toInt(), plan.totalFrames());
        QCOMPARE(log.last().first().toString(),
                 QStringLiteral("ROI video completed: %1; rotation 90 deg").arg(filmOf(stored)));

        QCOMPARE(filmShape(filmOf(stored)), QStringLiteral("96,128,5/1,3"));
        const QImage frame = filmFrame(filmOf(stored), 2);
        QCOMPARE(QVector<QRgb>({field(frame, 44, 60), field(frame, 52, 60), field(frame, 44, 68),
                                field(frame, 52, 68)}),
                 QVector<QRgb>({green, white, red, blue}));
        QVERIFY(field(frame, 10, 115) != red);  // bottom left
        QVERIFY(field(frame, 86, 10) != white); // top right
        const QRect stamp(0, 100, 96, 28);
        QVERIFY(frame.copy(stamp) != filmFrame(filmOf(stored), 1).copy(stamp)); // a minute ago
        QCOMPARE(stored.contents(), before); // no stored file changed, no temporary one is left
    }

    void introductionLeadsIn()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored, {0.5, 0.5, 0.5, 0.5}); // the white field
        plan.intro = true;
        QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        QCOMPARE(filmShape(filmOf(stored)), QStringLiteral("128,96,5/1,6"));
        const QImage first = filmFrame(filmOf(stored), 0);
        QCOMPARE(field(first, 30, 20), red); // the whole frame, squeezed
        QCOMPARE(field(first, 90, 70), white);
        QCOMPARE(field(filmFrame(filmOf(stored), 2), 5, 5), white); // the end is the region
    }

    void oddFramesAndEqualNames()
    {
        const TestSession stored;
        TestSession::frame({101, 77}).save(stored.filePath("AIA_171/frame_1.png"));
        QImage(1, 1, QImage::Format_Grayscale8).save(stored.filePath("AIA_171/frame_2.png"));
        RoiVideoPlan plan = planFor(stored);
        const QString longName(300, QChar(0xe4)); // of two bytes
        plan.rois = {{2, {QStringLiteral("a/b"), QRectF(0, 0, 1, 1), true, 0}},
                     {11, {QStringLiteral("a b"), QRectF(0, 0, 1, 1), true, 0}},
                     {12, {longName, QRectF(0, 0, 1, 1), true, 0}}};
        for (int round = 0; round < 2; ++round) // the second sets the films of the first aside
            QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        const QByteArray longFilm =
            "AIA_171/AIA_171__ROI_12_" + longName.left(110).toUtf8() + ".mp4";
        for (const char *film : {"AIA_171/AIA_171__ROI_02_a_b.mp4",
                                 "AIA_171/AIA_171__ROI_11_a_b.mp4", longFilm.constData()})
            QVERIFY(filmShape(stored.filePath(film)).endsWith(QLatin1String(",3")));
    }

    void encoderFails_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QString>("message");
        FakeProgram::Reply reply;
        reply.exitCode = 1;
        reply.standardError = QByteArray(5000, 'x') + QByteArray(4000, 'y') + '\n';
        QTest::newRow("talkative") << reply << QString(4000, QLatin1Char('y'));
        reply.exitCode = 0;
        reply.standardError = "No space left on device\n";
        reply.files.insert(QStringLiteral("$last"),
                           QByteArray::fromHex("0000001066747970")); // an MP4's head
        QTest::newRow("full disk, yet it ends well")
            << reply
            << QStringLiteral("ffmpeg ended without an error, but the film is cut off. Is the disk "
                              "full?\n\nNo space left on device");
        reply.standardError.clear();
        reply.crash = true;
        reply.files.insert(QStringLiteral("$last"), "cut off");
        QTest::newRow("crashed over its film") << reply << QStringLiteral("Process crashed");
    }
    void encoderFails()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QString, message);
        const TestSession stored;
        stored.write(filmName, "an earlier film");
        const auto before = stored.contents();
        useFakeEncoder(reply);
        QCOMPARE(failureOf(planFor(stored)),
                 QStringLiteral("FFmpeg failed for AIA 171 / Flare  #1 / west:\n\n") + message);
        QCOMPARE(stored.contents(), before); // and none set aside
        QCOMPARE(stored.read(filmName), QByteArray("an earlier film"));
        TestFolder::setKey(QStringLiteral("paths/ffmpeg"), QStringLiteral("/nonexistent"));
        QCOMPARE(failureOf(planFor(stored)), QStringLiteral("ffmpeg not found: /nonexistent"));
    }

    void truncatedFrames()
    {
        const TestSession stored;
        const char *const name = "AIA_171/frame_0.png";
        const QByteArray whole = stored.read(name);
        RoiVideoPlan plan = planFor(stored);
        for (int length = 0; length < whole.size(); length += 40) {
            stored.write(name, whole.left(length));
            const auto before = stored.contents();
            plan.intro = length % 80 == 0;
            QCOMPARE(failureOf(plan),
                     (plan.intro ? QStringLiteral("Cannot decode first frame for zoom intro:\n")
                                 : QStringLiteral("Cannot decode frame:\n")) +
                         stored.filePath(name));
            QCOMPARE(stored.contents(), before);
        }
    }

    void foldersAndLinksOutOfTheSession()
    {
        const TestSession stored;
        const TestSession other;
        other.write("HMI/.roi_video_frames", "not ours");
        const auto before = other.contents();
        stored.editDescriptor("AIA_171", other.filePath("HMI").toUtf8());
        QVERIFY(failureOf(planFor(stored)).contains(QStringLiteral("inside the session")));
        QCOMPARE(other.contents(), before);

        stored.editDescriptor(other.filePath("HMI").toUtf8(), "AIA_171");
        const QString root = stored.filePath("AIA_171/.roi_video_frames");
        QVERIFY(QFile::link(other.path(), root));
        QVERIFY(QFile::link(other.filePath("session.json"), filmOf(stored)));
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(other.contents(), before);
        QVERIFY(!QFileInfo(root).isSymLink() && !QFileInfo(filmOf(stored)).isSymLink());
    }

    void cancelAtAnyStep()
    {
        const TestSession stored;
        const auto before = stored.contents();
        FakeProgram::Reply hanging;
        hanging.hang = true;
        hanging.files.insert(QStringLiteral("$last"), "begun");
        useFakeEncoder(hanging);
        RoiVideoPlan plan = planFor(stored);
        plan.intro = true;
        for (int last = 1; last <= plan.totalFrames() + 2; ++last) { // the end: in the encoder
            QFile::remove(filmOf(stored));
            const QByteArray earlier = last % 2 ? "an earlier film" : "";
            if (!earlier.isEmpty())
                stored.write(filmName, earlier);
            RoiVideoGenerator generator;
            QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
            QTimer hand;
            connect(&hand, &QTimer::timeout, &generator, [&] {
                if (progress.size() == last || stored.read(filmName) == "begun")
                    generator.cancel();
            });
            hand.start(0);
            QCOMPARE(generator.run(plan), Outcome::Canceled);
            QCOMPARE(progress.size(), qMin(last, plan.totalFrames())); // within one picture
            QCOMPARE(stored.contents(), before);
            QCOMPARE(stored.read(filmName), earlier);
        }
    }

    void filmLeftAsideByAKilledProgram()
    {
        const TestSession stored;
        const auto before = stored.contents();
        const QByteArray aside = QByteArray(filmName) + ".orvik-earlier";
        const QByteArray half = QByteArray::fromHex("0000001066747970");
        stored.write(aside, "an earlier film");
        stored.write(filmName, half); // of the next
        const auto restored = [&stored] {
            return RoiVideoGenerator::restoreEarlierFilms(*RoiSession::load(stored.path()));
        };
        {
            const FilmingLock other(stored.path()); // the next is still being made
            QCOMPARE(restored(), QStringList());
            QVERIFY(failureOf(planFor(stored)).startsWith(QLatin1String("Another Orvik window")));
            QCOMPARE(stored.read(filmName), half);
        }
        QCOMPARE(restored(), QStringList(filmOf(stored)));
        QCOMPARE(stored.read(filmName), QByteArray("an earlier film"));
        QCOMPARE(stored.contents(), before);

        stored.write(aside, "a film from before the earlier one"); // killed as it was to go
        QCOMPARE(restored(), QStringList());
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(filmShape(filmOf(stored)), QStringLiteral("128,96,5/1,3"));
        QCOMPARE(stored.contents(), before);
    }
};

QTEST_MAIN(TestRoiVideoGenerator)
#include "tst_roivideogenerator.moc"

#include "roi/roivideogenerator.h"

#include "app/runtimeconfig.h"
#include "tests/roi/film.h"
#include "tests/roi/testsession.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <QtTest>

using Outcome = RoiVideoGenerator::Outcome;

namespace {

/// Far from the fields' edges, where the encoder blends colours.
QRgb nearest(QRgb seen)
{
    const auto full = [](int channel) { return channel > 127 ? 255 : 0; };
    return qRgb(full(qRed(seen)), full(qGreen(seen)), full(qBlue(seen)));
}

RoiVideoPlan planFor(const TestSession &stored)
{
    const auto session = RoiSession::load(stored.path());
    RoiVideoPlan plan;
    plan.sessionDirectory = session->directory;
    plan.sources = {{session->sources.first(), {}}};
    plan.rois = {{1, {QStringLiteral("Flare  #1 / west"), QRectF(0.25, 0.25, 0.5, 0.5), true, 0}}};
    plan.fps = session->videoFps;
    plan.crf = session->videoCrf;
    plan.timestampOverlay = plan.sourceOverlay = plan.scaleOverlay = false;
    return plan;
}

QString filmOf(const TestSession &stored)
{
    return stored.filePath(QStringLiteral("AIA_171/AIA_171__ROI_01_Flare_1_west.mp4"));
}

bool isGone(const QString &path)
{
    return !QFileInfo::exists(path) && !QFileInfo(path).isSymLink();
}

} // namespace

/// Films made by the real ffmpeg, and every way in which making them ends early.
class TestRoiVideoGenerator : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void filmShowsTheRegionTurned_data()
    {
        QTest::addColumn<int>("rotation");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QVector<QRgb>>("fields");
        const QRgb red = qRgb(255, 0, 0);
        const QRgb green = qRgb(0, 255, 0);
        const QRgb blue = qRgb(0, 0, 255);
        const QRgb white = qRgb(255, 255, 255);
        QTest::newRow("upright") << 0 << QSize(128, 96) << QVector<QRgb>{red, green, blue, white};
        QTest::newRow("90") << 90 << QSize(96, 128) << QVector<QRgb>{green, white, red, blue};
        QTest::newRow("-90") << -90 << QSize(96, 128) << QVector<QRgb>{blue, red, white, green};
        QTest::newRow("180") << 180 << QSize(128, 96) << QVector<QRgb>{white, blue, green, red};
    }
    void filmShowsTheRegionTurned()
    {
        QFETCH(int, rotation);
        QFETCH(QSize, size);
        QFETCH(QVector<QRgb>, fields);
        const TestSession stored;
        const auto before = stored.checksums();
        RoiVideoPlan plan = planFor(stored);
        plan.rois.first().roi.rotation = rotation;
        RoiVideoGenerator generator;
        QSignalSpy log(&generator, &RoiVideoGenerator::logMessage);
        QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
        QCOMPARE(generator.run(plan), Outcome::Completed);

        QCOMPARE(generator.createdVideos(), 1);
        QCOMPARE(progress.size(), plan.totalFrames());
        const QString turned =
            rotation == 0 ? QString() : QStringLiteral("; rotation %1 deg").arg(rotation);
        QCOMPARE(log.last().first().toString(),
                 QStringLiteral("ROI video completed: %1%2").arg(filmOf(stored), turned));
        const Film film = Film::probe(filmOf(stored));
        QCOMPARE(film.frames, 3);
        QCOMPARE(film.size, size);
        QCOMPARE(film.rate, QStringLiteral("5/1"));
        const QImage frame = Film::frame(filmOf(stored), 2);
        const int x = size.width() / 4;
        const int y = size.height() / 4;
        const QVector<QRgb> seen = {nearest(frame.pixel(x, y)), nearest(frame.pixel(3 * x, y)),
                                    nearest(frame.pixel(x, 3 * y)),
                                    nearest(frame.pixel(3 * x, 3 * y))};
        QCOMPARE(seen, fields);
        QCOMPARE(stored.checksums(), before); // no stored file changed, no temporary one is left
    }

    void introductionLeadsIn()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.rois.first().roi.rect = QRectF(0.5, 0.5, 0.5, 0.5); // the white field
        plan.intro = true;
        plan.introSeconds = 0.5;
        RoiVideoGenerator generator;
        QSignalSpy labels(&generator, &RoiVideoGenerator::labelChanged);
        QSignalSpy log(&generator, &RoiVideoGenerator::logMessage);
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(plan.introFrames(), 3);
        QCOMPARE(Film::probe(filmOf(stored)).frames, 6);
        const QImage first = Film::frame(filmOf(stored), 0);
        QCOMPARE(nearest(first.pixel(30, 20)), qRgb(255, 0, 0)); // the whole frame, squeezed
        QCOMPARE(nearest(first.pixel(90, 70)), qRgb(255, 255, 255));
        for (const int index : {2, 3}) // the end of the zoom is the region
            QCOMPARE(nearest(Film::frame(filmOf(stored), index).pixel(5, 5)), qRgb(255, 255, 255));
        QCOMPARE(labels.at(1).first().toString(),
                 QStringLiteral("AIA 171 - Flare  #1 / west\nzoom 2 / 3"));
        QCOMPARE(labels.at(3).first().toString(),
                 QStringLiteral("AIA 171 - Flare  #1 / west\nframe 1 / 3"));
        QCOMPARE(labels.last().first().toString(),
                 QStringLiteral("Encoding AIA 171 - Flare  #1 / west..."));
        QVERIFY(log.last().first().toString().endsWith(QLatin1String("; intro zoom 0.5 s")));
    }

    void overlaysAreDrawnOnTheTurnedPicture()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.rois.first().roi.rect = QRectF(0.5, 0.0, 0.5, 0.5); // the green field
        plan.rois.first().roi.rotation = 90;
        const auto isGreen = [](QRgb seen) { return nearest(seen) == qRgb(0, 255, 0); };
        plan.timestampOverlay = true;
        QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        const QImage first = Film::frame(filmOf(stored), 0);
        QCOMPARE(first.size(), QSize(96, 128));
        QVERIFY(!isGreen(first.pixel(10, 115))); // bottom left
        QVERIFY(isGreen(first.pixel(86, 10)));
        const QImage second = Film::frame(filmOf(stored), 1);
        QVERIFY(first.copy(0, 100, 96, 28) != second.copy(0, 100, 96, 28)); // another minute
        plan.timestampOverlay = false;
        plan.scaleOverlay = true;
        QCOMPARE(RoiVideoGenerator().run(plan), Outcome::Completed);
        const QImage scaled = Film::frame(filmOf(stored), 0);
        QVERIFY(isGreen(scaled.pixel(10, 115)));
        QVERIFY(!isGreen(scaled.pixel(86, 10))); // top right
    }

    void frameSizesMayDiffer()
    {
        const TestSession stored;
        TestSession::frame({101, 77}).save(stored.filePath(QStringLiteral("AIA_171/frame_1.png")));
        QImage(1, 1, QImage::Format_Grayscale8)
            .save(stored.filePath(QStringLiteral("AIA_171/frame_2.png")));
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(Film::probe(filmOf(stored)).frames, 3);
    }

    void equalNamesMakeTwoFilms()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.rois = {{2, {QStringLiteral("a/b"), QRectF(0, 0, 1, 1), true, 0}},
                     {11, {QStringLiteral("a b"), QRectF(0, 0, 1, 1), true, 0}}};
        RoiVideoGenerator generator;
        QCOMPARE(generator.run(plan), Outcome::Completed);
        QCOMPARE(generator.createdVideos(), 2);
        for (const char *number : {"02", "11"})
            QVERIFY(QFileInfo::exists(stored.filePath(
                QStringLiteral("AIA_171/AIA_171__ROI_%1_a_b.mp4").arg(QLatin1String(number)))));
    }

    void encoderIsCalledExactlySo()
    {
        const TestSession stored;
        const QString ffmpeg = useFakeEncoder({});
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        const FakeProgram::Run run = FakeProgram::runs(ffmpeg).value(0);
        QCOMPARE(run.arguments,
                 QStringLiteral("-y -framerate 5 -start_number 0 -i frame_%06d.png -c:v libx264 "
                                "-crf 0 -pix_fmt yuv420p")
                         .split(QLatin1Char(' '))
                     << filmOf(stored));
        QVERIFY(run.workingDirectory.endsWith(
            QLatin1String("/AIA_171/.roi_video_frames/roi_01_Flare_1_west")));
    }

    void failures_data()
    {
        QTest::addColumn<FakeProgram::Reply>("reply");
        QTest::addColumn<QString>("message");
        const QString failed = QStringLiteral("FFmpeg failed for AIA 171 / Flare  #1 / west:\n\n");
        FakeProgram::Reply reply;
        reply.exitCode = 1;
        reply.standardError = "Unknown encoder 'libx264'\n";
        QTest::newRow("refused") << reply << failed + QStringLiteral("Unknown encoder 'libx264'");
        reply.standardError = QByteArray(5000, 'x') + QByteArray(4000, 'y');
        QTest::newRow("talkative") << reply << failed + QString(4000, QLatin1Char('y'));
        reply.standardError.clear();
        QTest::newRow("silent") << reply << failed;
        reply.crash = true;
        reply.files.insert(QStringLiteral("$last"), "cut off");
        QTest::newRow("crashed over its film")
            << reply << failed + QStringLiteral("Process crashed");
    }
    void failures()
    {
        QFETCH(FakeProgram::Reply, reply);
        QFETCH(QString, message);
        const TestSession stored;
        const auto before = stored.checksums();
        useFakeEncoder(reply);
        RoiVideoGenerator generator;
        QCOMPARE(generator.run(planFor(stored)), Outcome::Failed);
        QVERIFY2(generator.errorText().startsWith(message), qPrintable(generator.errorText()));
        QCOMPARE(stored.checksums(), before);
        QVERIFY(isGone(filmOf(stored)));
    }

    void failureKeepsEarlierFilms()
    {
        const TestSession stored;
        const QString earlier = filmOf(stored);
        stored.write(QStringLiteral("AIA_171/AIA_171__ROI_01_Flare_1_west.mp4"), "earlier");
        FakeProgram::Reply reply;
        reply.exitCode = 1; // without having opened the film
        useFakeEncoder(reply);
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Failed);
        QVERIFY(QFileInfo::exists(earlier));
    }

    void missingEncoder()
    {
        const TestSession stored;
        TestFolder::setKey(QStringLiteral("paths/ffmpeg"), QStringLiteral("/nonexistent"));
        RoiVideoGenerator generator;
        QCOMPARE(generator.run(planFor(stored)), Outcome::Failed);
        QCOMPARE(generator.errorText(), QStringLiteral("ffmpeg not found: /nonexistent"));
    }

    void truncatedFrame()
    {
        const TestSession stored;
        const QString name = QStringLiteral("AIA_171/frame_1.png");
        const QByteArray whole = stored.read(name);
        for (int length = 0; length < whole.size(); length += 50) {
            stored.write(name, whole.left(length));
            const auto before = stored.checksums();
            RoiVideoGenerator generator;
            QCOMPARE(generator.run(planFor(stored)), Outcome::Failed);
            QCOMPARE(generator.errorText(),
                     QStringLiteral("Cannot decode frame:\n") + stored.filePath(name));
            QCOMPARE(stored.checksums(), before);
        }
    }

    void unreadableFirstFrameOfAnIntroduction()
    {
        const TestSession stored;
        stored.write(QStringLiteral("AIA_171/frame_0.png"), {});
        RoiVideoPlan plan = planFor(stored);
        plan.intro = true;
        RoiVideoGenerator generator;
        QCOMPARE(generator.run(plan), Outcome::Failed);
        QCOMPARE(generator.errorText(),
                 QStringLiteral("Cannot decode first frame for zoom intro:\n") +
                     stored.filePath(QStringLiteral("AIA_171/frame_0.png")));
    }

    void nothingIsWrittenOrRemovedOutsideTheSession()
    {
        const TestSession stored;
        const TestSession other;
        other.write(QStringLiteral("HMI/.roi_video_frames"), "not ours");
        const auto before = other.checksums();
        stored.renameFirstFolder(other.filePath(QStringLiteral("HMI")));
        RoiVideoGenerator generator;
        QCOMPARE(generator.run(planFor(stored)), Outcome::Failed);
        QVERIFY(generator.errorText().contains(QLatin1String("inside the session")));
        QCOMPARE(other.checksums(), before);
    }

    void linksAreTakenAwayAndNotFollowed()
    {
        const TestSession stored;
        const TestSession other;
        other.write(QStringLiteral("precious.txt"), "kept");
        const auto before = other.checksums();
        const QString root = stored.filePath(QStringLiteral("AIA_171/.roi_video_frames"));
        QVERIFY(QFile::link(other.path(), root));
        QVERIFY(QFile::link(other.filePath(QStringLiteral("precious.txt")), filmOf(stored)));
        QCOMPARE(RoiVideoGenerator().run(planFor(stored)), Outcome::Completed);
        QCOMPARE(other.checksums(), before);
        QVERIFY(isGone(root));
        QVERIFY(!QFileInfo(filmOf(stored)).isSymLink());
    }

    void cancelAfterAnyPicture()
    {
        const TestSession stored;
        RoiVideoPlan plan = planFor(stored);
        plan.intro = true;
        plan.introSeconds = 0.5;
        const auto before = stored.checksums();
        for (int last = 1; last <= plan.totalFrames(); ++last) {
            RoiVideoGenerator generator;
            QSignalSpy progress(&generator, &RoiVideoGenerator::progressChanged);
            connect(&generator, &RoiVideoGenerator::progressChanged, &generator,
                    [&generator, last](int frames) {
                        if (frames == last)
                            QTimer::singleShot(0, &generator, &RoiVideoGenerator::cancel);
                    });
            QCOMPARE(generator.run(plan), Outcome::Canceled);
            QCOMPARE(progress.size(), last); // within one picture
            QCOMPARE(stored.checksums(), before);
            QVERIFY(isGone(filmOf(stored)));
        }
    }

    void cancelEndsAHangingEncoder()
    {
        const TestSession stored;
        const auto before = stored.checksums();
        FakeProgram::Reply reply;
        reply.hang = true;
        reply.files.insert(QStringLiteral("$last"), "begun");
        useFakeEncoder(reply);
        RoiVideoGenerator generator;
        QTimer patience; // looks until the film is begun, then presses Cancel
        connect(&patience, &QTimer::timeout, &generator, [&generator, &stored] {
            if (QFileInfo(filmOf(stored)).size() > 0)
                generator.cancel();
        });
        patience.start(10);
        QCOMPARE(generator.run(planFor(stored)), Outcome::Canceled);
        QVERIFY(generator.errorText().isEmpty());
        QCOMPARE(stored.checksums(), before);
        QVERIFY(isGone(filmOf(stored)));
    }

private:
    static QString useFakeEncoder(const FakeProgram::Reply &reply)
    {
        const QString program = FakeProgram::install(QStringLiteral("bin/fake-ffmpeg"));
        FakeProgram::setScript(program, {reply});
        TestFolder::setKey(QStringLiteral("paths/ffmpeg"), program);
        return program;
    }
};

QTEST_MAIN(TestRoiVideoGenerator)
#include "tst_roivideogenerator.moc"

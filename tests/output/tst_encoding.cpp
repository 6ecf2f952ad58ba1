#include "output/ffmpegcommand.h"
#include "output/framecleanup.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void argumentList();
    void removesOnlyFrames();
};

void TestEncoding::argumentList()
{
    QCOMPARE(FfmpegCommand::arguments(25, QStringLiteral("video_frames/frame_%06d.png"), 18,
                                      QStringLiteral("/out dir/a.mp4"))
                 .join(QLatin1Char('|')),
             QStringLiteral("-y|-framerate|25|-start_number|0|-i|video_frames/frame_%06d.png|"
                            "-c:v|libx264|-crf|18|-pix_fmt|yuv420p|/out dir/a.mp4"));
}

void TestEncoding::removesOnlyFrames()
{
    const QTemporaryDir source;
    const QTemporaryDir elsewhere;
    const auto touch = [](const QTemporaryDir &folder, const char *name) {
        QFile file(folder.filePath(QLatin1String(name)));
        return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly);
    };
    const auto has = [](const QTemporaryDir &folder, const char *name) {
        return QFileInfo::exists(folder.filePath(QLatin1String(name)));
    };
    for (const char *name : {"frame_000000.png", "film.mp4", "frame_000000.jpg",
                             "video_frames/frame_000000.png", "video_frames/notes.txt"})
        QVERIFY(touch(source, name));
    FrameCleanup::removeFrames(source.path());
    QVERIFY(!has(source, "frame_000000.png") && !has(source, "video_frames/frame_000000.png"));
    QVERIFY(has(source, "film.mp4") && has(source, "frame_000000.jpg"));

    const QString videoFrames = source.filePath(QStringLiteral("video_frames"));
    QVERIFY(QFile::remove(videoFrames + QStringLiteral("/notes.txt"))); // so far it kept the folder
    FrameCleanup::removeFrames(source.path());
    QVERIFY(!has(source, "video_frames"));

    QVERIFY(touch(elsewhere, "frame_000000.png"));
    QVERIFY(QFile::link(elsewhere.path(), videoFrames));
    FrameCleanup::removeFrames(source.path());
    QVERIFY(has(source, "video_frames") && has(elsewhere, "frame_000000.png"));
}

QTEST_APPLESS_MAIN(TestEncoding)
#include "tst_encoding.moc"

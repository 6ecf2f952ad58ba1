#include "output/encodequeue.h"
#include "output/ffmpegcommand.h"
#include "output/framecleanup.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void argumentList();
    void queueStartsAnew();
    void removesOnlyFrames();
    void leavesALinkedFolderAlone();
};

namespace {

void touch(const QDir &folder, const QStringList &names)
{
    for (const QString &name : names) {
        QVERIFY(folder.mkpath(QFileInfo(name).path()));
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    }
}

QStringList filesUnder(const QDir &folder)
{
    QStringList names;
    QDirIterator files(folder.path(), QDir::AllEntries | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        names.append(folder.relativeFilePath(files.next()));
    names.sort();
    return names;
}

} // namespace

void TestEncoding::argumentList()
{
    QCOMPARE(FfmpegCommand::arguments(25, QStringLiteral("video_frames/frame_%06d.png"), 18,
                                      QStringLiteral("/out dir/a.mp4"))
                 .join(QLatin1Char('|')),
             QStringLiteral("-y|-framerate|25|-start_number|0|-i|video_frames/frame_%06d.png|"
                            "-c:v|libx264|-crf|18|-pix_fmt|yuv420p|/out dir/a.mp4"));
}

void TestEncoding::queueStartsAnew()
{
    EncodeQueue queue;
    QVERIFY(queue.atEnd() && queue.allSucceeded());
    queue.append({10, QStringLiteral("AIA 171"), {}});
    queue.append({0, QStringLiteral("EIT 171"), {}});
    queue.noteFailure();
    queue.advance();
    QCOMPARE(queue.current().sourceId, 0);
    queue.advance();
    QVERIFY(queue.atEnd() && !queue.allSucceeded());
    queue.clear();
    QVERIFY(queue.atEnd() && queue.allSucceeded() && queue.position() == 0);
}

void TestEncoding::removesOnlyFrames()
{
    const QTemporaryDir folder;
    const QDir source(folder.path());
    touch(source, {QStringLiteral("frame_000000.png"), QStringLiteral("film.mp4"),
                   QStringLiteral("frame_000000.jpg"), QStringLiteral("Frame_best.png"),
                   QStringLiteral("video_frames/frame_000000.png"),
                   QStringLiteral("video_frames/notes.txt")});
    FrameCleanup::removeFrames(source.path());
    const QStringList kept{QStringLiteral("Frame_best.png"), QStringLiteral("film.mp4"),
                           QStringLiteral("frame_000000.jpg")};
    QCOMPARE(filesUnder(source).mid(kept.size()).join(QLatin1Char(' ')),
             QStringLiteral("video_frames video_frames/notes.txt"));

    QVERIFY(QFile::remove(source.filePath(QStringLiteral("video_frames/notes.txt"))));
    FrameCleanup::removeFrames(source.path());
    QCOMPARE(filesUnder(source), kept);
    FrameCleanup::removeFrames(source.filePath(QStringLiteral("absent")));
}

void TestEncoding::leavesALinkedFolderAlone()
{
    const QTemporaryDir elsewhere;
    touch(QDir(elsewhere.path()), {QStringLiteral("frame_000000.png")});
    const QTemporaryDir folder;
    const QString link = folder.filePath(QStringLiteral("video_frames"));
    QVERIFY(QFile::link(elsewhere.path(), link));
    FrameCleanup::removeFrames(folder.path());
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(QFile::exists(elsewhere.filePath(QStringLiteral("frame_000000.png"))));
}

QTEST_APPLESS_MAIN(TestEncoding)
#include "tst_encoding.moc"

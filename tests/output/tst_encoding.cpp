#include "output/ffmpegcommand.h"
#include "output/filmfile.h"
#include "output/framecleanup.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void argumentList();
    void filmThatIsCutOff_data();
    void filmThatIsCutOff();
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

void TestEncoding::filmThatIsCutOff_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("cutOff");

    const auto box = [](const char *type, const QByteArray &data) {
        QByteArray length(4, 0);
        qToBigEndian(quint32(8 + data.size()), length.data());
        return length + type + data;
    };
    const QByteArray begun = box("ftyp", "isom") + box("free", "");
    const QByteArray pictures = box("mdat", QByteArray(1000, 'x'));
    const QByteArray longHead("\0\0\0\1mdat\0\0\0\0\0\0\0\x11x", 17);
    const QByteArray movie = box("moov", "where the pictures are");
    QTest::newRow("whole") << begun + pictures + movie << false;
    QTest::newRow("with a 64-bit length") << begun + longHead + movie << false;
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("within a head") << begun + pictures + movie.left(7) << true;
    QTest::newRow("within a long head") << begun + longHead.left(12) << true;
    QTest::newRow("within the last box") << (begun + pictures + movie).chopped(1) << true;
    QTest::newRow("pictures of unknown length")
        << begun + QByteArray("\0\0\0\0mdat", 8) + movie << true;
    QTest::newRow("before the last box") << begun + pictures << true;
    QTest::newRow("no MP4") << QByteArray("of some other encoder") << false;
}

void TestEncoding::filmThatIsCutOff()
{
    QFETCH(QByteArray, content);

    QTemporaryFile film;
    QVERIFY(film.open() && film.write(content) == content.size() && film.flush());
    QTEST(FilmFile::isCutOff(film.fileName()), "cutOff");
    QVERIFY(!FilmFile::isCutOff(film.fileName() + QStringLiteral(" that is not there")));
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

#include "output/ffmpegcommand.h"
#include "output/filmfile.h"
#include "output/framecleanup.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void argumentList();
    void filmOfThreePictures_data();
    void filmOfThreePictures();
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

void TestEncoding::filmOfThreePictures_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("flaw");

    const auto bytes = [](quint32 number) {
        QByteArray four(4, 0);
        qToBigEndian(number, four.data());
        return four;
    };
    const auto box = [bytes](const char *type, const QByteArray &data) {
        return bytes(quint32(8 + data.size())) + type + data;
    };
    const auto track = [&](const char *media, int pictures) {
        const QByteArray sizes = box("stsz", bytes(0) + bytes(0) + bytes(quint32(pictures)));
        return box("trak", box("tkhd", "") + box("mdia", box("hdlr", bytes(0) + bytes(0) + media) +
                                                             box("minf", box("stbl", sizes))));
    };
    const QByteArray begun = box("ftyp", "isom") + box("free", "");
    const QByteArray pictures = box("mdat", QByteArray(1000, 'x'));
    const QByteArray longHead("\0\0\0\1mdat\0\0\0\0\0\0\0\x11x", 17);
    const QByteArray movie = box("moov", box("mvhd", "") + track("soun", 9) + track("vide", 3));
    const QString cutOff = QStringLiteral("the film is cut off. Is the disk full?");
    const QString noPictures = QStringLiteral("the film shows 0 of 3 pictures.");
    QTest::newRow("whole") << begun + pictures + movie << "";
    QTest::newRow("with a 64-bit length") << begun + longHead + movie << "";
    QTest::newRow("nothing") << QByteArray() << cutOff;
    QTest::newRow("within a head") << begun + pictures + movie.left(7) << cutOff;
    QTest::newRow("within a long head") << begun + longHead.left(12) << cutOff;
    QTest::newRow("within the last box") << (begun + pictures + movie).chopped(1) << cutOff;
    QTest::newRow("pictures of unknown length")
        << begun + QByteArray("\0\0\0\0mdat", 8) + movie << cutOff;
    QTest::newRow("before the last box") << begun + pictures << cutOff;
    QTest::newRow("short") << begun + box("moov", track("vide", 2))
                           << QStringLiteral("the film shows 2 of 3 pictures.");
    QTest::newRow("no video") << begun + box("moov", track("soun", 3)) << noPictures;
    QTest::newRow("a table longer than its track")
        << begun + box("moov", track("vide", 3).replace(0, 4, bytes(60))) << noPictures;
    QTest::newRow("more boxes than a film has") << begun + box("free", "").repeated(20000) << "";
    QTest::newRow("no MP4") << QByteArray("of some other encoder") << "";
}

void TestEncoding::filmOfThreePictures()
{
    QFETCH(QByteArray, content);

    QTemporaryFile film;
    QVERIFY(film.open() && film.write(content) == content.size() && film.flush());
    QTEST(FilmFile::flaw(film.fileName(), 3), "flaw");
    QVERIFY(FilmFile::flaw(film.fileName() + QStringLiteral(" that is not there"), 3).isEmpty());
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

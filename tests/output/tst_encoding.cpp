#include "output/filmfile.h"
#include "output/framecleanup.h"
#include "tests/support/literals.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void filmOfThreePictures_data()
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
            return box("trak",
                       box("tkhd", "") + box("mdia", box("hdlr", bytes(0) + bytes(0) + media) +
                                                         box("minf", box("stbl", sizes))));
        };
        const QByteArray begun = box("ftyp", "isom") + box("free", "");
        const QByteArray pictures = box("mdat", QByteArray(1000, 'x'));
        const QByteArray longHead("\0\0\0\1mdat\0\0\0\0\0\0\0\x11x", 17);
        const QByteArray movie = box("moov", box("mvhd", "") + track("soun", 9) + track("vide", 3));
        const QString cutOff = "the film is cut off. Is the disk full?"_s;
        const QString noPictures = "the film shows 0 of 3 pictures."_s;
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
                               << "the film shows 2 of 3 pictures."_s;
        QTest::newRow("no video") << begun + box("moov", track("soun", 3)) << noPictures;
        QTest::newRow("a table longer than its track")
            << begun + box("moov", track("vide", 3).replace(0, 4, bytes(60))) << noPictures;
        QTest::newRow("more boxes than a film has")
            << begun + box("free", "").repeated(20000) << "";
        QTest::newRow("no MP4") << QByteArray("of some other encoder") << "";
    }

    void filmOfThreePictures()
    {
        QFETCH(QByteArray, content);
        QTemporaryFile film;
        QVERIFY(film.open() && film.write(content) == content.size() && film.flush());
        QTEST(FilmFile::flaw(film.fileName(), 3), "flaw");
        QVERIFY(FilmFile::flaw(film.fileName() + " not there"_s, 3).isEmpty());
    }

    void removesOnlyFrames()
    {
        const QTemporaryDir folder;
        const QDir source(folder.filePath("source"_s));
        const QDir elsewhere(folder.filePath("elsewhere"_s));
        QVERIFY(source.mkpath("video_frames"_s) && elsewhere.mkpath("."_s));
        for (const char *name : {"source/frame_000000.png", "source/film.mp4",
                                 "source/frame_000000.jpg", "source/video_frames/frame_000000.png",
                                 "source/video_frames/notes.txt", "elsewhere/frame_000000.png"})
            QVERIFY(QFile(folder.filePath(QLatin1String(name))).open(QIODevice::WriteOnly));
        const auto filesIn = [](const QDir &dir) {
            return dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join(QLatin1Char(' '));
        };
        FrameCleanup::removeFrames(source.path());
        QCOMPARE(filesIn(source), "film.mp4 frame_000000.jpg video_frames"_s);
        const QString videoFrames = source.filePath("video_frames"_s);
        QCOMPARE(filesIn(videoFrames), "notes.txt"_s);
        QVERIFY(QFile::remove(videoFrames + "/notes.txt"_s)); // it kept the folder
        FrameCleanup::removeFrames(source.path());
        QCOMPARE(filesIn(source), "film.mp4 frame_000000.jpg"_s);

        QVERIFY(QFile::link(elsewhere.path(), videoFrames));
        FrameCleanup::removeFrames(source.path());
        QCOMPARE(filesIn(videoFrames), "frame_000000.png"_s);
    }
};

QTEST_APPLESS_MAIN(TestEncoding)
#include "tst_encoding.moc"

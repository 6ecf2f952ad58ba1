#include "output/filmfile.h"
#include "output/framecleanup.h"

#include <QtTest>

class TestEncoding : public QObject
{
    Q_OBJECT

private slots:
    void filmThatIsCutOff_data()
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

    void filmThatIsCutOff()
    {
        QFETCH(QByteArray, content);

        QTemporaryFile film;
        QVERIFY(film.open() && film.write(content) == content.size() && film.flush());
        QTEST(FilmFile::isCutOff(film.fileName()), "cutOff");
        QVERIFY(!FilmFile::isCutOff(film.fileName() + QStringLiteral(" that is not there")));
    }

    void removesOnlyFrames()
    {
        const QTemporaryDir source;
        const QTemporaryDir elsewhere;
        const auto touch = [](const QTemporaryDir &folder, const char *name) {
            QFile file(folder.filePath(QLatin1String(name)));
            return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly);
        };
        const auto files = [](const QTemporaryDir &folder) {
            const QString path = folder.path() + QLatin1Char('/');
            QDirIterator all(path, QDir::Files, QDirIterator::Subdirectories);
            QStringList names;
            while (all.hasNext())
                names += all.next().mid(path.size());
            names.sort();
            return names.join(QLatin1Char(' '));
        };
        for (const char *name : {"frame_000000.png", "film.mp4", "frame_000000.jpg",
                                 "video_frames/frame_000000.png", "video_frames/notes.txt"})
            QVERIFY(touch(source, name));
        FrameCleanup::removeFrames(source.path());
        QCOMPARE(files(source), QStringLiteral("film.mp4 frame_000000.jpg video_frames/notes.txt"));

        const QString videoFrames = source.filePath(QStringLiteral("video_frames"));
        QVERIFY(QFile::remove(videoFrames + QStringLiteral("/notes.txt")));
        FrameCleanup::removeFrames(source.path());
        QVERIFY(!QFileInfo::exists(videoFrames)); // so far a file kept the folder

        QVERIFY(touch(elsewhere, "frame_000000.png"));
        QVERIFY(QFile::link(elsewhere.path(), videoFrames));
        FrameCleanup::removeFrames(source.path());
        QVERIFY(QFileInfo::exists(videoFrames));
        QCOMPARE(files(elsewhere), QStringLiteral("frame_000000.png"));
    }
};

QTEST_APPLESS_MAIN(TestEncoding)
#include "tst_encoding.moc"

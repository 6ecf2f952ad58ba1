#include "output/csvfields.h"
#include "output/filmencoder.h"
#include "output/filmfile.h"
#include "output/framecleanup.h"
#include "output/manifestreader.h"
#include "output/manifestrow.h"
#include "output/manifestwriter.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QtTest>

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <sys/wait.h>

namespace {

const char *const header =
    "SourceId,Source,RequestIndex,RequestedUTC,ActualUTC,DeltaSeconds,ToleranceSeconds,ImageId,"
    "File,VideoFrame,Status,Scale,ScaleCorrection,SourceWidth,SourceHeight,RSun,RefPixelX,"
    "RefPixelY\n";
const char *const acceptedLine =
    "10,\"AIA \"\"171\"\"\",0,\"2024-05-01T12:00:00Z\",\"2024-05-01T11:59:53Z\",-7,30,"
    "150753140000,\"AIA/frame_000000.png\",\"AIA/copy.png\",OK,0.6,,4096,,1580.25,-12.5,\n";

const char *const strangeValues =
    R"([0.6, 4096, 0.000015, 150753140000, 999999999999999, 1e15, -2048.125, 1.7e308,
        0.30000000000000004, "0,6\"", "1\r\n2\n", null, true, {}])";

ManifestRow acceptedRow()
{
    const QDateTime requestedUtc({2024, 5, 1}, {12, 0}, Qt::UTC);
    const QByteArray answer = R"({"scale":0.6,"width":4096,"rsun":"1580.25","refPixelX":-12.5})";
    return {{{10, "AIA \"171\""_s, {}}, requestedUtc, 0},
            requestedUtc.addSecs(-7),
            150753140000,
            -7,
            30,
            "AIA/frame_000000.png"_s,
            "AIA/copy.png"_s,
            FrameStatus::Ok,
            QJsonDocument::fromJson(answer).object()};
}

/// For a program that does @p commands in the film's folder.
FilmOrder orderOf(const QByteArray &commands, const QString &folder)
{
    FilmOrder order;
    order.program = TestFolder::writeScript("encoder"_s, commands);
    order.folder = folder;
    order.film = folder + "/film.mp4"_s;
    order.startLimitMs = 60'000;
    return order;
}

QString toText(const FilmOutcome &outcome)
{
    return "%1 %2 "_s.arg(static_cast<int>(outcome.end)).arg(outcome.exitCode) + outcome.reason;
}

} // namespace

/// The manifest, films and what is cleaned up behind them.
class TestOutput final : public QObject
{
    Q_OBJECT

private slots:
    void fieldsAreSplit()
    {
        CsvFields csv; // one for all: no field may be left from the line before
        for (const auto &[line, fields] :
             {std::pair("", "<>"), std::pair(",,", "<><><>"), std::pair(" a , b", "< a >< b>"),
              std::pair("\"a,b\",c", "<a,b><c>"), std::pair("a\"b,c\"d", "<ab,cd>"),
              std::pair("a\"\"b", "<ab>"), // doubled, but not within quotes
              std::pair("\"\"\"", "<\">"), std::pair("a,\"b,c", "<a><b,c>"), // never closed
              std::pair("\"the \"\"\"\"Sun\"\",\"", "<the \"\"Sun\",>")}) {
            const QString text = QLatin1String(line);
            csv.split(text);
            QString found;
            for (int i = 0; i < csv.count(); ++i)
                found += QLatin1Char('<') + csv.at(i) + QLatin1Char('>');
            QCOMPARE(found, QLatin1String(fields));
            QVERIFY(csv.at(csv.count()).isEmpty() && csv.at(-1).isEmpty());
        }
    }

    void rowsWithoutAnswer()
    {
        const QString words =
            "OK REJECTED_TIME DUPLICATE CORRUPT_IMAGE DOWNLOAD_ERROR LOOKUP_ERROR"_s;
        ManifestRow row;
        for (int status = 0; status <= static_cast<int>(FrameStatus::LookupError); ++status) {
            row.status = FrameStatus(status);
            QCOMPARE(ManifestRows::toLine(row),
                     "-1,\"\",0,\"\",\"\",,0,,\"\",\"\",%1,,,,,,,\n"_s.arg(
                         words.section(QLatin1Char(' '), status, status)));
        }
    }

    void metadataTexts()
    {
        const QJsonArray values = QJsonDocument::fromJson(strangeValues).array();
        QStringList texts;
        for (const QJsonValue &value : values) {
            ManifestRow row;
            row.metadata = {{"refPixelY"_s, value}};
            texts.append(ManifestRows::toLine(row).section("OK,,,,,,,"_s, 1).trimmed());
        }
        QCOMPARE(texts.join(QLatin1Char(' ')),
                 "0.6 4096 1.5e-05 150753140000 999999999999999 1e+15 -2048.125 "
                 "1.7e+308 0.3 0,6\" 1  2   "_s);
    }

    void writtenFileIsReadBack()
    {
        QString error;
        const QString absent = m_folder.filePath("absent"_s);
        QVERIFY(!ManifestReader::read(absent, &error));
        QCOMPARE(error, "Cannot open "_s + absent);
        store({});
        QVERIFY(!ManifestReader::read(m_path, &error));
        QCOMPARE(error, "manifest.csv is empty."_s);
        ManifestWriter writer;
        QVERIFY(!writer.create(absent));
        QVERIFY(writer.create(m_folder.path()));
        QVERIFY(writer.append(acceptedRow()));
        QCOMPARE(content(), m_header + acceptedLine); // while the file is still open
        QVERIFY(writer.close() && writer.close());
        QVERIFY(writer.append(acceptedRow()));
        QCOMPARE(content(), m_header + acceptedLine);

        const auto frames = ManifestReader::read(m_path);
        QVERIFY(frames && frames->bySource.size() == 1);
        const ManifestFrame frame = frames->bySource.value(10).constFirst();
        QCOMPARE(frame.file, acceptedRow().file);
        QCOMPARE(frame.actualUtc, acceptedRow().actualUtc);
        QCOMPARE(QJsonDocument(frame.metadata).toJson(QJsonDocument::Compact),
                 R"({"refPixelX":-12.5,"refPixelY":0,"rsun":1580.25,"scale":0.6,"width":4096})");
    }

    void readsForeignFiles_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("frames"); // file@time+width of each frame of source 0
        const auto row = [](const char *name, const QByteArray &text, const QByteArray &frames) {
            QTest::newRow(name) << text << QString::fromLatin1(frames);
        };
        row("reordered, extra and blank columns", " File ,x,Status\na,,OK\n", "a@+0");
        row("of two equal columns the last", "File,Status,File\na,OK,b\n", "b@+0");
        row("a column less, a field less", "SourceWidth,Status,File\n4096,OK\n", "@+4096");
        row("CR within a field", "Status,File\nOK,a\rb\n", "ab@+0");
        row("CR LF and blank lines", "Status,File\r\n\r\n  \r\nOK,a\r\nOK,b\r\n", "a@+0 b@+0");
        row("status to the letter", "Status,File\nok,a\n\"OK\",b\nOK ,c\nOK", "b@+0 @+0");
        row("NUL and Latin-1 bytes", {"Status,File\nO\0K,a\n\xe9\xff,b\nOK,c\n", 29}, "c@+0");
        row("byte-order mark of a spreadsheet", "\xef\xbb\xbfStatus,File\nOK,a\n", "a@+0");
        row("times",
            "Status,ActualUTC\nOK,2024-05-01T00:00:01.5Z\nOK,soon\nOK,2024-05-01T02:00+02:00",
            "@2024-05-01T00:00:01.500Z+0 @+0 @2024-05-01T00:00:00.000Z+0");
        row("widths come and go",
            "Status,SourceWidth\nOK,4096\nOK,-1\nOK,1e3\nOK,nan\nOK,8,9\nOK,inf",
            "@+4096 @+0 @+1000 @+0 @+8 @+0");
        row("a line of more than 1 MB",
            "Status,File\nOK,a\nOK," + QByteArray(1 << 20, 'x') + "\nOK,c\n", "a@+0");
        row("a line of 1 MB", "Status,File\nOK," + QByteArray((1 << 20) - 3, 'x') + "\nOK,c\n",
            QByteArray((1 << 20) - 3, 'x') + "@+0 c@+0");
        row("source without a number", "SourceId,Status,File\nAIA,OK,a\n", "a@+0");
    }

    void readsForeignFiles()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, frames);
        store(text);
        const auto read = ManifestReader::read(m_path);
        QVERIFY(read);
        QStringList found;
        for (const ManifestFrame &frame : read->bySource.value(0))
            found.append("%1@%2+%3"_s.arg(frame.file, frame.actualUtc.toString(Qt::ISODateWithMs),
                                          QString::number(frame.metadata["width"_s].toDouble())));
        QCOMPARE(found.join(QLatin1Char(' ')), frames);
    }

    void truncatedAnywhere()
    {
        const QByteArray whole = m_header + acceptedLine + acceptedLine;
        for (int size = 1; size <= whole.size(); ++size) {
            store(whole.left(size));
            const auto frames = ManifestReader::read(m_path);
            QVERIFY(frames);
            QCOMPARE(frames->bySource.value(10).size(), whole.left(size).count(",OK"));
        }
    }

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
            return bytes(static_cast<quint32>(8 + data.size())) + type + data;
        };
        const auto track = [&](const char *media, int pictures) {
            const QByteArray sizes =
                box("stsz", bytes(0) + bytes(0) + bytes(static_cast<quint32>(pictures)));
            return box("trak",
                       box("tkhd", "") + box("mdia", box("hdlr", bytes(0) + bytes(0) + media) +
                                                         box("minf", box("stbl", sizes))));
        };
        const QByteArray begun = box("ftyp", "isom") + box("free", "");
        const QByteArray pictures = box("mdat", QByteArray(1000, 'x'));
        const QByteArray longHead("\0\0\0\1mdat\0\0\0\0\0\0\0\x11x", 17);
        const QByteArray movie = box("moov", box("mvhd", "") + track("soun", 9) + track("vide", 3));
        const auto row = [](const char *name, const QByteArray &content, const char *flaw) {
            QTest::newRow(name) << content << flaw;
        };
        const char *const cutOff = "the film is cut off. Is the disk full?";
        row("whole", begun + pictures + movie, "");
        row("with a 64-bit length", begun + longHead + movie, "");
        row("nothing", {}, cutOff);
        row("within a head", begun + pictures + movie.left(7), cutOff);
        row("within a long head", begun + longHead.left(12), cutOff);
        row("within the last box", (begun + pictures + movie).chopped(1), cutOff);
        row("of unknown length", begun + QByteArray("\0\0\0\0mdat", 8) + movie, cutOff);
        row("before the last box", begun + pictures, cutOff);
        row("short", begun + box("moov", track("vide", 2)), "the film shows 2 of 3 pictures.");
        row("no video", begun + box("moov", track("soun", 3)), "the film shows 0 of 3 pictures.");
        row("a table longer than its track",
            begun + box("moov", track("vide", 3).replace(0, 4, bytes(60))),
            "the film shows 0 of 3 pictures.");
        row("of an empty long box",
            begun + QByteArray("\0\0\0\1mdat\0\0\0\0\0\0\0\x10", 16) + movie, "");
        row("of a box that ends in its head", begun + QByteArray("\0\0\0\7free", 8), cutOff);
        row("with a box of no length as its last", begun + movie + QByteArray("\0\0\0\0free", 8),
            "");
        row("with less than a head at its end", begun + movie + QByteArray(7, '\0'), cutOff);
        const QByteArray shortMovie = box("moov", track("vide", 2));
        const QByteArray most = begun + box("free", "").repeated(9987); // and a dozen in the movie
        row("as many boxes as are read", most + shortMovie, "the film shows 2 of 3 pictures.");
        row("more boxes than a film has", most + box("free", "") + shortMovie, "");
        row("no MP4", "of some other encoder", "");
        row("a single byte", "x", "");
    }

    void filmOfThreePictures()
    {
        QFETCH(QByteArray, content);
        QTemporaryFile film;
        QVERIFY(film.open() && film.write(content) == content.size() && film.flush());
        QTEST(FilmFile::flaw(film.fileName(), 3), "flaw");
        QVERIFY(!FilmFile::isCutOff(film.fileName() + " not there"_s));
        QCOMPARE(FilmFile::flaw(film.fileName() + " not there"_s, 3), "there is no film."_s);
    }

    void encoderTellsHowItEnded()
    {
        const QByteArray cutFilm = "printf '\\0\\0\\0\\10ftyp' >film.mp4; ";
        for (const auto &[commands, outcome] :
             {std::pair("echo a b >&2; exit 1", "2 1 Unknown error, a b"),
              {"echo a b; kill -KILL $$", "2 9 Process crashed, a b"},
              {"cat; echo a b", "3 0 ffmpeg ended without an error, but the film is cut off. "
                                "Is the disk full?, a b"},
              {"printf '\\0\\0\\0\\10moov' >>film.mp4", "0 0 , film"},
              {"", "1 0 execvp: No such file or directory, film"}}) {
            FilmEncoder encoder;
            FilmOrder order = orderOf(cutFilm + commands, m_folder.path());
            order.program += *commands == 0 ? " not there"_s : QString();
            encoder.start(order);
            QTRY_VERIFY(!encoder.isRunning());
            const QString left = QFile::exists(order.film) ? "film"_s : encoder.lastOutput(9);
            QCOMPARE(toText(encoder.outcome()) + ", "_s + left, QLatin1String(outcome));
            QTRY_VERIFY(!encoder.findChild<QProcess *>());
        }
    }

    void encoderIsStopped()
    {
        auto encoder = std::make_unique<FilmEncoder>();
        int ended = 0;
        connect(encoder.get(), &FilmEncoder::finished, this, [&ended] { ++ended; });
        encoder->start(orderOf("seq 100000 199999; exec sleep 120", m_folder.path()));
        QTRY_COMPARE(encoder->lastOutput(6), "199999"_s);
        const int kept = encoder->lastOutput(1 << 20).size();
        QVERIFY(kept > 65'000 && kept <= 128 * 1024);
        encoder->start(orderOf("echo first; exec sleep 120", m_folder.path()));
        QCOMPARE(toText(encoder->outcome()), "2 9 Process crashed"_s);
        QTRY_COMPARE(encoder->lastOutput(9), "first"_s);
        encoder->cancel();
        QCOMPARE(ended, 2);
        const FilmOrder last =
            orderOf("printf '\\0\\0\\0\\10ftyp' >film.mp4; exec sleep 120", m_folder.path());
        encoder->start(last);
        QTRY_COMPARE(QFileInfo(last.film).size(), 8);
        encoder.reset();
        QVERIFY(!QFile::exists(last.film));
        QCOMPARE(ended, 2); // that one without a word
    }

    /// A lease on the program lets nobody open it.
    void encoderThatDoesNotStart()
    {
        FilmOrder order = orderOf("exit", m_folder.path());
        order.startLimitMs = 20;
        std::signal(SIGIO, SIG_IGN);
        QFile program(order.program);
        QVERIFY(program.open(QIODevice::ReadOnly));
        QCOMPARE(fcntl(program.handle(), F_SETLEASE, F_WRLCK), 0);
        FilmEncoder encoder;
        encoder.start(order);
        QTRY_VERIFY(!encoder.isRunning());
        QCOMPARE(toText(encoder.outcome()), "1 0 Process operation timed out"_s);
        QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1); // there is no child
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

private:
    QByteArray content() const
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void store(const QByteArray &text) const
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }

    const QByteArray m_header = header;
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath("manifest.csv"_s);
};

QTEST_GUILESS_MAIN(TestOutput)
#include "tst_output.moc"

#include "output/csvfields.h"
#include "output/manifestreader.h"
#include "output/manifestrow.h"
#include "output/manifestwriter.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QtTest>

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

} // namespace

class TestManifest : public QObject
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
        QString lines;
        ManifestRow row;
        for (int status = 0; status <= int(FrameStatus::LookupError); ++status) {
            row.status = FrameStatus(status);
            lines += toLine(row);
        }
        QString expected;
        for (const char *word : {"OK", "REJECTED_TIME", "DUPLICATE", "CORRUPT_IMAGE",
                                 "DOWNLOAD_ERROR", "LOOKUP_ERROR"})
            expected += QLatin1String("-1,\"\",0,\"\",\"\",,0,,\"\",\"\",") + QLatin1String(word) +
                        QLatin1String(",,,,,,,\n");
        QCOMPARE(lines, expected);
    }

    void metadataTexts()
    {
        const QJsonArray values = QJsonDocument::fromJson(strangeValues).array();
        QStringList texts;
        for (const QJsonValue &value : values) {
            ManifestRow row;
            row.metadata = {{"refPixelY"_s, value}};
            texts.append(toLine(row).section("OK,,,,,,,"_s, 1).trimmed());
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
        ManifestWriter writer;
        QVERIFY(!writer.create(absent));
        QVERIFY(writer.create(m_folder.path()));
        QVERIFY(writer.append(acceptedRow()));
        QCOMPARE(content(), m_header + acceptedLine); // while the file is still open
        QVERIFY(writer.close());
        QVERIFY(writer.append(acceptedRow()));
        QCOMPARE(content(), m_header + acceptedLine);

        const auto frames = ManifestReader::read(m_path);
        QVERIFY(frames && frames->bySource.keys() == QList<int>{10});
        const ManifestFrame frame = frames->bySource.value(10).constFirst();
        QCOMPARE(frame.file, acceptedRow().file);
        QCOMPARE(frame.actualUtc, acceptedRow().actualUtc);
        QCOMPARE(QJsonDocument(frame.metadata).toJson(QJsonDocument::Compact),
                 R"({"refPixelX":-12.5,"refPixelY":0,"rsun":1580.25,"scale":0.6,"width":4096})");
    }

    void fullDiskKeepsTheOrder()
    {
        ManifestWriter writer;
        TestFolder::leaveRoom(100); // takes the header in part
        QVERIFY(!writer.create(m_folder.path()));
        TestFolder::leaveRoom();
        QString error;
        QVERIFY(!writer.isOpen() && !ManifestReader::read(m_path, &error));
        QCOMPARE(error, "manifest.csv is empty."_s);

        QVERIFY(writer.create(m_folder.path()));
        QByteArray expected = m_header;
        TestFolder::leaveRoom(m_header.size() + 100);
        for (int index = 0; index < 5; ++index) {
            ManifestRow row = acceptedRow();
            row.request.requestIndex = index;
            QVERIFY(!writer.append(row));
            expected += toLine(row).toUtf8();
        }
        TestFolder::leaveRoom();
        QCOMPARE(content(), m_header);
        QVERIFY(writer.append(acceptedRow()));
        QCOMPARE(content(), expected + acceptedLine);
    }

    void readsForeignFiles_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("frames"); // file@time+width of each frame of source 0
        const auto row = [](const char *name, const QByteArray &text, const char *frames) {
            QTest::newRow(name) << text << QString::fromLatin1(frames);
        };
        row("reordered, extra and blank columns", " File ,x,Status\na,,OK\n", "a@+0");
        row("of two equal columns the last", "File,Status,File\na,OK,b\n", "b@+0");
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

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"

#include "output/manifestreader.h"
#include "output/manifestrow.h"
#include "output/manifestwriter.h"

#include <QtTest>

#include <sys/resource.h>

#include <csignal>

namespace {

const char *const headerLine =
    "SourceId,Source,RequestIndex,RequestedUTC,ActualUTC,DeltaSeconds,ToleranceSeconds,ImageId,"
    "File,VideoFrame,Status,Scale,ScaleCorrection,SourceWidth,SourceHeight,RSun,RefPixelX,"
    "RefPixelY\n";
const char *const acceptedLine =
    "10,\"AIA \"\"171\"\"\",0,\"2024-05-01T12:00:00Z\",\"2024-05-01T11:59:53Z\",-7,30,"
    "150753140000,\"AIA/frame_000000.png\",\"AIA/copy.png\",OK,0.6,,4096,,1580.25,-12.5,\n";

ManifestRow acceptedRow()
{
    const QDateTime requestedUtc({2024, 5, 1}, {12, 0}, Qt::UTC);
    const QByteArray answer = R"({"scale":0.6,"width":4096,"rsun":"1580.25","refPixelX":-12.5})";
    return {{{10, QStringLiteral("AIA \"171\""), {}}, requestedUtc, 0},
            requestedUtc.addSecs(-7),
            150753140000,
            -7,
            30,
            QStringLiteral("AIA/frame_000000.png"),
            QStringLiteral("AIA/copy.png"),
            FrameStatus::Ok,
            QJsonDocument::fromJson(answer).object()};
}

/// Lets no file of this process grow beyond a size, as a full disk does, while the result lives.
auto fullDisk(int bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{rlim_t(bytes), before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    return qScopeGuard([before] { setrlimit(RLIMIT_FSIZE, &before); });
}

} // namespace

class TestManifest : public QObject
{
    Q_OBJECT

private slots:
    void rowsWithoutAnswer();
    void metadataTexts();
    void writtenFileIsReadBack();
    void fullDiskLosesNothing();
    void readsForeignFiles_data();
    void readsForeignFiles();
    void truncatedAnywhere();

private:
    QByteArray content() const;
    void store(const QByteArray &text) const;

    const QByteArray m_header = headerLine;
    const QByteArray m_accepted = acceptedLine;
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("manifest.csv"));
};

QByteArray TestManifest::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestManifest::store(const QByteArray &text) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

void TestManifest::rowsWithoutAnswer()
{
    QString lines;
    ManifestRow row;
    for (int status = 0; status <= int(FrameStatus::LookupError); ++status) {
        row.status = FrameStatus(status);
        lines += toLine(row);
    }
    QString expected;
    for (const char *word :
         {"OK", "REJECTED_TIME", "DUPLICATE", "CORRUPT_IMAGE", "DOWNLOAD_ERROR", "LOOKUP_ERROR"})
        expected += QLatin1String("-1,\"\",0,\"\",\"\",,0,,\"\",\"\",") + QLatin1String(word) +
                    QLatin1String(",,,,,,,\n");
    QCOMPARE(lines, expected);
}

void TestManifest::metadataTexts()
{
    const QJsonArray values =
        QJsonDocument::fromJson(
            R"([0.6, 4096, 0.000015, 150753140000, 999999999999999, 1e15, -2048.125, 1.7e308,
            0.30000000000000004, "0,6\"", "1\r\n2\n", null, true, {}])")
            .array();
    QStringList texts;
    for (const QJsonValue &value : values) {
        ManifestRow row;
        row.metadata = {{QStringLiteral("refPixelY"), value}};
        texts.append(toLine(row).section(QStringLiteral("OK,,,,,,,"), 1).trimmed());
    }
    QCOMPARE(texts.join(QLatin1Char(' ')),
             QStringLiteral("0.6 4096 1.5e-05 150753140000 999999999999999 1e+15 -2048.125 "
                            "1.7e+308 0.3 0,6\" 1  2   "));
}

void TestManifest::writtenFileIsReadBack()
{
    QString error;
    QVERIFY(!ManifestReader::read(QStringLiteral("/absent/manifest.csv"), &error));
    QCOMPARE(error, QStringLiteral("Cannot open /absent/manifest.csv"));
    ManifestWriter writer;
    QVERIFY(!writer.create(m_folder.filePath(QStringLiteral("absent"))));
    QVERIFY(writer.create(m_folder.path()));
    QVERIFY(writer.append(acceptedRow()));
    QCOMPARE(content(), m_header + m_accepted); // while the file is still open
    QVERIFY(writer.close());
    QVERIFY(writer.append(acceptedRow()));
    QCOMPARE(content(), m_header + m_accepted);

    const auto frames = ManifestReader::read(m_path);
    QVERIFY(frames && frames->bySource.keys() == QList<int>{10});
    const ManifestFrame frame = frames->bySource.value(10).constFirst();
    QCOMPARE(frame.file, acceptedRow().file);
    QCOMPARE(frame.actualUtc, acceptedRow().actualUtc);
    QCOMPARE(QJsonDocument(frame.metadata).toJson(QJsonDocument::Compact),
             R"({"refPixelX":-12.5,"refPixelY":0,"rsun":1580.25,"scale":0.6,"width":4096})");
}

void TestManifest::fullDiskLosesNothing()
{
    ManifestWriter writer;
    {
        const auto disk = fullDisk(100); // takes the header in part
        QVERIFY(!writer.create(m_folder.path()));
    }
    QVERIFY(!writer.isOpen());
    QString error;
    QVERIFY(!ManifestReader::read(m_path, &error));
    QCOMPARE(error, QStringLiteral("manifest.csv is empty."));

    QVERIFY(writer.create(m_folder.path()));
    QByteArray expected = m_header;
    {
        const auto disk = fullDisk(m_header.size() + 100);
        for (int index = 0; index < 5; ++index) {
            ManifestRow row = acceptedRow();
            row.request.requestIndex = index;
            QVERIFY(!writer.append(row, &error));
            expected += toLine(row).toUtf8();
        }
        QCOMPARE(content(), m_header);
    }
    QCOMPARE(error, QString::fromLocal8Bit(strerror(EFBIG)));
    QVERIFY(writer.append(acceptedRow()));
    QCOMPARE(content(), expected + m_accepted);

    const auto disk = fullDisk(content().size() + 1);
    QVERIFY(!writer.append(acceptedRow()));
    QVERIFY(!writer.close());
    QCOMPARE(content(), expected + m_accepted);
}

void TestManifest::readsForeignFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("frames"); // file@time+width of each frame of source 0

    const auto row = [](const char *name, const QByteArray &text, const char *frames) {
        QTest::newRow(name) << text << QString::fromLatin1(frames);
    };
    row("header only", "Status,File\n", "");
    row("reordered, extra and blank columns", " File ,x,Status\na,,OK\n", "a@+0");
    row("of two equal columns the last", "File,Status,File\na,OK,b\n", "b@+0");
    row("CR LF and blank lines", "Status,File\r\n\r\n  \r\nOK,a\r\nOK,b\r\n", "a@+0 b@+0");
    row("status to the letter", "Status,File\nok,a\n\"OK\",b\nOK ,c\nOK", "b@+0 @+0");
    row("no Status column", "File\na\n", "");
    row("NUL and Latin-1 bytes", {"Status,File\nO\0K,a\n\xe9\xff,b\nOK,c\n", 29}, "c@+0");
    row("byte-order mark of a spreadsheet", "\xef\xbb\xbfStatus,File\nOK,a\n", "a@+0");
    row("times", "Status,ActualUTC\nOK,2024-05-01T00:00:01.5Z\nOK,soon\nOK,2024-05-01T02:00+02:00",
        "@2024-05-01T00:00:01.500Z+0 @+0 @2024-05-01T00:00:00.000Z+0");
    row("widths come and go", "Status,SourceWidth\nOK,4096\nOK,-1\nOK,1e3\nOK,nan\nOK,8,9\nOK,inf",
        "@+4096 @+0 @+1000 @+0 @+8 @+0");
    row("a line of more than 1 MB",
        "Status,File\nOK,a\nOK," + QByteArray(1 << 20, 'x') + "\nOK,c\n", "a@+0");
    row("source without a number", "SourceId,Status,File\nAIA,OK,a\n", "a@+0");
}

void TestManifest::readsForeignFiles()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, frames);

    store(text);
    const auto read = ManifestReader::read(m_path);
    QVERIFY(read);
    QStringList found;
    for (const ManifestFrame &frame : read->bySource.value(0))
        found.append(QStringLiteral("%1@%2+%3")
                         .arg(frame.file, frame.actualUtc.toString(Qt::ISODateWithMs),
                              QString::number(frame.metadata[QStringLiteral("width")].toDouble())));
    QCOMPARE(found.join(QLatin1Char(' ')), frames);
}

void TestManifest::truncatedAnywhere()
{
    const QByteArray whole = m_header + m_accepted + m_accepted;
    for (int size = 1; size <= whole.size(); ++size) {
        store(whole.left(size));
        const auto frames = ManifestReader::read(m_path);
        QVERIFY(frames);
        QCOMPARE(frames->bySource.value(10).size(), whole.left(size).count(",OK"));
    }
}

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"

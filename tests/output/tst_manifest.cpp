#include "output/manifestreader.h"
#include "output/manifestrow.h"
#include "output/manifestwriter.h"

#include <QtTest>

#include <sys/resource.h>

#include <csignal>

namespace {

const char *const header = "SourceId,Source,RequestIndex,RequestedUTC,ActualUTC,DeltaSeconds,"
                           "ToleranceSeconds,ImageId,File,VideoFrame,Status,Scale,ScaleCorrection,"
                           "SourceWidth,SourceHeight,RSun,RefPixelX,RefPixelY\n";

ManifestRow acceptedRow(int index)
{
    ManifestRow row;
    row.request.sourceId = 10;
    row.request.nickname = QStringLiteral("AIA \"171\"");
    row.request.requestIndex = index;
    row.request.requestedUtc = QDateTime({2024, 5, 1}, {12, 0}, Qt::UTC);
    row.actualUtc = row.request.requestedUtc.addSecs(-7);
    row.imageId = 150753140000;
    row.deltaSeconds = -7;
    row.toleranceSeconds = 30;
    row.file = QStringLiteral("AIA/frame_%1.png").arg(index, 6, 10, QLatin1Char('0'));
    row.videoFrame = QStringLiteral("AIA/video_frames/frame.png");
    row.metadata = {{QStringLiteral("scale"), 0.6},
                    {QStringLiteral("width"), 4096},
                    {QStringLiteral("rsun"), QStringLiteral("1580.25")},
                    {QStringLiteral("refPixelX"), -12.5}};
    return row;
}

ManifestRow unansweredRow()
{
    ManifestRow row;
    row.request.requestIndex = 1;
    row.status = FrameStatus::LookupError;
    return row;
}

/// Lets no file of this process grow beyond a size, as a full disk does, while it lives.
class FullDisk
{
public:
    explicit FullDisk(qint64 bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{rlim_t(bytes), m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit m_before{};
};

} // namespace

class TestManifest : public QObject
{
    Q_OBJECT

private slots:
    void metadataTexts_data();
    void metadataTexts();
    void writtenFileIsExactAndReadBack();
    void statusWords();
    void createFailsWithoutRoomForTheHeader();
    void fullDiskLosesNothing();
    void readsForeignFiles_data();
    void readsForeignFiles();
    void truncatedAnywhere();
    void tellsWhyNothingIsRead();

private:
    QString path() const { return m_folder.filePath(QStringLiteral("manifest.csv")); }
    QByteArray content() const;
    void store(const QByteArray &text) const;

    QTemporaryDir m_folder;
};

QByteArray TestManifest::content() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestManifest::store(const QByteArray &text) const
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
}

void TestManifest::metadataTexts_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("fraction") << QJsonValue(0.6) << QStringLiteral("0.6");
    QTest::newRow("whole") << QJsonValue(4096) << QStringLiteral("4096");
    QTest::newRow("small") << QJsonValue(0.000015) << QStringLiteral("1.5e-05");
    QTest::newRow("long") << QJsonValue(150753140000.0) << QStringLiteral("150753140000");
    QTest::newRow("15 digits") << QJsonValue(999999999999999.0)
                               << QStringLiteral("999999999999999");
    QTest::newRow("16 digits") << QJsonValue(1e15) << QStringLiteral("1e+15");
    QTest::newRow("negative") << QJsonValue(-2048.125) << QStringLiteral("-2048.125");
    QTest::newRow("rounded") << QJsonValue(0.1 + 0.2) << QStringLiteral("0.3");
    QTest::newRow("text") << QJsonValue(QStringLiteral("0,6\"")) << QStringLiteral("0,6\"");
    QTest::newRow("null") << QJsonValue() << QString();
    QTest::newRow("boolean") << QJsonValue(true) << QString();
}

void TestManifest::metadataTexts()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, text);

    ManifestRow row = unansweredRow();
    row.metadata = {{QStringLiteral("scale"), value}};
    QVERIFY2(toLine(row).endsWith(QStringLiteral("LOOKUP_ERROR,%1,,,,,,\n").arg(text)),
             qPrintable(toLine(row)));
}

void TestManifest::writtenFileIsExactAndReadBack()
{
    ManifestWriter writer;
    QVERIFY(writer.create(m_folder.path()));
    QVERIFY(writer.append(acceptedRow(0)));
    QVERIFY(writer.append(unansweredRow()));
    const QByteArray expected =
        QByteArray(header) +
        "10,\"AIA \"\"171\"\"\",0,\"2024-05-01T12:00:00Z\",\"2024-05-01T11:59:53Z\",-7,30,"
        "150753140000,\"AIA/frame_000000.png\",\"AIA/video_frames/frame.png\",OK,"
        "0.6,,4096,,1580.25,-12.5,\n"
        "-1,\"\",1,\"\",\"\",,0,,\"\",\"\",LOOKUP_ERROR,,,,,,,\n";
    QCOMPARE(content(), expected); // while the file is still open
    QVERIFY(writer.close());
    QVERIFY(writer.append(acceptedRow(1)));
    QCOMPARE(content(), expected);

    const auto frames = ManifestReader::read(path());
    QVERIFY(frames);
    QCOMPARE(frames->keys(), QList<int>{10});
    const ManifestFrame &frame = frames->value(10).constFirst();
    QCOMPARE(frame.file, QStringLiteral("AIA/frame_000000.png"));
    QCOMPARE(frame.actualUtc, QDateTime({2024, 5, 1}, {11, 59, 53}, Qt::UTC));
    QCOMPARE(frame.metadata, (QJsonObject{{QStringLiteral("scale"), 0.6},
                                          {QStringLiteral("width"), 4096},
                                          {QStringLiteral("rsun"), 1580.25},
                                          {QStringLiteral("refPixelX"), -12.5},
                                          {QStringLiteral("refPixelY"), 0}}));
}

void TestManifest::statusWords()
{
    QStringList words;
    for (const FrameStatus status :
         {FrameStatus::Ok, FrameStatus::RejectedTime, FrameStatus::Duplicate,
          FrameStatus::CorruptImage, FrameStatus::DownloadError, FrameStatus::LookupError})
        words.append(toText(status));
    QCOMPARE(words.join(QLatin1Char(' ')),
             QStringLiteral("OK REJECTED_TIME DUPLICATE CORRUPT_IMAGE DOWNLOAD_ERROR "
                            "LOOKUP_ERROR"));
}

void TestManifest::createFailsWithoutRoomForTheHeader()
{
    ManifestWriter writer;
    QVERIFY(!writer.create(m_folder.filePath(QStringLiteral("absent"))));
    {
        const FullDisk disk(100);
        QVERIFY(!writer.create(m_folder.path()));
    }
    QVERIFY(!writer.isOpen());
    QCOMPARE(content(), QByteArray());
}

void TestManifest::fullDiskLosesNothing()
{
    constexpr int rows = 20;
    QByteArray expected(header);
    for (int i = 0; i < rows; ++i)
        expected += toLine(acceptedRow(i)).toUtf8();

    ManifestWriter writer;
    QVERIFY(writer.create(m_folder.path()));
    QVERIFY(writer.append(acceptedRow(0)));
    const int wholeBytes = content().size();
    QString error;
    {
        const FullDisk disk(wholeBytes + 100);
        for (int i = 1; i < rows - 1; ++i)
            QVERIFY(!writer.append(acceptedRow(i), &error));
        QCOMPARE(content(), expected.left(wholeBytes));
    }
    QCOMPARE(error, QString::fromLocal8Bit(strerror(EFBIG)));
    QVERIFY(writer.append(acceptedRow(rows - 1)));
    QCOMPARE(content(), expected);

    const FullDisk disk(expected.size() + 1);
    QVERIFY(!writer.append(acceptedRow(rows)));
    QVERIFY(!writer.close());
    QCOMPARE(content(), expected);
}

void TestManifest::readsForeignFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("frames"); // file@time of each frame of source 0

    const auto row = [](const char *name, const QByteArray &text, const char *frames) {
        QTest::newRow(name) << text << QString::fromLatin1(frames);
    };
    row("header only", "Status,File\n", "");
    row("reordered, extra and blank columns", " File ,x,Status\na,,OK\n", "a@");
    row("of two equal columns the last", "File,Status,File\na,OK,b\n", "b@");
    row("CR LF and blank lines", "Status,File\r\n\r\n  \r\nOK,a\r\nOK,b\r\n", "a@ b@");
    row("status to the letter", "Status,File\nok,a\n\"OK\",b\nOK ,c\nOK", "b@ @");
    row("no line feed at the end", "File,Status\na,OK", "a@");
    row("no Status column", "File\na\n", "");
    row("NUL and Latin-1 bytes", QByteArray("Status,File\nO\0K,a\n\xe9\xff,b\nOK,c\n", 29), "c@");
    row("byte-order mark of a spreadsheet", "\xef\xbb\xbfStatus,File\nOK,a\n", "a@");
    row("times", "Status,ActualUTC\nOK,2024-05-01T00:00:01.5Z\nOK,soon\nOK,2024-05-01T02:00+02:00",
        "@2024-05-01T00:00:01.500Z @ @2024-05-01T00:00:00.000Z");
    row("source without a number", "SourceId,Status,File\nAIA,OK,a\n", "a@");
}

void TestManifest::readsForeignFiles()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, frames);

    store(text);
    const auto read = ManifestReader::read(path());
    QVERIFY(read);
    QStringList found;
    for (const ManifestFrame &frame : read->value(0))
        found.append(frame.file + QLatin1Char('@') + frame.actualUtc.toString(Qt::ISODateWithMs));
    QCOMPARE(found.join(QLatin1Char(' ')), frames);
}

void TestManifest::truncatedAnywhere()
{
    QByteArray whole(header);
    for (int i = 0; i < 3; ++i)
        whole += toLine(acceptedRow(i)).toUtf8();
    for (int size = 1; size <= whole.size(); ++size) {
        const QByteArray part = whole.left(size);
        store(part);
        const auto frames = ManifestReader::read(path());
        QVERIFY(frames);
        QCOMPARE(frames->value(10).size(), part.count(",OK"));
    }
}

void TestManifest::tellsWhyNothingIsRead()
{
    QString error;
    store({});
    QVERIFY(!ManifestReader::read(path(), &error));
    QCOMPARE(error, QStringLiteral("manifest.csv is empty."));
    QVERIFY(!ManifestReader::read(QStringLiteral("/absent/manifest.csv"), &error));
    QCOMPARE(error, QStringLiteral("Cannot open /absent/manifest.csv"));
    QVERIFY(!ManifestReader::read(QStringLiteral("/absent/manifest.csv")));
}

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"

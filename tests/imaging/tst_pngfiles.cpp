#include "imaging/framedecoder.h"
#include "imaging/pngwriter.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

#include <sys/stat.h>

namespace {

/// Every channel random, alpha 0 over a colour among them.
QImage noise(QSize size, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, format);
    QRandomGenerator random(20240501);
    random.fillRange(reinterpret_cast<QRgb *>(image.bits()),
                     qsizetype(size.width()) * size.height());
    image.setPixel(0, 0, 0x00ff8040U);
    return image;
}

QImage sun(QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    QRadialGradient limb(image.rect().center(), size.width() / 2.0);
    limb.setStops({{0.0, QColor(255, 240, 160)}, {1.0, Qt::black}});
    QPainter(&image).fillRect(image.rect(), limb);
    return image;
}

} // namespace

/// Frames as they are written and read.
class TestPngFiles : public QObject
{
    Q_OBJECT

private slots:
    void pixelsAreReadBack_data()
    {
        QTest::addColumn<QImage>("image");
        QTest::addColumn<bool>("transparent");
        QImage large(8000, 5700, QImage::Format_RGB32);
        large.fill(qRgb(90, 20, 1));
        QImage veiled = sun({65, 64});
        veiled.setPixelColor(64, 63, QColor(1, 2, 3, 254));
        QTest::newRow("noise with alpha") << noise({333, 301}) << true;
        QTest::newRow("one pixel") << noise({1, 1}) << true;
        QTest::newRow("one column") << noise({1, 257}) << true;
        QTest::newRow("last pixel not quite opaque") << veiled << true;
        QTest::newRow("opaque") << noise({255, 64}, QImage::Format_RGB32) << false;
        QTest::newRow("opaque, with alpha") << sun({1024, 1024}) << false;
        QTest::newRow("so large that Qt writes it") << large << false;
        QTest::newRow("gray") << sun({65, 300}).convertToFormat(QImage::Format_Grayscale8) << false;
    }
    void pixelsAreReadBack()
    {
        QFETCH(QImage, image);
        QFETCH(bool, transparent);
        const auto stored = transparent ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        QVERIFY(PngWriter::save(image, path("ours.png")));
        const QImage decoded(path("ours.png"), "PNG");
        QCOMPARE(decoded.format(), stored);
        QCOMPARE(decoded, image.convertToFormat(stored));
    }

    /// Where every pixel differs a little from the one above, the differences pack best.
    void smoothPicturesAreFiltered()
    {
        QImage ramps(256, 256, QImage::Format_RGB32);
        for (int i = 0; i < 256 * 256; ++i)
            ramps.setPixel(i % 256, i / 256, qRgb(i % 256 * 7, i / 256 * 5, i % 251));
        QVERIFY(PngWriter::save(ramps, path("ours.png")));
        QVERIFY(QFileInfo(path("ours.png")).size() < 4000); // a quarter of what it is unfiltered
    }

    void failuresLeaveNoFile()
    {
        QVERIFY(!PngWriter::save(sun({8, 8}), path("missing/frame_000000.png")));
        QVERIFY(!QFileInfo::exists(path("missing")));
        QVERIFY(!PngWriter::save(QImage(), path("null.png")));
        QVERIFY(QDir().mkdir(path("taken.png")));
        QVERIFY(!PngWriter::save(sun({8, 8}), path("taken.png")));
        QVERIFY(!QFileInfo::exists(path("taken.png.part")));
    }

    /// The file to be is a link to a device on which every write fails for want of space.
    void fullDiskKeepsTheFormerFile()
    {
        QVERIFY(PngWriter::save(sun({32, 32}), path("frame.png")));
        QVERIFY(QFile::link(QStringLiteral("/dev/full"), path("frame.png.part")));
        QVERIFY(!PngWriter::save(noise({32, 32}), path("frame.png")));
        QCOMPARE(QImage(path("frame.png")), sun({32, 32}).convertToFormat(QImage::Format_RGB32));
        QVERIFY(!QFileInfo(path("frame.png.part")).isSymLink());
    }

    void cutOffPictureDoesNotDecode()
    {
        QImage image(64, 48, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * y, x ^ y, 7 * x));
        }
        QVERIFY(image.save(path("frame.png")));
        QCOMPARE(FrameDecoder::decode(path("frame.png")), image);
        QFile file(path("frame.png"));
        constexpr int checksumBytes = 4; // the last thing in the file, after the whole picture
        for (qint64 size = file.size() - checksumBytes - 1; size >= 0; --size) {
            QVERIFY(file.resize(size));
            QVERIFY2(FrameDecoder::decode(path("frame.png")).isNull(),
                     qPrintable(QString::number(size)));
        }
    }

    void onlyPngOfAKnownSizeIsRead_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<bool>("decodes");
        QTest::newRow("largest side") << QSize(16384, 2) << QByteArray("png") << true;
        QTest::newRow("too wide") << QSize(16385, 2) << QByteArray("png") << false;
        QTest::newRow("too tall") << QSize(2, 16385) << QByteArray("png") << false;
        QTest::newRow("too many pixels") << QSize(16384, 6104) << QByteArray("png") << false;
        QTest::newRow("another format") << QSize(64, 48) << QByteArray("bmp") << false;
    }

    void onlyPngOfAKnownSizeIsRead()
    {
        QFETCH(QSize, size);
        QFETCH(QByteArray, format);
        QFETCH(bool, decodes);
        QImage image(size, QImage::Format_Mono);
        image.fill(1);
        QVERIFY(image.save(path("frame.png"), format.constData()));
        QCOMPARE(FrameDecoder::decode(path("frame.png")).size(), decodes ? size : QSize(0, 0));
    }

    void pipeIsNotWaitedFor()
    {
        const QString pipe = path("pipe.png");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(FrameDecoder::decode(pipe).isNull());
    }

private:
    QTemporaryDir m_folder;
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
};

QTEST_GUILESS_MAIN(TestPngFiles)
#include "tst_pngfiles.moc"

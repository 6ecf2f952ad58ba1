#include "imaging/framedecoder.h"
#include "imaging/pngwriter.h"
#include "tests/support/testfolder.h"

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
        QTest::addColumn<QImage::Format>("stored");
        const auto row = [](const char *name, const QImage &image, QImage::Format stored) {
            QTest::newRow(name) << image << stored;
        };
        QImage large(8000, 5700, QImage::Format_RGB32);
        large.fill(qRgb(90, 20, 1));
        QImage veiled = sun({65, 64});
        veiled.setPixelColor(64, 63, QColor(1, 2, 3, 254));
        row("noise with alpha", noise({333, 301}), QImage::Format_ARGB32);
        row("one pixel", noise({1, 1}), QImage::Format_ARGB32);
        row("one column", noise({1, 257}), QImage::Format_ARGB32);
        row("last pixel not quite opaque", veiled, QImage::Format_ARGB32);
        row("opaque", noise({255, 64}, QImage::Format_RGB32), QImage::Format_RGB32);
        row("opaque, with alpha", sun({1024, 1024}), QImage::Format_RGB32);
        row("so large that Qt writes it", large, QImage::Format_RGB32);
        row("gray", sun({65, 300}).convertToFormat(QImage::Format_Grayscale8),
            QImage::Format_RGB32);
    }

    void pixelsAreReadBack()
    {
        QFETCH(QImage, image);
        QFETCH(QImage::Format, stored);
        QVERIFY(PngWriter::save(image, path("ours.png")));
        const QImage decoded(path("ours.png"), "PNG");
        QCOMPARE(decoded.format(), stored);
        QCOMPARE(decoded, image.convertToFormat(stored));
    }

    void failuresKeepTheFormerFile()
    {
        QVERIFY(!PngWriter::save(sun({8, 8}), path("missing/frame_000000.png")));
        QVERIFY(!QFileInfo::exists(path("missing")));
        QVERIFY(PngWriter::save(sun({32, 32}), path("frame.png")));
        QVERIFY(!PngWriter::save(QImage(), path("frame.png")));
        TestFolder::leaveRoom(100);
        QVERIFY(!PngWriter::save(noise({32, 32}), path("frame.png")));
        TestFolder::leaveRoom();
        QCOMPARE(QImage(path("frame.png")), sun({32, 32}).convertToFormat(QImage::Format_RGB32));
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 2); // and that of before
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

    void onlyPngOfABearableSizeIsRead()
    {
        for (const QSize &size : {QSize(16384, 2), QSize(16385, 2), QSize(2, 16385),
                                  QSize(16384, 6104)}) { // the last has too many pixels
            QImage image(size, QImage::Format_Mono);
            image.fill(1);
            QVERIFY(image.save(path("frame.png")));
            const QSize bearable = size == QSize(16384, 2) ? size : QSize(0, 0);
            QCOMPARE(FrameDecoder::decode(path("frame.png")).size(), bearable);
        }
        QVERIFY(sun({64, 48}).save(path("frame.png"), "bmp"));
        QVERIFY(FrameDecoder::decode(path("frame.png")).isNull());
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

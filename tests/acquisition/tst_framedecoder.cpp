#include "acquisition/framedecoder.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

namespace {

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

} // namespace

class TestFrameDecoder : public QObject
{
    Q_OBJECT

private slots:
    void cutOffPictureDoesNotDecode();
    void contentDecidesAndNotTheName();
};

void TestFrameDecoder::cutOffPictureDoesNotDecode()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frame_000000.png"));
    QImage image(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * y, x ^ y, 7 * x));
    }
    QVERIFY(image.save(path));
    QCOMPARE(FrameDecoder::decode(path), image.convertToFormat(QImage::Format_ARGB32));

    QFile file(path);
    constexpr int checksumBytes = 4; // the last thing in the file, after the whole picture
    for (qint64 size = file.size() - checksumBytes - 1; size >= 0; --size) {
        QVERIFY(file.resize(size));
        QVERIFY2(FrameDecoder::decode(path).isNull(), qPrintable(QString::number(size)));
    }
}

void TestFrameDecoder::contentDecidesAndNotTheName()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frame_000000.png"));
    write(path, "<!DOCTYPE html>\n<html><body>Limit of 3000 requests exceeded</body></html>");
    QVERIFY(FrameDecoder::decode(path).isNull());
    write(path, "{\"error\":\"no such image\",\"errno\":24}");
    QVERIFY(FrameDecoder::decode(path).isNull());
    QVERIFY(QImage(8, 8, QImage::Format_Grayscale8).save(path, "JPG"));
    QCOMPARE(FrameDecoder::decode(path).size(), QSize(8, 8));
}

QTEST_GUILESS_MAIN(TestFrameDecoder)
#include "tst_framedecoder.moc"

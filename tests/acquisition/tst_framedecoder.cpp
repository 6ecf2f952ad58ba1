#include "acquisition/framedecoder.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

class TestFrameDecoder : public QObject
{
    Q_OBJECT

private slots:
    void cutOffPictureDoesNotDecode();
    void contentDecidesAndNotTheName();

private:
    const QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("frame_000000.png"));
};

void TestFrameDecoder::cutOffPictureDoesNotDecode()
{
    QImage image(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * y, x ^ y, 7 * x));
    }
    QVERIFY(image.save(m_path));
    QCOMPARE(FrameDecoder::decode(m_path), image.convertToFormat(QImage::Format_ARGB32));

    QFile file(m_path);
    constexpr int checksumBytes = 4; // the last thing in the file, after the whole picture
    for (qint64 size = file.size() - checksumBytes - 1; size >= 0; --size) {
        QVERIFY(file.resize(size));
        QVERIFY2(FrameDecoder::decode(m_path).isNull(), qPrintable(QString::number(size)));
    }
}

void TestFrameDecoder::contentDecidesAndNotTheName()
{
    for (const char *answer : {"<!DOCTYPE html>\n<html><body>Limit exceeded</body></html>",
                               "{\"error\":\"no such image\",\"errno\":24}"}) {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(answer) > 0 && file.flush());
        QVERIFY(FrameDecoder::decode(m_path).isNull());
    }
    QVERIFY(QImage(8, 8, QImage::Format_Grayscale8).save(m_path, "JPG"));
    QCOMPARE(FrameDecoder::decode(m_path).size(), QSize(8, 8));
}

QTEST_GUILESS_MAIN(TestFrameDecoder)
#include "tst_framedecoder.moc"

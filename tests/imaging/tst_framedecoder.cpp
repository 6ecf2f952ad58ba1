#include "imaging/framedecoder.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

class TestFrameDecoder : public QObject
{
    Q_OBJECT

private slots:
    void cutOffPictureDoesNotDecode();

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

QTEST_GUILESS_MAIN(TestFrameDecoder)
#include "tst_framedecoder.moc"

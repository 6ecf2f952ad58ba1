#include "imaging/framedecoder.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

class TestFrameDecoder : public QObject
{
    Q_OBJECT

private slots:
    void cutOffPictureDoesNotDecode()
    {
        QImage image(64, 48, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * y, x ^ y, 7 * x));
        }
        QVERIFY(image.save(m_path));
        QCOMPARE(FrameDecoder::decode(m_path), image);

        QFile file(m_path);
        constexpr int checksumBytes = 4; // the last thing in the file, after the whole picture
        for (qint64 size = file.size() - checksumBytes - 1; size >= 0; --size) {
            QVERIFY(file.resize(size));
            QVERIFY2(FrameDecoder::decode(m_path).isNull(), qPrintable(QString::number(size)));
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
        QVERIFY(image.save(m_path, format.constData()));
        QCOMPARE(FrameDecoder::decode(m_path).size(), decodes ? size : QSize(0, 0));
    }

    void pipeIsNotWaitedFor()
    {
        const QString pipe = m_folder.filePath(QStringLiteral("frame_000001.png"));
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(FrameDecoder::decode(pipe).isNull());
    }

private:
    const QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("frame_000000.png"));
};

QTEST_GUILESS_MAIN(TestFrameDecoder)
#include "tst_framedecoder.moc"

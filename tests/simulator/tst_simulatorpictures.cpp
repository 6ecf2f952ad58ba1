#include "imaging/blankblock.h"
#include "simulator/archive.h"
#include "simulator/imagegeometry.h"
#include "simulator/picturestore.h"
#include "simulator/servicetime.h"

#include <QImage>
#include <QJsonObject>
#include <QTest>

using namespace Simulator;

namespace {

ArchiveImage imageOf(int sourceId, const char *time)
{
    return *Archive::sample()->nearest(sourceId, *parseArchiveTime(QString::fromLatin1(time)));
}

QByteArray pngOf(const ArchiveImage &image, int widthPx)
{
    return PictureStore(Archive::sample()).png(image, widthPx);
}

QJsonObject metadataOf(const ArchiveImage &image)
{
    const ImageGeometry geometry = geometryOf(Archive::sample()->sourceOf(image), image);
    return {{QStringLiteral("width"), geometry.widthPx},
            {QStringLiteral("height"), geometry.heightPx},
            {QStringLiteral("rsun"), geometry.rsunPx},
            {QStringLiteral("refPixelX"), geometry.refPixelX},
            {QStringLiteral("refPixelY"), geometry.refPixelY}};
}

/// Brightness-weighted middle and half width of the bright pixels of one line of the picture.
struct Chord
{
    double middle = 0.0;
    double half = 0.0;
};

template<typename Gray>
Chord chordOf(int length, const Gray &gray)
{
    int first = -1;
    int last = -1;
    for (int i = 0; i < length; ++i)
        if (gray(i) > 40) {
            first = first < 0 ? i : first;
            last = i;
        }
    return {(first + last + 1) / 2.0, (last - first + 1) / 2.0};
}

} // namespace

class TestSimulatorPictures : public QObject
{
    Q_OBJECT

private slots:
    void diskLiesWhereTheMetadataSays_data();
    void diskLiesWhereTheMetadataSays();
    void pngIsPaletteAndInterlaced();
    void missingBlockIsFoundAndOnlyThen_data();
    void missingBlockIsFoundAndOnlyThen();
    void picturesChangeButCanBeHadAgain();
    void sunTurnsToTheRight();
    void earthHidesTheSunInSeason();
};

void TestSimulatorPictures::diskLiesWhereTheMetadataSays_data()
{
    QTest::addColumn<int>("sourceId");
    QTest::addColumn<int>("widthPx");
    QTest::addColumn<double>("centreX");
    QTest::addColumn<double>("centreY");
    QTest::addColumn<double>("radius");

    // Native radius at that time times the zoom; rows count from the top, the reference pixel not.
    QTest::newRow("HMI, centred") << 18 << 512 << 256.0 << 256.0 << 1587.2 / 8;
    QTest::newRow("MDI, off centre") << 7 << 1024 << 512.35 << 512.52 << 484.6 / 1.00367 / 0.99;
}

void TestSimulatorPictures::diskLiesWhereTheMetadataSays()
{
    QFETCH(int, sourceId);
    QFETCH(int, widthPx);
    const ArchiveImage image =
        imageOf(sourceId, sourceId == 18 ? "2024-05-01 00:00:00" : "2005-04-16 00:00:00");
    const QImage picture = QImage::fromData(pngOf(image, widthPx));
    QFETCH(double, centreX);
    QFETCH(double, centreY);
    const Chord across =
        chordOf(picture.width(), [&](int x) { return qGray(picture.pixel(x, int(centreY))); });
    const Chord down =
        chordOf(picture.height(), [&](int y) { return qGray(picture.pixel(int(centreX), y)); });
    QFETCH(double, radius);
    QVERIFY2(qAbs(across.middle - centreX) <= 1.0 && qAbs(down.middle - centreY) <= 1.0,
             qPrintable(QStringLiteral("%1, %2").arg(across.middle).arg(down.middle)));
    QVERIFY2(qAbs(across.half - radius) <= 1.5 && qAbs(down.half - radius) <= 1.5,
             qPrintable(QStringLiteral("%1, %2").arg(across.half).arg(down.half)));
}

void TestSimulatorPictures::pngIsPaletteAndInterlaced()
{
    const QByteArray png = pngOf(imageOf(10, "2024-05-01 00:00:00"), 200);
    QCOMPARE(png.mid(12, 4), QByteArray("IHDR"));
    QCOMPARE(png.mid(24, 5), QByteArray("\x08\x03\x00\x00\x01", 5)); // 8 bit, palette, Adam7
}

void TestSimulatorPictures::missingBlockIsFoundAndOnlyThen_data()
{
    QTest::addColumn<int>("sourceId");
    for (const int sourceId : {10, 11, 13, 19, 0, 4, 83, 2000, 84, 86, 18})
        QTest::addRow("source %d", sourceId) << sourceId;
}

void TestSimulatorPictures::missingBlockIsFoundAndOnlyThen()
{
    QFETCH(int, sourceId);
    const ArchiveImage image = imageOf(sourceId, "2024-05-01 01:00:00");
    const QJsonObject metadata = metadataOf(image);
    PictureStore pictures(Archive::sample());
    QCOMPARE(detectBlankRendererBlock(QImage::fromData(pictures.png(image, 512)), metadata),
             QString());
    if (sourceId != 10 && sourceId != 19)
        return;
    for (const bool transparent : {false, true}) {
        const QImage spoilt =
            QImage::fromData(pictures.pngWithMissingBlock(image, 512, transparent));
        QVERIFY(detectBlankRendererBlock(spoilt, metadata)
                    .startsWith(QLatin1String("possible blank renderer block")));
    }
}

void TestSimulatorPictures::picturesChangeButCanBeHadAgain()
{
    const ArchiveImage image = imageOf(4, "2024-05-01 01:00:00");
    const ArchiveImage next = imageOf(4, "2024-05-01 01:12:00");
    QVERIFY(image.slot != next.slot);
    QCOMPARE(pngOf(image, 128), pngOf(image, 128));
    QVERIFY(pngOf(image, 128) != pngOf(next, 128));
}

void TestSimulatorPictures::sunTurnsToTheRight()
{
    // In eight hours the middle of the disk moves by about 0.08 radii, here eight pixels.
    const QImage before = QImage::fromData(pngOf(imageOf(13, "2024-05-01 00:00:00"), 256));
    const QImage after = QImage::fromData(pngOf(imageOf(13, "2024-05-01 08:00:00"), 256));
    int bestShift = 0;
    double least = 1e300;
    for (int shift = -20; shift <= 20; ++shift) {
        double difference = 0.0;
        for (int y = 100; y < 156; ++y)
            for (int x = 100; x < 156; ++x)
                difference += qAbs(qRed(before.pixel(x, y)) - qRed(after.pixel(x + shift, y)));
        if (difference < least) {
            least = difference;
            bestShift = shift;
        }
    }
    QVERIFY2(bestShift >= 6 && bestShift <= 10, qPrintable(QString::number(bestShift)));
}

void TestSimulatorPictures::earthHidesTheSunInSeason()
{
    const auto isBlack = [](const char *time) {
        const QImage picture = QImage::fromData(pngOf(imageOf(10, time), 64));
        return qGray(picture.pixel(32, 32)) == 0;
    };
    QVERIFY(isBlack("2024-03-05 07:00:00"));
    QVERIFY(!isBlack("2024-03-05 08:00:00"));
    QVERIFY(!isBlack("2024-05-05 07:00:00"));
}

QTEST_GUILESS_MAIN(TestSimulatorPictures)
#include "tst_simulatorpictures.moc"

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

QJsonObject metadataOf(const ArchiveImage &image)
{
    const ImageGeometry geometry = geometryOf(Archive::sample()->sourceOf(image), image);
    return {{QStringLiteral("width"), geometry.widthPx},
            {QStringLiteral("height"), geometry.heightPx},
            {QStringLiteral("rsun"), geometry.rsunPx},
            {QStringLiteral("refPixelX"), geometry.refPixelX},
            {QStringLiteral("refPixelY"), geometry.refPixelY}};
}

} // namespace

class TestSimulatorPictures : public QObject
{
    Q_OBJECT

private slots:
    void missingBlockIsFoundAndOnlyThen_data();
    void missingBlockIsFoundAndOnlyThen();
};

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

QTEST_GUILESS_MAIN(TestSimulatorPictures)
#include "tst_simulatorpictures.moc"

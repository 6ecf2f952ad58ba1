#include "imaging/blankblock.h"
#include "simulator/archive/archive.h"
#include "simulator/archive/imagegeometry.h"
#include "simulator/service/picturestore.h"

#include <QImage>
#include <QJsonObject>
#include <QTest>

using namespace Simulator;

namespace {

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
    void wholePicturesRaiseNoAlarm();
};

void TestSimulatorPictures::wholePicturesRaiseNoAlarm()
{
    PictureStore pictures(Archive::sample());
    for (const int sourceId : {10, 11, 13, 19, 0, 4, 83, 2000, 84, 86, 18}) {
        const ArchiveImage image = *Archive::sample()->nearest(sourceId, 1714525200); // 2024-05-01
        const QImage picture = QImage::fromData(pictures.png(image, 512));
        const QString alarm = detectBlankRendererBlock(picture, metadataOf(image));
        QVERIFY2(!picture.isNull() && alarm.isEmpty(), qPrintable(QString::number(sourceId)));
    }
}

QTEST_GUILESS_MAIN(TestSimulatorPictures)
#include "tst_simulatorpictures.moc"

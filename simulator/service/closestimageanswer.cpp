#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/archive/sundistance.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/query.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace Simulator {

namespace {

constexpr int noDataErrno = 10;
constexpr double solarRadiusArcsecAt1Au = 959.644;
constexpr double astronomicalUnitM = 149597870700.0;

/// Only the X-ray telescope's frames name their centre once more, as texts of arcseconds.
QJsonValue centreParameters(const ArchiveSource &source, double arcsecPerPx, double offsetX,
                            double offsetY)
{
    if (!source.path.startsWith(QLatin1String("Hinode/XRT")))
        return QJsonArray();
    const auto text = [](double value) { return QString::number(value, 'f', 4); };
    return QJsonObject{{QStringLiteral("XCEN"), text(offsetX * arcsecPerPx)},
                       {QStringLiteral("YCEN"), text(offsetY * arcsecPerPx)},
                       {QStringLiteral("CDELT1"), text(arcsecPerPx)},
                       {QStringLiteral("CDELT2"), text(arcsecPerPx)}};
}

QJsonObject closestImage(const Archive &archive, const ArchiveImage &image)
{
    const ArchiveSource &source = archive.sourceOf(image);
    const double distanceAu = sunDistanceAu(source, image.unixTime);
    const double rsunPx = source.rsunPx / distanceAu;
    const double arcsecPerPx = solarRadiusArcsecAt1Au / rsunPx;
    // A header that tells of a roll tells of a pointing, too.
    const bool isPointed = source.rollDegrees != 0.0;
    const double offsetX = isPointed ? (source.widthPx + 1) / 2.0 - source.refPixelX : 0.0;
    const double offsetY = isPointed ? (source.heightPx + 1) / 2.0 - source.refPixelY : 0.0;
    return {{QStringLiteral("id"), QString::number(archive.idOf(image))},
            {QStringLiteral("date"), archiveTimeText(image.unixTime)},
            {QStringLiteral("name"), source.nickname},
            {QStringLiteral("scale"), arcsecPerPx},
            {QStringLiteral("scaleCorrection"), 1.0 / distanceAu},
            {QStringLiteral("width"), source.widthPx},
            {QStringLiteral("height"), source.heightPx},
            {QStringLiteral("refPixelX"), source.refPixelX},
            {QStringLiteral("refPixelY"), source.refPixelY},
            {QStringLiteral("offsetX"), offsetX},
            {QStringLiteral("offsetY"), offsetY},
            {QStringLiteral("rotation"), source.rollDegrees},
            {QStringLiteral("rsun"), std::round(rsunPx * 1000.0) / 1000.0},
            {QStringLiteral("dsun"), std::round(distanceAu * astronomicalUnitM)},
            {QStringLiteral("sunCenterOffsetParams"),
             centreParameters(source, arcsecPerPx, offsetX, offsetY)},
            {QStringLiteral("layeringOrder"), source.layeringOrder}};
}

} // namespace

Answer closestImageAnswer(const Archive &archive, const QUrlQuery &query)
{
    QueryReader reader(query);
    const qint64 time = reader.time(QStringLiteral("date"));
    const int sourceId = static_cast<int>(reader.integer(QStringLiteral("sourceId")));
    if (!reader.complaint().isEmpty())
        return pageOfError(reader.complaint());
    if (const std::optional<ArchiveImage> image = archive.nearest(sourceId, time))
        return jsonAnswer(closestImage(archive, *image));
    const ArchiveSource *source = archive.find(sourceId);
    return errorObject(QStringLiteral("No data of the requested type (%1) are currently available.")
                           .arg(source ? source->nickname : QString()),
                       noDataErrno);
}

} // namespace Simulator

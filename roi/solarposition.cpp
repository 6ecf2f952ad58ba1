#include "roi/solarposition.h"

#include "imaging/imagemetadata.h"
#include "imaging/metricscale.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <cmath>

namespace {

constexpr double firstPixelCentre = 0.5; // FITS calls the middle of the first pixel 1
constexpr double radiusMm = MetricScale::nominalSolarRadiusKm / 1000.0;

QString tr(const char *text)
{
    return QCoreApplication::translate("SolarPosition", text);
}

double number(const QJsonObject &metadata, const char *key)
{
    const double value = ImageMetadata::metadataNumber(metadata, QLatin1String(key));
    return std::isfinite(value) ? value : 0.0;
}

/// With the sign of what is shown: nothing is "-0.000".
QString signedText(double value, int decimals)
{
    const double unit = std::pow(10.0, -decimals);
    const double shown = std::round(value / unit) * unit;
    return (shown < 0.0 ? QString() : QStringLiteral("+")) +
           QString::number(shown + 0.0, 'f', decimals);
}

QString plainText(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

/// Decimals to be shown: a pixel of a coronagraph is several Mm wide.
int decimalsOf(double lengthMm)
{
    return std::abs(lengthMm) < 1000.0 ? 1 : 0;
}

QString signedMm(double lengthMm)
{
    return signedText(lengthMm, decimalsOf(lengthMm));
}

QString plainMm(double lengthMm)
{
    return plainText(lengthMm, decimalsOf(lengthMm));
}

} // namespace

SolarPosition::Disk SolarPosition::diskOn(const QSize &frame, const QJsonObject &metadata)
{
    const double radius = number(metadata, "rsun");
    const double width = number(metadata, "width");
    const double height = number(metadata, "height");
    const QPointF reference(number(metadata, "refPixelX"), number(metadata, "refPixelY"));
    if (frame.isEmpty() || radius <= 0.0 || width <= 0.0)
        return {};
    Disk disk;
    const double scaleX = frame.width() / width;
    disk.radiusX = radius * scaleX;
    if (height <= 0.0)
        return disk;
    const double scaleY = frame.height() / height;
    disk.radiusY = radius * scaleY;
    if (!reference.isNull())
        disk.centre = QPointF((reference.x() - firstPixelCentre) * scaleX,
                              (height - (reference.y() - firstPixelCentre)) * scaleY);
    return disk;
}

std::optional<QPointF> SolarPosition::offset(const QPointF &pixel, const Disk &disk)
{
    if (!disk.centre)
        return std::nullopt;
    return QPointF((pixel.x() - disk.centre->x()) / disk.radiusX,
                   (disk.centre->y() - pixel.y()) / disk.radiusY);
}

QString SolarPosition::pixelText(const QPointF &pixel, const QSize &frame,
                                 const QJsonObject &metadata)
{
    const std::optional<QPointF> radii = offset(pixel, diskOn(frame, metadata));
    if (!radii)
        return {};
    const double distance = std::hypot(radii->x(), radii->y());
    return tr("Cursor: x %1, y %2, r %3 R\u2609   |   x %4, y %5, r %6 Mm")
        .arg(signedText(radii->x(), 3), signedText(radii->y(), 3), plainText(distance, 3),
             signedMm(radii->x() * radiusMm), signedMm(radii->y() * radiusMm),
             plainMm(distance * radiusMm));
}

QString SolarPosition::sizeText(const QSize &size, const QSize &frame, const QJsonObject &metadata)
{
    const Disk disk = diskOn(frame, metadata);
    if (disk.radiusX <= 0.0)
        return {};
    if (size.isEmpty())
        return tr("Region: --");
    const double width = size.width() / disk.radiusX;
    if (disk.radiusY <= 0.0)
        return tr("Region: %1 R\u2609   |   %2 Mm wide")
            .arg(plainText(width, 3), plainMm(width * radiusMm));
    const double height = size.height() / disk.radiusY;
    return tr("Region: %1 x %2 R\u2609   |   %3 x %4 Mm")
        .arg(plainText(width, 3), plainText(height, 3), plainMm(width * radiusMm),
             plainMm(height * radiusMm));
}

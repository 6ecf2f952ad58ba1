#include "imaging/metricscale.h"

#include "imaging/imagemetadata.h"

#include <QJsonObject>

#include <cmath>

double MetricScale::kmPerPixel(const QJsonObject &metadata, int imageWidth)
{
    const double solarRadiusPx = ImageMetadata::metadataNumber(metadata, QStringLiteral("rsun"));
    const double nativeWidthPx = ImageMetadata::metadataNumber(metadata, QStringLiteral("width"));
    const bool known = imageWidth >= 1 && solarRadiusPx > 0.0 && nativeWidthPx > 0.0;
    return known ? nominalSolarRadiusKm / solarRadiusPx * (nativeWidthPx / imageWidth) : 0.0;
}

double MetricScale::roundLengthKm(double targetKm)
{
    if (!(targetKm > 0.0) || !std::isfinite(targetKm))
        return 0.0;
    const double powerOfTen = std::pow(10.0, std::floor(std::log10(targetKm)));
    const double mantissa = targetKm / powerOfTen;
    if (mantissa < 2.0)
        return powerOfTen;
    return (mantissa < 5.0 ? 2.0 : 5.0) * powerOfTen;
}

QString MetricScale::formatThousands(qint64 value)
{
    QString text = QString::number(value);
    const int firstDigit = value < 0 ? 1 : 0;
    for (int group = text.size() - 3; group > firstDigit; group -= 3)
        text.insert(group, QLatin1Char(' '));
    return text;
}

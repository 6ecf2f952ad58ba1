#pragma once

#include <QString>

class QJsonObject;

/// The projected length of a pixel on the Sun, and round lengths to draw.
namespace MetricScale {

/// The nominal solar radius of IAU 2015 Resolution B3.
constexpr double nominalSolarRadiusKm = 695700.0;

/// Kilometres per pixel of a rendered image; 0 when the metadata gives none.
double kmPerPixel(const QJsonObject &metadata, int imageWidth);

/// @p targetKm rounded down to 1, 2 or 5 times a power of ten; 0 when it is not positive or finite.
double roundLengthKm(double targetKm);

/// Decimal with a blank between groups of three digits: 200 000.
QString formatThousands(qint64 value);

} // namespace MetricScale

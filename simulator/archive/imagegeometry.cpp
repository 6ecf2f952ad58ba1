#include "simulator/archive/imagegeometry.h"

#include "simulator/archive/archive.h"
#include "simulator/hash.h"

#include <QtMath>

#include <cmath>

namespace Simulator {

namespace {

constexpr double solarRadiusArcsecAt1Au = 959.644;
constexpr double secondsPerDay = 86400.0;
constexpr double unixTimeOfJ2000 = 946728000.0; // 2000-01-01 12:00
constexpr qint64 pointingSeconds = 6LL * 3600;  // a sub-field telescope stays that long on a target

/// "Approximate solar coordinates" of the Astronomical Almanac, good to a part in ten thousand.
double earthDistanceAu(qint64 unixTime)
{
    const double days = (double(unixTime) - unixTimeOfJ2000) / secondsPerDay;
    const double anomaly = qDegreesToRadians(357.528 + 0.9856003 * days);
    return 1.00014 - 0.01671 * std::cos(anomaly) - 0.00014 * std::cos(2.0 * anomaly);
}

double solarOrbiterDistanceAu(qint64 unixTime)
{
    constexpr double periodDays = 168.0;
    return 0.62 - 0.33 * std::cos(2.0 * M_PI * double(unixTime) / secondsPerDay / periodDays);
}

void bin(ImageGeometry &geometry, int factor)
{
    geometry.widthPx /= factor;
    geometry.heightPx /= factor;
    geometry.rsunPx /= factor;
    geometry.refPixelX = (geometry.refPixelX - 0.5) / factor + 0.5;
    geometry.refPixelY = (geometry.refPixelY - 0.5) / factor + 0.5;
}

void point(ImageGeometry &geometry, quint64 pointing, bool smallField)
{
    constexpr double roomInRadii = 0.3;
    geometry.refPixelX += (chance(1, pointing) - 0.5) * roomInRadii * geometry.rsunPx;
    geometry.refPixelY += (chance(2, pointing) - 0.5) * roomInRadii * geometry.rsunPx;
    if (smallField) {
        geometry.widthPx = geometry.widthPx * 3 / 4;
        geometry.heightPx = geometry.heightPx * 3 / 4;
    }
}

} // namespace

double sunDistanceAu(Orbit orbit, qint64 unixTime)
{
    switch (orbit) {
    case Orbit::Fixed:
        break;
    case Orbit::Earth:
        return earthDistanceAu(unixTime);
    case Orbit::SunEarthL1:
        return 0.99 * earthDistanceAu(unixTime);
    case Orbit::SolarOrbiter:
        return solarOrbiterDistanceAu(unixTime);
    }
    return 1.0;
}

ImageGeometry geometryOf(const ArchiveSource &source, const ArchiveImage &image)
{
    const double distanceAu = sunDistanceAu(source.orbit, image.unixTime);
    ImageGeometry geometry{source.widthPx,
                           source.heightPx,
                           source.rsunPx / distanceAu,
                           source.refPixelX,
                           source.refPixelY,
                           qRound64(distanceAu * double(astronomicalUnitM) / 10.0) * 10,
                           0.0};
    const quint64 draw = hashOf(quint64(source.sourceId), quint64(image.slot));
    if (source.framing == Framing::Binned)
        bin(geometry, 1 << (draw % 4));
    else if (source.framing == Framing::SubField)
        point(geometry, quint64(image.unixTime / pointingSeconds), draw % 4 == 0);
    geometry.arcsecPerPx = solarRadiusArcsecAt1Au / geometry.rsunPx;
    return geometry;
}

} // namespace Simulator

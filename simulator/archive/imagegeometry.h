#pragma once

#include <QtGlobal>

namespace Simulator {

struct ArchiveImage;
struct ArchiveSource;
enum class Orbit;

/// Where the Sun lies in one native picture; lengths in its pixels.
struct ImageGeometry
{
    int widthPx = 0;
    int heightPx = 0;
    double rsunPx = 0.0;
    double refPixelX = 0.0; ///< of the disk's centre, first pixel 1, may lie outside
    double refPixelY = 0.0; ///< counted from the bottom edge
    qint64 sunDistanceM = 0;
    double arcsecPerPx = 0.0;
};

constexpr qint64 astronomicalUnitM = 149597870700;

/// Distance of an observer from the Sun in astronomical units; 1 for Orbit::Fixed.
double sunDistanceAu(Orbit orbit, qint64 unixTime);

ImageGeometry geometryOf(const ArchiveSource &source, const ArchiveImage &image);

} // namespace Simulator

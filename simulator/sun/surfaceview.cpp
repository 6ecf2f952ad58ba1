#include "simulator/sun/surfaceview.h"

#include "simulator/hash.h"
#include "simulator/sun/solarrotation.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr double daysPerRotation = 27.2753; // Carrington's, as seen from the Earth
constexpr float turnsPerRadian = 0.15915494F;
constexpr unsigned detailShare = 96; // of 256
constexpr float firstDetail = 3.7F;  // no whole numbers: repeats must not meet
constexpr float nextDetail = 3.3F;

/// Each level is finer than the one before, until it is as fine as the picture.
int detailLevelsOf(double radiusPx, int mapColumns)
{
    const double pixelsPerTexel = radiusPx * 2.0 * M_PI / mapColumns;
    const double finest = pixelsPerTexel * 1.1 / double(firstDetail);
    return finest <= 1.0 ? 0 : 1 + int(std::log(finest) / std::log(double(nextDetail)));
}

} // namespace

float turnsOf(float x, float y)
{
    const float ax = std::fabs(x);
    const float ay = std::fabs(y);
    const float larger = std::max(ax, ay);
    if (larger <= 0.0F)
        return 0.0F;
    const float t = std::min(ax, ay) / larger;
    const float s = t * t;
    // Polynomial for the arc tangent on 0..1 (Abramowitz and Stegun 4.4.49).
    float angle = t * (0.9998660F +
                       s * (-0.3302995F + s * (0.1801410F + s * (-0.0851330F + s * 0.0208351F))));
    if (ax > ay)
        angle = 1.5707963F - angle;
    if (y < 0.0F)
        angle = 3.1415927F - angle;
    return (x < 0.0F ? -angle : angle) * turnsPerRadian;
}

SurfaceView::Generation SurfaceView::generation(double rotations, quint64 seed)
{
    const double number = std::floor(rotations);
    return {float((rotations - number - 0.5) * daysPerRotation),
            float(chance(seed, quint64(qint64(number))))};
}

SurfaceView::SurfaceView(qint64 unixTime, double radiusPx)
    : m_map(SurfaceMap::forRadius(radiusPx))
    , m_detailLevels(detailLevelsOf(radiusPx, m_map.columns()))
    , m_cosTilt(float(std::cos(tiltOfAxis(unixTime))))
    , m_sinTilt(float(std::sin(tiltOfAxis(unixTime))))
{
    const double rotations = double(unixTime) / 86400.0 / daysPerRotation;
    m_generations = {generation(rotations, 1), generation(rotations + 0.5, 2)};
    const double age = rotations - std::floor(rotations);
    const double second = std::fabs(2.0 * age - 1.0); // each fades in and out over its life
    m_shareOfSecond = unsigned(std::lround(second * 256.0));
    m_contrast = float(1.0 / std::sqrt(second * second + (1.0 - second) * (1.0 - second)));
}

SurfaceTexels SurfaceView::texelsOf(const Generation &generation, float turns, float sinLatitude,
                                    float radiansPerDay) const
{
    const float place =
        turns + 4.0F + generation.turns - radiansPerDay * generation.days * turnsPerRadian;
    SurfaceTexels texels = m_map.at(place, sinLatitude);
    float times = firstDetail;
    for (int level = 0; level < m_detailLevels; ++level, times *= nextDetail)
        texels = mixedTexels(texels, m_map.detailAt(place, sinLatitude, times), detailShare);
    return texels;
}

SurfaceTexels SurfaceView::texelsAt(const Vector3 &point) const
{
    const float turns = turnsOf(point.x, point.z);
    const float radiansPerDay = float(synodicRadiansPerDay(double(point.y)));
    return mixedTexels(texelsOf(m_generations[0], turns, point.y, radiansPerDay),
                       texelsOf(m_generations[1], turns, point.y, radiansPerDay), m_shareOfSecond);
}

} // namespace Simulator

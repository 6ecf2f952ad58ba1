#include "simulator/sun/surface.h"

#include "simulator/sun/solarrotation.h"

namespace Simulator {

namespace {

constexpr float detailShare = 0.375F;
constexpr float firstDetail = 3.7F; // no whole numbers: repeats must not meet
constexpr float nextDetail = 3.3F;

/// Each level is finer than the one before, until it is as fine as the picture.
int detailLevelsOf(double radiusPx, int mapColumns)
{
    const double pixelsPerTexel = radiusPx * 2.0 * M_PI / mapColumns;
    const double finest = pixelsPerTexel * 1.1 / static_cast<double>(firstDetail);
    return finest <= 1.0
               ? 0
               : 1 + static_cast<int>(std::log(finest) / std::log(static_cast<double>(nextDetail)));
}

} // namespace

Surface::Surface(qint64 unixTime, double radiusPx)
    : m_map(SurfaceMap::forRadius(radiusPx))
    , m_detailLevels(detailLevelsOf(radiusPx, m_map.columns()))
{
    const double turns =
        static_cast<double>(unixTime) / 86400.0 * synodicRadiansPerDay(0.3) / (2.0 * M_PI);
    m_turns = static_cast<float>(turns - std::floor(turns));
}

Texel Surface::texelAt(const Vector3 &point) const
{
    const float turns = turnsOf(point.x, point.z) + 1.0F - m_turns;
    Texel texel = m_map.at(turns, point.y);
    float times = firstDetail;
    for (int level = 0; level < m_detailLevels; ++level, times *= nextDetail)
        texel = mixed(texel, m_map.detailAt(turns, point.y, times), detailShare);
    return texel;
}

Texel Surface::patchAt(float place, float x, float y) const
{
    return m_map.detailAt(place + x * 0.3F, place + y * 0.9F, 2.0F);
}

} // namespace Simulator

#pragma once

#include "simulator/sun/surfacemap.h"

#include <QtGlobal>

namespace Simulator {

/**
 * The quiet Sun's surface as it is seen at one time.
 *
 * It turns as one piece: differential rotation would wind its textures up in the course of months.
 */
class Surface final
{
public:
    Surface(qint64 unixTime, double radiusPx);

    /// Textures at a point of the unit sphere, in the picture's frame.
    Texel texelAt(const Vector3 &point) const;
    /// Textures around a place that has its own patch of the map; @p x and @p y in solar radii.
    Texel patchAt(float place, float x, float y) const;

private:
    const SurfaceMap &m_map;
    int m_detailLevels; ///< how often finer texture is laid over the map's
    float m_turns;      ///< where the map's first column is
};

} // namespace Simulator

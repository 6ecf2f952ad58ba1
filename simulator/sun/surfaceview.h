#pragma once

#include "simulator/sun/surfacemap.h"
#include "simulator/sun/vector3.h"

#include <array>

namespace Simulator {

/// Angle of (x, y) from the y axis towards x in turns, -0.5 to 0.5, to a hundred thousandth.
float turnsOf(float x, float y);

/**
 * The Sun's surface as it is seen at one time.
 *
 * Differential rotation would wind any texture up in the course of years, so two generations of it
 * live side by side, each for one rotation, and fade into each other: structures come and go.
 */
class SurfaceView
{
public:
    SurfaceView(qint64 unixTime, double radiusPx);

    /// From the picture's frame to the Sun's: y then points along its axis.
    Vector3 toSun(const Vector3 &seen) const
    {
        return {seen.x, seen.y * m_cosTilt + seen.z * m_sinTilt,
                seen.z * m_cosTilt - seen.y * m_sinTilt};
    }
    Vector3 fromSun(const Vector3 &point) const
    {
        return {point.x, point.y * m_cosTilt - point.z * m_sinTilt,
                point.z * m_cosTilt + point.y * m_sinTilt};
    }

    /// Textures at a point of the unit sphere, in the Sun's frame.
    SurfaceTexels texelsAt(const Vector3 &point) const;

    /// Mixing two textures flattens them; contrasts times this make up for it.
    float contrast() const { return m_contrast; }
    const SurfaceMap &map() const { return m_map; }

private:
    struct Generation
    {
        float days = 0.0F;  ///< since the middle of its life
        float turns = 0.0F; ///< where its map begins
    };

    static Generation generation(double rotations, quint64 seed);
    SurfaceTexels texelsOf(const Generation &generation, float turns, float sinLatitude,
                           float radiansPerDay) const;

    const SurfaceMap &m_map;
    int m_detailLevels; ///< how often finer texture is laid over the map's
    float m_cosTilt;
    float m_sinTilt;
    std::array<Generation, 2> m_generations;
    unsigned m_shareOfSecond; ///< 0 to 256
    float m_contrast;
};

} // namespace Simulator

#pragma once

#include "simulator/sun/vector3.h"

#include <vector>

namespace Simulator {

/// The textures of the surface at one point, each 0 to 1.
struct alignas(16) Texel
{
    float cloud = 0.0F;   ///< wide, soft differences of brightness
    float network = 0.0F; ///< cells of the size of supergranules with bright borders
    float threads = 0.0F; ///< fine bright lines that follow each other
    float region = 0.0F;  ///< areas of a quarter of the disk
};

inline Texel mixed(const Texel &a, const Texel &b, float share)
{
    return {a.cloud + (b.cloud - a.cloud) * share, a.network + (b.network - a.network) * share,
            a.threads + (b.threads - a.threads) * share, a.region + (b.region - a.region) * share};
}

/**
 * Textures around the whole Sun, by longitude and by the sine of the latitude.
 *
 * Seen from the Earth, rows of equal sine are evenly spaced, so detail is even over the disk.
 * Made from noise in space, hence without seam or pole.
 */
class SurfaceMap final
{
public:
    /// The smallest map that serves a disk of that radius; made once, then kept.
    static const SurfaceMap &forRadius(double radiusPx);

    explicit SurfaceMap(int columns);

    /// How many columns go around the Sun, a power of two.
    int columns() const { return static_cast<int>(m_columns); }

    /// Smoothly interpolated; @p turns from -1 on, @p sinLatitude -1 to 1.
    Texel at(float turns, float sinLatitude) const
    {
        return interpolated((turns + 1.0F) * static_cast<float>(m_columns),
                            (sinLatitude + 1.0F) * 0.5F * static_cast<float>(m_rows - 1));
    }

    /// The same texture, @p times as fine and repeated, for what is smaller than a texel.
    Texel detailAt(float turns, float sinLatitude, float times) const;

private:
    Texel interpolated(float column, float row) const
    {
        const unsigned i = static_cast<unsigned>(column);
        const unsigned j = static_cast<unsigned>(row);
        const unsigned left = i & (m_columns - 1U);
        const unsigned right = (i + 1U) & (m_columns - 1U);
        const Texel *lower = m_texels.data() + static_cast<size_t>(j & (m_rows - 1U)) * m_columns;
        const Texel *upper =
            m_texels.data() + static_cast<size_t>((j + 1U) & (m_rows - 1U)) * m_columns;
        const float across = column - static_cast<float>(i);
        return mixed(mixed(lower[left], lower[right], across),
                     mixed(upper[left], upper[right], across), row - static_cast<float>(j));
    }

    unsigned m_columns;
    unsigned m_rows;
    std::vector<Texel> m_texels; // row by row from the south
};

} // namespace Simulator

#pragma once

#include <QtGlobal>

#include <vector>

namespace Simulator {

/// The four textures of the surface at one point, each 0 to 255 in a lane of 16 bits.
using SurfaceTexels = quint64;

enum SurfaceChannel {
    CloudChannel,   ///< wide, soft differences of brightness
    NetworkChannel, ///< cells of the size of supergranules with bright borders
    ThreadChannel,  ///< fine bright lines that follow each other
    RegionChannel,  ///< areas of a quarter of the disk
};

inline unsigned channelOf(SurfaceTexels texels, SurfaceChannel channel)
{
    return unsigned(texels >> (16 * channel)) & 0xffU;
}

/// a * (256 - share) + b * share, lane by lane; @p share is 0 to 256.
inline SurfaceTexels mixedTexels(SurfaceTexels a, SurfaceTexels b, unsigned share)
{
    return ((a * (256U - share) + b * share) >> 8) & 0x00ff00ff00ff00ffULL;
}

/**
 * Textures around the whole Sun, by longitude and by the sine of the latitude.
 *
 * Seen from the Earth, rows of equal sine are evenly spaced, so no part of the disk is starved.
 * Made from noise in space, hence without seam or pole.
 */
class SurfaceMap
{
public:
    /// The smallest map that serves a disk of that radius; made once, then kept.
    static const SurfaceMap &forRadius(double radiusPx);

    explicit SurfaceMap(int columns);

    /// How many columns go around the Sun, a power of two.
    int columns() const { return m_columns; }

    /// Smoothly interpolated; @p turns may be any number, @p sinLatitude -1 to 1.
    SurfaceTexels at(float turns, float sinLatitude) const
    {
        const float row = (sinLatitude * 0.5F + 0.5F) * float(m_rows - 1);
        return interpolated(turns * float(m_columns), row < 0.0F ? 0.0F : row);
    }

    /// The same texture, @p times as fine and repeated, for what is smaller than a texel.
    SurfaceTexels detailAt(float turns, float sinLatitude, float times) const
    {
        // To and fro in the middle of the map, clear of the poles where texels are stretched.
        const float way = (sinLatitude + 1.0F) * times;
        const float part = way * 0.5F - float(int(way * 0.5F));
        const float inBand = part < 0.5F ? part : 1.0F - part;
        return interpolated(turns * times * float(m_columns), (0.25F + inBand) * float(m_rows));
    }

private:
    SurfaceTexels interpolated(float column, float row) const
    {
        const int columnFixed = int(column * 256.0F); // 8 bits of fraction
        const int rowFixed = int(row * 256.0F);
        const unsigned i = unsigned(columnFixed >> 8);
        const unsigned j = unsigned(rowFixed >> 8);
        const unsigned columnMask = unsigned(m_columns - 1);
        const unsigned rowMask = unsigned(m_rows - 1);
        const unsigned across = unsigned(columnFixed) & 255U;
        const quint32 *upper = m_texels.data() + size_t(j & rowMask) * size_t(m_columns);
        const quint32 *lower = m_texels.data() + size_t((j + 1) & rowMask) * size_t(m_columns);
        const SurfaceTexels above =
            mixedTexels(spread(upper[i & columnMask]), spread(upper[(i + 1) & columnMask]), across);
        const SurfaceTexels below =
            mixedTexels(spread(lower[i & columnMask]), spread(lower[(i + 1) & columnMask]), across);
        return mixedTexels(above, below, unsigned(rowFixed) & 255U);
    }

    /// Bytes 0, 1, 2, 3 to lanes 0, 1, 2, 3.
    static SurfaceTexels spread(quint32 packed)
    {
        const quint64 halves = (quint64(packed) | (quint64(packed) << 16)) & 0x0000ffff0000ffffULL;
        return (halves | (halves << 8)) & 0x00ff00ff00ff00ffULL;
    }

    int m_columns;
    int m_rows;
    std::vector<quint32> m_texels; // row by row from the south
};

} // namespace Simulator

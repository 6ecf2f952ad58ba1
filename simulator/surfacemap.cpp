#include "simulator/surfacemap.h"

#include "simulator/noise.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <mutex>

namespace Simulator {

namespace {

constexpr int smallestColumns = 256;
constexpr int mapSizes = 4; // 256, 512, 1024, 2048 columns

unsigned toByte(float value)
{
    return unsigned(std::clamp(value, 0.0F, 1.0F) * 255.0F + 0.5F);
}

Vector3 warpOf(const Vector3 &p, float frequency)
{
    return {noise(p * frequency), noise(p * frequency + Vector3{31.7F, 5.3F, 11.1F}),
            noise(p * frequency + Vector3{-17.9F, 41.3F, 3.7F})};
}

/// The four textures at a point of the sphere.
quint32 texelAt(const Vector3 &p)
{
    const Vector3 wide = warpOf(p, 2.3F);
    const Vector3 narrow = warpOf(p + wide * 0.2F, 7.0F);
    const Vector3 bent = p + wide * 0.22F + narrow * 0.04F;
    const float cloud = 0.5F + 0.75F * fractalNoise(bent * 5.0F, 4);
    const float cells = ridgedNoise(p * 17.0F + narrow * 0.35F, 2);
    const float network = 0.5F + 1.1F * (cells - 0.74F) + 0.33F * noise(p * 63.0F);
    const float crest = 1.0F - std::fabs(noise((p + wide * 0.25F + narrow * 0.09F) * 13.0F));
    const float fine = 1.0F - std::fabs(noise((p + wide * 0.3F + narrow * 0.06F) * 29.0F));
    const float threads = 0.62F * std::pow(crest, 6.0F) + 0.55F * std::pow(fine, 5.0F);
    const float region = 0.5F + 0.9F * fractalNoise((p + wide * 0.3F) * 1.6F, 3);
    return toByte(cloud) | toByte(network) << 8 | toByte(threads) << 16 | toByte(region) << 24;
}

} // namespace

const SurfaceMap &SurfaceMap::forRadius(double radiusPx)
{
    static std::array<std::unique_ptr<SurfaceMap>, mapSizes> maps;
    static std::array<std::once_flag, mapSizes> made;
    size_t size = 0;
    // Up to a texel for one and a quarter pixels at the disk's centre.
    while (size + 1 < mapSizes && (smallestColumns << size) * 1.3 < radiusPx * 2.0 * M_PI)
        ++size;
    std::call_once(made[size],
                   [size] { maps[size] = std::make_unique<SurfaceMap>(smallestColumns << size); });
    return *maps[size];
}

SurfaceMap::SurfaceMap(int columns)
    : m_columns(columns), m_rows(columns / 2), m_texels(size_t(columns) * size_t(columns / 2))
{
    auto texel = m_texels.begin();
    for (int row = 0; row < m_rows; ++row) {
        const float sine = 2.0F * (float(row) + 0.5F) / float(m_rows) - 1.0F;
        const float cosine = std::sqrt(1.0F - sine * sine);
        for (int column = 0; column < m_columns; ++column) {
            const double longitude = 2.0 * M_PI * column / m_columns;
            *texel++ = texelAt(
                {cosine * float(std::sin(longitude)), sine, cosine * float(std::cos(longitude))});
        }
    }
}

} // namespace Simulator

#include "simulator/sun/surfacemap.h"

#include "simulator/sun/noise.h"

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
    return unsigned(std::clamp(value, 0.0F, 1.0F) * 255.99F);
}

/// What bends the textures at one point, and the widest of them.
struct Bends
{
    Vector3 wide;
    Vector3 narrow;
    float region = 0.0F;
};

Bends mixed(const Bends &a, const Bends &b, float share)
{
    return {a.wide + (b.wide - a.wide) * share, a.narrow + (b.narrow - a.narrow) * share,
            a.region + (b.region - a.region) * share};
}

Vector3 warpOf(const Vector3 &p, float frequency)
{
    return {noise(p * frequency), noise(p * frequency + Vector3{31.7F, 5.3F, 11.1F}),
            noise(p * frequency + Vector3{-17.9F, 41.3F, 3.7F})};
}

Bends bendsAt(const Vector3 &p)
{
    Bends bends;
    bends.wide = warpOf(p, 2.3F);
    bends.narrow = warpOf(p + bends.wide * 0.2F, 7.0F);
    bends.region = 0.5F + 0.9F * fractalNoise((p + bends.wide * 0.3F) * 1.6F, 3);
    return bends;
}

/// A point of the unit sphere; @p row and @p column may have fractions.
Vector3 spherePoint(float column, float row, int columns, int rows)
{
    const float sine = std::clamp(2.0F * (row + 0.5F) / float(rows) - 1.0F, -1.0F, 1.0F);
    const float cosine = std::sqrt(1.0F - sine * sine);
    const float longitude = 2.0F * float(M_PI) * column / float(columns);
    return {cosine * std::sin(longitude), sine, cosine * std::cos(longitude)};
}

/// Bends change slowly: it is enough to know them at every fourth texel.
class BendsGrid
{
public:
    BendsGrid(int columns, int rows)
        : m_columns(columns / spacing)
        , m_bends(size_t(columns / spacing) * size_t(rows / spacing + 1))
    {
        auto bends = m_bends.begin();
        for (int row = 0; row <= rows / spacing; ++row)
            for (int column = 0; column < m_columns; ++column)
                *bends++ = bendsAt(
                    spherePoint(float(column * spacing), float(row * spacing), columns, rows));
    }

    Bends at(int column, int row) const
    {
        const Bends *lower = m_bends.data() + size_t(row / spacing) * size_t(m_columns);
        const Bends *upper = lower + m_columns;
        const int left = column / spacing;
        const int right = (left + 1) % m_columns;
        const float across = float(column % spacing) / spacing;
        const float up = float(row % spacing) / spacing;
        return mixed(mixed(lower[left], lower[right], across),
                     mixed(upper[left], upper[right], across), up);
    }

private:
    static constexpr int spacing = 4;

    int m_columns;
    std::vector<Bends> m_bends;
};

float sixthPower(float value)
{
    const float cube = value * value * value;
    return cube * cube;
}

/// The four textures at a point of the sphere.
quint32 texelAt(const Vector3 &p, const Bends &bends)
{
    const Vector3 &wide = bends.wide;
    const Vector3 &narrow = bends.narrow;
    const Vector3 bent = p + wide * 0.22F + narrow * 0.04F;
    const float cloud = 0.5F + 0.75F * fractalNoise(bent * 5.0F, 4);
    const float cells = ridgedNoise(p * 17.0F + narrow * 0.35F, 2);
    const float network = 0.5F + 1.1F * (cells - 0.74F) + 0.33F * noise(p * 63.0F);
    const float crest = 1.0F - std::fabs(noise((p + wide * 0.25F + narrow * 0.09F) * 13.0F));
    const float fine = 1.0F - std::fabs(noise((p + wide * 0.3F + narrow * 0.06F) * 29.0F));
    const float threads = 0.62F * sixthPower(crest) + 0.55F * sixthPower(fine);
    return toByte(cloud) | toByte(network) << 8 | toByte(threads) << 16 |
           toByte(bends.region) << 24;
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
    const BendsGrid bends(m_columns, m_rows);
    auto texel = m_texels.begin();
    for (int row = 0; row < m_rows; ++row)
        for (int column = 0; column < m_columns; ++column)
            *texel++ = texelAt(spherePoint(float(column), float(row), m_columns, m_rows),
                               bends.at(column, row));
}

} // namespace Simulator

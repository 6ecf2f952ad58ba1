#include "simulator/sun/surfacemap.h"

#include "simulator/sun/noise.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace Simulator {

namespace {

/// What bends the textures at one point, and the widest of them.
struct Bends
{
    Vector3 wide;
    Vector3 narrow;
    float region = 0.0F;
};

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

Bends mixed(const Bends &a, const Bends &b, float share)
{
    return {a.wide + (b.wide - a.wide) * share, a.narrow + (b.narrow - a.narrow) * share,
            a.region + (b.region - a.region) * share};
}

float sixthPower(float value)
{
    const float cube = value * value * value;
    return cube * cube;
}

Texel texelAt(const Vector3 &p, const Bends &bends)
{
    const Vector3 &wide = bends.wide;
    const Vector3 &narrow = bends.narrow;
    const Vector3 bent = p + wide * 0.22F + narrow * 0.04F;
    const float cells = ridgedNoise(p * 17.0F + narrow * 0.35F, 2);
    const float crest = 1.0F - std::fabs(noise((p + wide * 0.25F + narrow * 0.09F) * 13.0F));
    const float fine = 1.0F - std::fabs(noise((p + wide * 0.3F + narrow * 0.06F) * 29.0F));
    const auto share = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
    return {share(0.5F + 0.75F * fractalNoise(bent * 5.0F, 4)),
            share(0.5F + 1.1F * (cells - 0.74F) + 0.33F * noise(p * 63.0F)),
            share(0.62F * sixthPower(crest) + 0.55F * sixthPower(fine)), share(bends.region)};
}

} // namespace

const SurfaceMap &SurfaceMap::forRadius(double radiusPx)
{
    constexpr int largest = 2048;
    static std::mutex mutex;
    static std::map<int, SurfaceMap> maps;
    int columns = 256;
    while (columns < largest && columns * 1.3 < radiusPx * 2.0 * M_PI) // a texel for 1.3 pixels
        columns *= 2;
    const std::lock_guard<std::mutex> lock(mutex);
    return maps.try_emplace(columns, columns).first->second;
}

SurfaceMap::SurfaceMap(int columns)
    : m_columns(static_cast<unsigned>(columns)), m_rows(static_cast<unsigned>(columns) / 2)
{
    constexpr int stride = 8; // bends change slowly: each eighth texel's are enough
    m_texels.reserve(static_cast<size_t>(m_columns) * m_rows);
    for (unsigned row = 0; row < m_rows; ++row) {
        const float sine =
            2.0F * (static_cast<float>(row) + 0.5F) / static_cast<float>(m_rows) - 1.0F;
        const float cosine = std::sqrt(1.0F - sine * sine);
        const auto pointAt = [=](int column) {
            const float longitude = 2.0F * static_cast<float>(M_PI) * static_cast<float>(column) /
                                    static_cast<float>(columns);
            return Vector3{cosine * std::sin(longitude), sine, cosine * std::cos(longitude)};
        };
        Bends left = bendsAt(pointAt(0));
        for (int column = 0; column < columns; column += stride) {
            const Bends right = bendsAt(pointAt(column + stride));
            for (int step = 0; step < stride; ++step)
                m_texels.push_back(texelAt(
                    pointAt(column + step),
                    mixed(left, right, static_cast<float>(step) / static_cast<float>(stride))));
            left = right;
        }
    }
}

Texel SurfaceMap::detailAt(float turns, float sinLatitude, float times) const
{
    // To and fro in the middle of the map, clear of the poles where texels are stretched.
    const float way = (sinLatitude + 1.0F) * times * 0.5F;
    const float part = way - static_cast<float>(static_cast<int>(way));
    const float inBand = part < 0.5F ? part : 1.0F - part;
    return interpolated((turns + 1.0F) * times * static_cast<float>(m_columns),
                        (0.25F + inBand) * static_cast<float>(m_rows));
}

} // namespace Simulator

#include "simulator/sun/activeregions.h"

#include "simulator/hash.h"
#include "simulator/sun/solarrotation.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr double secondsPerDay = 86400.0;
constexpr float radiansPerDegree = 0.0174532925F;
constexpr float pi = 3.1415927F;

/// Something that is born at random, once in a while, and lives for a time.
struct Life
{
    quint64 seed;
    double bornUnixTime;
    double age; ///< seconds
};

/// All births of the last @p longest seconds, one in @p spacing on average.
std::vector<Life> livesAt(double now, double spacing, double longest, quint64 kind)
{
    std::vector<Life> lives;
    const auto last = static_cast<qint64>(std::floor(now / spacing));
    for (auto number = static_cast<qint64>(std::floor((now - longest) / spacing)); number <= last;
         ++number) {
        const quint64 seed = hashOf(kind, static_cast<quint64>(number));
        const double born = (static_cast<double>(number) + chance(seed, 0)) * spacing;
        if (born < now && born > now - longest)
            lives.push_back({seed, born, now - born});
    }
    return lives;
}

/// A point that was at @p longitude when it was born, in radians.
Vector3 pointAt(float latitude, float longitude, double ageSeconds)
{
    const double turned =
        synodicRadiansPerDay(std::sin(static_cast<double>(latitude))) * ageSeconds / secondsPerDay;
    const float now = longitude + static_cast<float>(turned);
    return {std::cos(latitude) * std::sin(now), std::sin(latitude),
            std::cos(latitude) * std::cos(now)};
}

/// A large flare rises in minutes and fades within the hour.
float flareAt(quint64 seed, double now, float strength)
{
    constexpr double spacing = 4.0 * 3600.0;
    float brightness = 0.0F;
    for (const Life &flare : livesAt(now + 600.0, spacing, 2.0 * spacing, seed)) {
        const Draw draw(flare.seed);
        const float minutes = static_cast<float>(flare.age - 600.0) / 60.0F;
        const float size = 0.15F + 0.85F * draw(2) * draw(2) * draw(2);
        if (draw(1) < 0.35F * strength)
            brightness += size * (minutes < 0.0F ? std::exp(-minutes * minutes / 8.0F)
                                                 : std::exp(-minutes / (12.0F + 30.0F * draw(3))));
    }
    return std::min(brightness, 1.0F);
}

ActiveRegion regionOf(const Life &life, float share)
{
    const Draw draw(life.seed);
    ActiveRegion region;
    region.seed = life.seed;
    region.isNorthern = draw(2) < 0.5F;
    const float side = region.isNorthern ? 1.0F : -1.0F;
    const float latitude = side * (8.0F + 20.0F * draw(3)) * radiansPerDegree;
    region.centre = pointAt(latitude, 2.0F * pi * draw(4), life.age);
    // The leading part lies closer to the equator.
    const float inclination = -side * (4.0F + 14.0F * draw(5)) * radiansPerDegree;
    const Vector3 west = normalized({region.centre.z, 0.0F, -region.centre.x});
    const Vector3 north = cross(region.centre, west);
    region.along = west * std::cos(inclination) + north * std::sin(inclination);
    region.across = cross(region.centre, region.along);
    region.strength =
        std::min(share * 5.0F, 1.0F) * std::sqrt(1.0F - share) * (0.25F + 0.75F * draw(6));
    region.size = (0.035F + 0.065F * draw(7)) * (0.6F + 0.8F * std::min(share * 3.0F, 1.0F));
    region.flare = flareAt(life.seed, life.bornUnixTime + life.age, region.strength);
    return region;
}

Filament filamentOf(const Life &life)
{
    const Draw draw(life.seed);
    const float latitude =
        (18.0F + 34.0F * draw(1)) * radiansPerDegree * (draw(2) < 0.5F ? 1.0F : -1.0F);
    const float length = 0.15F + 0.4F * draw(4);
    const float slope = (draw(5) - 0.5F) * 1.2F;
    Filament filament;
    filament.height = 0.025F + 0.04F * draw(6);
    constexpr int points = 48;
    for (int point = 0; point <= points; ++point) {
        const float along = static_cast<float>(point) / points - 0.5F;
        const float bend = 0.04F * std::sin(along * 6.0F + 6.0F * draw(7)) +
                           0.006F * std::sin(along * 25.0F + 6.0F * draw(8));
        filament.path.push_back(pointAt(latitude + along * length * slope + bend,
                                        2.0F * pi * draw(3) + along * length, life.age));
    }
    return filament;
}

} // namespace

std::vector<ActiveRegion> activeRegionsAt(qint64 unixTime)
{
    constexpr double longestLife = 40.0 * secondsPerDay;
    std::vector<ActiveRegion> regions;
    for (const Life &life :
         livesAt(static_cast<double>(unixTime), 1.1 * secondsPerDay, longestLife, 0x6df9)) {
        const double share = life.age / longestLife / (0.25 + 0.75 * chance(life.seed, 1));
        if (share < 1.0)
            regions.push_back(regionOf(life, static_cast<float>(share)));
    }
    return regions;
}

std::vector<Filament> filamentsAt(qint64 unixTime)
{
    std::vector<Filament> filaments;
    for (const Life &life :
         livesAt(static_cast<double>(unixTime), 3.0 * secondsPerDay, 30.0 * secondsPerDay, 0xf11a))
        filaments.push_back(filamentOf(life));
    return filaments;
}

} // namespace Simulator
